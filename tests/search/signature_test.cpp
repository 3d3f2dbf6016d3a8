#include <gtest/gtest.h>

#include <ostream>
#include <set>

#include "tests/search/signature.h"

namespace mirvo::test {

void PrintTo(const SignaturePosition& position, std::ostream* stream) { *stream << position.fen; }

namespace {

TEST(SignatureFile, HoldsEnoughPositionsOfDifferentNames) {
  const Signature signature = ReadSignature(SignatureFile());
  std::set<std::string> names;
  for (const SignaturePosition& position : signature.positions) names.insert(position.name);
  EXPECT_GE(signature.positions.size(), 30U);
  EXPECT_EQ(names.size(), signature.positions.size());
}

TEST(SignatureFile, TotalIsTheSumOfItsCounts) {
  const Signature signature = ReadSignature(SignatureFile());
  std::uint64_t sum = 0;
  for (const SignaturePosition& position : signature.positions) sum += position.nodes;
  EXPECT_EQ(signature.total, sum);
}

class StoredSignature : public testing::TestWithParam<SignaturePosition> {};

// After an intended change of the search, run mirvo_signature, store its output in
// the file, and give the old and the new total in the commit message.
TEST_P(StoredSignature, SearchTakesTheStoredNumberOfNodes) {
  EXPECT_EQ(CountSignatureNodes(GetParam()), GetParam().nodes);
}

INSTANTIATE_TEST_SUITE_P(Positions, StoredSignature,
                         testing::ValuesIn(ReadSignature(SignatureFile()).positions),
                         [](const auto& test) { return test.param.name; });

// The counts must not depend on what was searched before in the same process.
TEST(Signature, ASearchRepeatedAfterOthersTakesTheSameNodes) {
  const Signature signature = ReadSignature(SignatureFile());
  ASSERT_GE(signature.positions.size(), 3U);
  const std::uint32_t first = CountSignatureNodes(signature.positions[2]);
  CountSignatureNodes(signature.positions[1]);
  EXPECT_EQ(CountSignatureNodes(signature.positions[2]), first);
}

}  // namespace
}  // namespace mirvo::test
