// Small tables for the whole program: a fresh default table is some 200 MB of
// memory, which takes longer to get than most of these searches.
#include <gtest/gtest.h>

#include "tests/support/search_support.h"

namespace mirvo {
namespace {

class SmallTables : public testing::Environment {
 public:
  void SetUp() override { test::SetTableSizes(4); }
};

[[maybe_unused]] testing::Environment* const smallTables =
    testing::AddGlobalTestEnvironment(new SmallTables);

}  // namespace
}  // namespace mirvo
