// The deep perft cases; they take seconds each.
#include "tests/board/perft_cases.h"

namespace mirvo::test {
namespace {

class PerftDeep : public testing::TestWithParam<PerftCase> {};

TEST_P(PerftDeep, CountsTheKnownNumbers) { ExpectPerft(GetParam()); }

INSTANTIATE_TEST_SUITE_P(Positions, PerftDeep, testing::ValuesIn(PerftCases("perft/slow.txt")),
                         PerftCaseName);

}  // namespace
}  // namespace mirvo::test
