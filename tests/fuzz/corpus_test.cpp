// Replays the stored inputs of the fuzzers.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "tests/fuzz/exercises/engine_kit.h"
#include "tests/fuzz/exercises/exercises.h"

namespace mirvo {
namespace {

std::vector<std::filesystem::path> InputsOf(const NamedExercise& exercise) {
  const auto folder =
      std::filesystem::path(MIRVO_SOURCE_DIR) / "tests" / "fuzz" / "corpus" / exercise.name;
  std::vector<std::filesystem::path> files;
  for (const auto& file : std::filesystem::directory_iterator(folder)) files.push_back(file.path());
  std::sort(files.begin(), files.end());
  return files;
}

std::string BytesOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// The result of an input: the failed property, if any, and the engine's trace.
struct Outcome {
  std::string broken;
  std::string trace;
};

Outcome OutcomeOf(const NamedExercise& exercise, const std::filesystem::path& file) {
  const BrokenPromise broken = exercise.run(BytesOf(file));
  return {broken == nullptr ? "" : broken, EngineTrace()};
}

class FuzzCorpus : public testing::TestWithParam<NamedExercise> {};

TEST_P(FuzzCorpus, KeepsEveryPromiseInAnyOrder) {
  const auto files = InputsOf(GetParam());
  ASSERT_FALSE(files.empty());
  testing::internal::CaptureStdout();
  std::vector<std::string> failures;
  std::vector<std::string> traces;
  for (const auto& file : files) {
    const Outcome outcome = OutcomeOf(GetParam(), file);
    if (!outcome.broken.empty()) {
      failures.push_back(file.filename().string() + ": " + outcome.broken);
    }
    traces.push_back(outcome.trace);
  }
  // The result of an input must not depend on earlier ones.
  for (std::size_t i = files.size(); i-- > 0;) {
    const Outcome outcome = OutcomeOf(GetParam(), files[i]);
    if (outcome.broken.empty() && outcome.trace == traces[i]) continue;
    failures.push_back(files[i].filename().string() + " backwards: " + outcome.broken + "\n" +
                       traces[i] + "now\n" + outcome.trace);
  }
  testing::internal::GetCapturedStdout();
  EXPECT_EQ(failures, std::vector<std::string>{});
}

TEST_P(FuzzCorpus, AnEmptyInputIsOne) {
  testing::internal::CaptureStdout();
  const BrokenPromise broken = GetParam().run("");
  testing::internal::GetCapturedStdout();
  EXPECT_EQ(broken, nullptr) << broken;
}

INSTANTIATE_TEST_SUITE_P(All, FuzzCorpus, testing::ValuesIn(exercises),
                         [](const auto& exercise) { return std::string(exercise.param.name); });

}  // namespace
}  // namespace mirvo
