#include "book/book_random.h"

#include "book/opening_book.h"

namespace mirvo {

// Word i is the start of the SHA-256 digest of "Mirvo book random i".
// clang-format off
const std::uint32_t RandomSeedWords[nRandomWords] = {
    0x6C40043D, 0xD8A7018B, 0x488BA3F5, 0xC43C5291, 0x12FDABB9, 0xBC180B8A,
    0xB449BA95, 0x0CEE12B5, 0x672863DD, 0xD572F8E8, 0x6626EE94, 0x50C2B872,
    0x177FB251, 0xD6CF0149, 0x81E9F62E, 0x61283EE3, 0x6DF00D4A, 0x04CE8276,
    0xEFD8C7D5, 0x167AEDF5, 0x96D3F616, 0xE302D911, 0xA5B8F428, 0x088406F7,
    0x925A83D6, 0x246D8C26, 0x11FA85E3, 0x8B585768, 0x61A9DFDB, 0x1787DF43,
    0x598D9C5A, 0xD2BE975B, 0xC3CE6586, 0xBB368F4F, 0x0F4CF6BD, 0x9F2A8062,
    0x57DA2AB8, 0x1FB5F393, 0x5CF3EBDF, 0x5B0671A2, 0x8FABA925, 0x4F9D3AEA,
    0x6BE794A7, 0x003295A8, 0xFC8AA711, 0x520140CF, 0x79D10980, 0xFACE15EB,
    0xDF8E9FCA, 0xB26192AE, 0x89A14C06, 0x3D16BE5F, 0x3D159667, 0xCE2CF899,
    0x585482A2,
};
// clang-format on

namespace {

constexpr int firstIndex = 54;
constexpr int firstLaggedIndex = 23;

struct RandomState {
  std::uint32_t words[nRandomWords];
  int index;
  int laggedIndex;
  bool ready;
};

RandomState state;

int StepDown(int index) { return index == 0 ? nRandomWords - 1 : index - 1; }

void StartRandom() {
  for (int i = 0; i < nRandomWords; ++i) state.words[i] = RandomSeedWords[i];
  state.index = firstIndex;
  state.laggedIndex = firstLaggedIndex;
  state.ready = true;
}

}  // namespace

void ResetRandom() { state.ready = false; }

std::uint32_t NextRandom() {
  if (!state.ready) StartRandom();
  const std::uint32_t word = state.words[state.index] += state.words[state.laggedIndex];
  state.index = StepDown(state.index);
  state.laggedIndex = StepDown(state.laggedIndex);
  return word;
}

}  // namespace mirvo
