// Replays the stored inputs of the fuzzers.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "tests/fuzz/exercises/exercises.h"

namespace mirvo {
namespace {

std::vector<std::filesystem::path> InputsOf(const NamedExercise& exercise) {
  const auto folder =
      std::filesystem::path(MIRVO_SOURCE_DIR) / "tests" / "fuzz" / "corpus" / exercise.name;
  std::vector<std::filesystem::path> files;
  for (const auto& file : std::filesystem::directory_iterator(folder)) {
    files.push_back(file.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::string BytesOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

class FuzzCorpus : public testing::TestWithParam<NamedExercise> {};

TEST_P(FuzzCorpus, KeepsEveryPromise) {
  const auto files = InputsOf(GetParam());
  ASSERT_FALSE(files.empty());
  testing::internal::CaptureStdout();
  std::vector<std::string> failures;
  for (const auto& file : files) {
    const BrokenPromise broken = GetParam().run(BytesOf(file));
    if (broken != nullptr) failures.push_back(file.filename().string() + ": " + broken);
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
