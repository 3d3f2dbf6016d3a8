// A new folder that is the working directory during the object's lifetime.
#pragma once

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

namespace mirvo {

class TemporaryFolder {
 public:
  TemporaryFolder() : before(std::filesystem::current_path()) {
    std::random_device random;
    do {
      path = std::filesystem::temp_directory_path() / ("mirvo-test-" + std::to_string(random()));
    } while (!std::filesystem::create_directory(path));
    std::filesystem::current_path(path);
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::current_path(before, ignored);
    std::filesystem::remove_all(path, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

 private:
  std::filesystem::path before;
  std::filesystem::path path;
};

/// Writes bytes as they are.
inline void WriteFile(const std::string& name, const std::string& bytes) {
  std::ofstream(name, std::ios::binary) << bytes;
}

/// The bytes of a file with line ends as the program wrote them.
inline std::string ReadFile(const std::string& name) {
  std::ifstream file(name);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace mirvo
