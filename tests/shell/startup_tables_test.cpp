// Compares a hash of every table that start-up computes with
// tests/data/startup_tables.txt. The tables' own tests say what their entries
// mean; this one shows that they are the same, down to the last entry, with every
// compiler, C library and system.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <string>

#include "tests/shell/startup_tables.h"

namespace mirvo {
namespace {

std::map<std::string, std::string> StoredTables() {
  std::ifstream file(MIRVO_SOURCE_DIR "/tests/data/startup_tables.txt");
  std::map<std::string, std::string> tables;
  std::string line;
  while (std::getline(file, line)) {
    const std::size_t blank = line.find(' ');
    if (line.empty() || line[0] == '#' || blank == std::string::npos) continue;
    tables[line.substr(0, blank)] = line.substr(blank + 1, 16);
  }
  return tables;
}

TEST(StartUpTables, AreTheSameInEveryBuild) {
  const std::map<std::string, std::string> stored = StoredTables();
  const std::map<std::string, std::string> built = test::BuiltTables();
  EXPECT_EQ(stored.size(), built.size());
  for (const auto& [name, folded] : built) {
    const auto entry = stored.find(name);
    EXPECT_EQ(entry == stored.end() ? "" : entry->second, folded) << name;
  }
}

}  // namespace
}  // namespace mirvo
