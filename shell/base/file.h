// A file that closes itself. Only the log is no such file: it stays open until
// the process ends.
#pragma once

#include <cstdio>
#include <memory>

namespace mirvo {

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

/// An open file, or null.
using File = std::unique_ptr<std::FILE, FileCloser>;

/// Null when the file cannot be opened.
inline File OpenFile(const char* path, const char* mode) { return File(std::fopen(path, mode)); }

/// Null when the file cannot be opened or read: some systems open a folder like a file
/// and fail only on the first read.
inline File OpenReadable(const char* path, const char* mode) {
  File file = OpenFile(path, mode);
  if (file == nullptr) return nullptr;
  const int first = std::fgetc(file.get());
  if (first == EOF && std::ferror(file.get()) != 0) return nullptr;
  std::ungetc(first, file.get());
  return file;
}

/// Closes a written file and tells whether it holds all that was written.
inline bool CloseWritten(File file) {
  const bool failed = std::ferror(file.get()) != 0;
  return std::fclose(file.release()) == 0 && !failed;
}

}  // namespace mirvo
