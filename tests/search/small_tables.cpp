// Small tables for the whole program: a fresh default table is some 200 MB of
// memory, which takes longer to get than most of these searches.
#include <gtest/gtest.h>

#include "shell/config/config.h"

namespace mirvo {
namespace {

class SmallTables : public testing::Environment {
 public:
  void SetUp() override {
    engineConfig.EvalHashSize = 4;
    engineConfig.PawnHashSize = 2;
    engineConfig.TTHashSize = 4;
  }
};

[[maybe_unused]] testing::Environment* const smallTables =
    testing::AddGlobalTestEnvironment(new SmallTables);

}  // namespace
}  // namespace mirvo
