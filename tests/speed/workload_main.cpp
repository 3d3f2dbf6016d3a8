// A fixed workload for counting instructions: perft of the initial position, or
// searches of some signature positions. Prints the nodes.
//   mirvo_workload perft DEPTH        (1 to 10)
//   mirvo_workload search NAME...     (names of tests/data/signature.txt)
#include <charconv>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <memory>
#include <numeric>

#include "board/board.h"
#include "board/perft.h"
#include "shell/base/output.h"
#include "tests/search/signature.h"
#include "tests/support/search_support.h"

namespace mirvo::test {
namespace {

/// Counts every legal move, at the leaves and above them; 0 if the text is not a
/// valid depth.
std::uint64_t CountPerftNodes(const char* depthText) {
  int depth = 0;
  const char* const end = depthText + std::strlen(depthText);
  const auto [rest, error] = std::from_chars(depthText, end, depth);
  if (error != std::errc() || rest != end || depth < 1 || depth > maxPerftDepth) return 0;
  PrepareEngine();
  output.toConsole = 0;
  const auto board = std::make_unique<Board>();
  SetPosition(*board, "startpos");
  RunPerft(*board, depth);
  return std::accumulate(PerftCounts, PerftCounts + PerftTargetDepth, std::uint64_t{0});
}

/// Nodes of the searches of the named positions; 0 if a name is unknown or a search
/// takes other nodes than the stored ones, because counts would not compare.
std::uint64_t CountSearchNodes(int nNames, char** names) {
  const Signature signature = ReadSignature(SignatureFile());
  std::uint64_t total = 0;
  for (int i = 0; i < nNames; ++i) {
    std::uint32_t nodes = 0;
    for (const SignaturePosition& position : signature.positions) {
      if (position.name != names[i]) continue;
      nodes = CountSignatureNodes(position);
      if (nodes != position.nodes) return 0;
    }
    if (nodes == 0) return 0;
    total += nodes;
  }
  return total;
}

}  // namespace
}  // namespace mirvo::test

int main(int argc, char** argv) {
  std::uint64_t nodes = 0;
  if (argc == 3 && std::strcmp(argv[1], "perft") == 0) {
    nodes = mirvo::test::CountPerftNodes(argv[2]);
  } else if (argc >= 3 && std::strcmp(argv[1], "search") == 0) {
    nodes = mirvo::test::CountSearchNodes(argc - 2, argv + 2);
  }
  std::printf("nodes %" PRIu64 "\n", nodes);
  return nodes == 0 ? 1 : 0;
}
