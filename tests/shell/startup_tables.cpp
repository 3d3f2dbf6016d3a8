#include "tests/shell/startup_tables.h"

#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <type_traits>

#include "board/attack_tables.h"
#include "board/bits.h"
#include "board/geometry_tables.h"
#include "board/occupancy_maps.h"
#include "eval/eval_tables.h"
#include "eval/king.h"
#include "search/reductions.h"

namespace mirvo::test {
namespace {

/// The 64-bit FNV-1a hash over the eight bytes of each entry, lowest first.
struct Folder {
  std::uint64_t hash = 0xCBF29CE484222325ULL;

  void Add(std::uint64_t entry) {
    for (int byte = 0; byte < 8; ++byte) {
      hash ^= entry >> (8 * byte) & 255;
      hash *= 0x100000001B3ULL;
    }
  }
};

template <typename Table>
void AddEntries(Folder& folder, const Table& table) {
  if constexpr (std::is_integral_v<Table>) {
    folder.Add(static_cast<std::uint64_t>(table));
  } else {
    for (const auto& part : table) AddEntries(folder, part);
  }
}

template <typename Table>
std::string Folded(const Table& table) {
  Folder folder;
  AddEntries(folder, table);
  char text[17];
  std::snprintf(text, sizeof text, "%016" PRIx64, folder.hash);
  return text;
}

}  // namespace

std::map<std::string, std::string> BuiltTables() {
  for (const TableBuilder build : boardTableBuilders) build();
  BuildKingDangerTable();
  BuildReductionTables();
  return {
      {"RankAttacks", Folded(RankAttacks)},
      {"FileAttacks", Folded(FileAttacks)},
      {"DiagA1H8Attacks", Folded(DiagA1H8Attacks)},
      {"DiagA8H1Attacks", Folded(DiagA8H1Attacks)},
      {"RankShift", Folded(RankShift)},
      {"FileShift", Folded(FileShift)},
      {"DiagA1H8Shift", Folded(DiagA1H8Shift)},
      {"DiagA8H1Shift", Folded(DiagA8H1Shift)},
      {"DiagA1H8Length", Folded(DiagA1H8Length)},
      {"DiagA8H1Length", Folded(DiagA8H1Length)},
      {"DiagA1H8Mask", Folded(DiagA1H8Mask)},
      {"DiagA8H1Mask", Folded(DiagA8H1Mask)},
      {"KnightAttacks", Folded(KnightAttacks)},
      {"KingAttacks", Folded(KingAttacks)},
      {"PawnAttacks", Folded(PawnAttacks)},
      {"ManhattanDistance", Folded(ManhattanDistance)},
      {"ChebyshevDistance", Folded(ChebyshevDistance)},
      {"ManhattanWithin", Folded(ManhattanWithin)},
      {"FrontSpanWhite", Folded(FrontSpanWhite)},
      {"FrontSpanBlack", Folded(FrontSpanBlack)},
      {"RookPath", Folded(RookPath)},
      {"BishopPath", Folded(BishopPath)},
      {"PopCount16", Folded(PopCount16)},
      {"HighBit16", Folded(HighBit16)},
      {"SquareBit", Folded(SquareBit)},
      {"SquareClear", Folded(SquareClear)},
      {"Rot90Map", Folded(Rot90Map)},
      {"DiagA1H8Map", Folded(DiagA1H8Map)},
      {"DiagA8H1Map", Folded(DiagA8H1Map)},
      {"FlipMap", Folded(FlipMap)},
      {"FileMask", Folded(FileMask)},
      {"FileSpan3", Folded(FileSpan3)},
      {"KingDangerTable", Folded(KingDangerTable)},
      {"NonPvReductions", Folded(NonPvReductions)},
      {"PvReductions", Folded(PvReductions)},
  };
}

}  // namespace mirvo::test
