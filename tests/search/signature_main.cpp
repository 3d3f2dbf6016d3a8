// Prints the signature file anew with the node counts of this build:
//   mirvo_signature > fresh.txt
#include <cstdio>

#include "tests/search/signature.h"

int main() {
  namespace test = mirvo::test;
  const test::Signature signature = test::ReadSignature(test::SignatureFile());
  std::printf(
      "# Nodes of a search to depth %d from cold tables, without clock, book or input.\n"
      "# name | first three FEN fields | nodes\n",
      test::signatureDepth);
  unsigned long long total = 0;
  for (const test::SignaturePosition& position : signature.positions) {
    const std::uint32_t nodes = test::CountSignatureNodes(position);
    std::printf("%s | %s | %u\n", position.name.c_str(), position.fen.c_str(), nodes);
    total += nodes;
  }
  std::printf("total %llu\n", total);
  return 0;
}
