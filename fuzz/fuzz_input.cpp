#include "fuzz/fuzz_input.h"

#include <cstdio>
#include <filesystem>
#include <random>

#include "board/attack_tables.h"
#include "shell/output.h"

namespace mirvo {
namespace {

std::string ScratchPath(const char* name) {
  static const unsigned number = std::random_device{}();
  return (std::filesystem::temp_directory_path() /
          ("mirvo_fuzz_" + std::to_string(number) + "_" + name))
      .string();
}

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
  static const std::string path = ScratchPath("input");
  std::FILE* file = std::fopen(path.c_str(), "wb");
  std::fwrite(data, 1, size, file);
  std::fclose(file);
  return path;
}

const std::string& OutputFile() {
  static const std::string path = ScratchPath("output");
  return path;
}

}  // namespace mirvo
