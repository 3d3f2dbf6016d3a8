// The requests of the C library that its own build without a system refuses:
// opening and removing files. The host keeps the files.
#include "shell/base/host_web.h"

// The library names them.
extern "C" {

long __syscall_open(const char* path, long flags, ...) { return HostOpenFile(path, flags); }

long __syscall_unlink(const char* path) { return HostRemoveFile(path); }

}  // extern "C"
