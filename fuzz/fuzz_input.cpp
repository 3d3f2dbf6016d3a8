#include "fuzz/fuzz_input.h"

#include <cstdio>
#include <filesystem>
#include <random>

#include "board/attack_tables.h"
#include "shell/base/output.h"

namespace mirvo {
namespace {

std::string ScratchPath(const char* name) {
  static const unsigned number = std::random_device{}();
  return (std::filesystem::temp_directory_path() /
          ("mirvo_fuzz_" + std::to_string(number) + "_" + name))
      .string();
}

/// A file for this process, removed at its end.
struct ScratchFile {
  explicit ScratchFile(const char* name) : path(ScratchPath(name)) {}
  ~ScratchFile() { std::remove(path.c_str()); }
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;
  std::string path;
};

}  // namespace

void PrepareFuzzing() {
  static bool prepared = false;
  if (prepared) return;
  prepared = true;
  InitAttackTables();
  output.toConsole = 0;
  if (output.log != nullptr) std::fclose(output.log);
  output.log = nullptr;
}

const std::string& InputFile(const std::uint8_t* data, std::size_t size) {
  static const ScratchFile input("input");
  std::FILE* file = std::fopen(input.path.c_str(), "wb");
  std::fwrite(data, 1, size, file);
  std::fclose(file);
  return input.path;
}

const std::string& OutputFile() {
  static const ScratchFile written("output");
  return written.path;
}

}  // namespace mirvo
