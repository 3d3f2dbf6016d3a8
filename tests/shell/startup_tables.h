// A hash of every table that start-up computes, for the test that compares them
// with tests/data/startup_tables.txt and for a program that prints them.
#pragma once

#include <map>
#include <string>

namespace mirvo::test {

/// Name and hash of each table of this build.
std::map<std::string, std::string> BuiltTables();

}  // namespace mirvo::test
