// Every table that start-up computes, folded into one number each, for the test
// that compares them with tests/data/startup_tables.txt and for a program that
// prints them.
#pragma once

#include <map>
#include <string>

namespace mirvo::test {

/// Name and number of each table, as this build makes them.
std::map<std::string, std::string> BuiltTables();

}  // namespace mirvo::test
