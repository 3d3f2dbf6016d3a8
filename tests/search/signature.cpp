#include "tests/search/signature.h"

#include <fstream>
#include <memory>
#include <sstream>

#include "search/iterate.h"
#include "search/search_flags.h"
#include "shell/config/config.h"
#include "tests/support/search_support.h"

namespace mirvo::test {

Signature ReadSignature(const std::string& fileName) {
  Signature signature;
  std::ifstream file(fileName);
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream words(line);
    SignaturePosition position;
    words >> position.name;
    if (position.name == "total") {
      words >> signature.total;
      continue;
    }
    std::string bar;
    std::string placement;
    std::string side;
    std::string castling;
    words >> bar >> placement >> side >> castling >> bar >> position.nodes;
    position.fen = placement + " " + side + " " + castling;
    signature.positions.push_back(position);
  }
  return signature;
}

std::string SignatureFile() { return std::string(MIRVO_SOURCE_DIR) + "/tests/data/signature.txt"; }

std::uint32_t CountSignatureNodes(const SignaturePosition& position) {
  ColdStart();
  const auto board = std::make_unique<Board>();
  SetPosition(*board, position.fen);
  const std::int32_t depth = engineConfig.DepthSearch;
  const std::int32_t infinite = engineConfig.InfiniteThinkingTime;
  const bool quiet = engineConfig.Quiet;
  engineConfig.DepthSearch = signatureDepth;
  engineConfig.InfiniteThinkingTime = 1;
  engineConfig.Quiet = true;
  searchFlags.NoInputPolling = true;
  SearchRecord record = PrepareSearch(*board);
  Think(record);
  engineConfig.DepthSearch = depth;
  engineConfig.InfiniteThinkingTime = infinite;
  engineConfig.Quiet = quiet;
  return record.state.nodeCount;
}

}  // namespace mirvo::test
