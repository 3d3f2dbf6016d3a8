// The node signature: how many nodes the search of a fixed list of positions
// takes. Any change of move order, evaluation, pruning or hashing moves it;
// compilers, sanitizers and platforms must not.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace mirvo::test {

inline constexpr int signatureDepth = 7;

struct SignaturePosition {
  std::string name;
  std::string fen;      // the first three fields
  std::uint32_t nodes;  // stored count
};

struct Signature {
  std::vector<SignaturePosition> positions;
  std::uint64_t total = 0;  // stored
};

/// Reads "name | fields | nodes" lines and the "total" line; lines that begin
/// with "#" are comments. An unreadable file has no positions.
Signature ReadSignature(const std::string& fileName);

/// Path of the stored signature in the source tree.
std::string SignatureFile();

/// Nodes of one search to signatureDepth with cold tables of the default size,
/// no clock, no book, no input. Prints nothing.
std::uint32_t CountSignatureNodes(const SignaturePosition& position);

}  // namespace mirvo::test
