// Runs a program over real Windows pipes: pipe_driver PROGRAM [ARGUMENT...]
// Relays its own standard input to the program, and the program's output to
// its own standard output, byte for byte. Needed under Wine, which cannot tell
// whether input waits in a pipe that comes from outside. The exit status is the
// program's; a driver that is killed takes the program with it.
#include <windows.h>

#include <cstdio>

namespace {

constexpr int cannotStart = 126;
constexpr int cannotEnd = 125;

/// How long the last output of a program that has ended may take to be read.
constexpr DWORD lastOutputLimit = 60000;  // ms

struct Pipe {
  HANDLE reading = nullptr;
  HANDLE writing = nullptr;
};

/// A pipe of which the child inherits one end only.
Pipe MakePipe(bool childReads) {
  SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  Pipe pipe;
  if (CreatePipe(&pipe.reading, &pipe.writing, &inheritable, 0) == 0) return Pipe{};
  SetHandleInformation(childReads ? pipe.writing : pipe.reading, HANDLE_FLAG_INHERIT, 0);
  return pipe;
}

struct Relay {
  HANDLE from;
  HANDLE to;
};

/// Copies until either side ends, then closes both, so that each side's end is
/// passed on to the other.
DWORD WINAPI RunRelay(void* parameter) {
  const Relay relay = *static_cast<const Relay*>(parameter);
  char bytes[4096];
  DWORD nRead = 0;
  while (ReadFile(relay.from, bytes, sizeof bytes, &nRead, nullptr) != 0 && nRead > 0) {
    DWORD nWritten = 0;
    if (WriteFile(relay.to, bytes, nRead, &nWritten, nullptr) == 0) break;
  }
  CloseHandle(relay.from);
  CloseHandle(relay.to);
  return 0;
}

/// What stands behind the first word of this program's own command line: the
/// program to run and its arguments, quoted as they were.
wchar_t* RestOfCommandLine() {
  wchar_t* text = GetCommandLineW();
  bool quoted = false;
  while (*text != L'\0' && (quoted || *text != L' ')) {
    if (*text == L'"') quoted = !quoted;
    ++text;
  }
  while (*text == L' ') ++text;
  return text;
}

/// Starts the program suspended. Under Wine a new process may find its memory
/// taken before it begins (wine.sh tells when), which is reported like this
/// and says nothing about the program: one more attempt.
bool StartProgram(STARTUPINFOW& start, PROCESS_INFORMATION& process) {
  for (int attempt = 1;; ++attempt) {
    if (CreateProcessW(nullptr, RestOfCommandLine(), nullptr, nullptr, TRUE, CREATE_SUSPENDED,
                       nullptr, nullptr, &start, &process) != 0) {
      return true;
    }
    const DWORD error = GetLastError();
    std::fprintf(stderr, "pipe_driver: cannot start %ls (error %u, attempt %d)\n",
                 RestOfCommandLine(), static_cast<unsigned>(error), attempt);
    if (error != ERROR_INTERNAL_ERROR || attempt == 2) return false;
  }
}

/// Every process in the job ends when the last handle to it is closed.
HANDLE MakeKillingJob() {
  const HANDLE job = CreateJobObjectW(nullptr, nullptr);
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
  limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
  SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits);
  return job;
}

}  // namespace

int main() {
  const Pipe input = MakePipe(true);
  const Pipe output = MakePipe(false);
  const HANDLE job = MakeKillingJob();
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdInput = input.reading;
  start.hStdOutput = output.writing;
  start.hStdError = GetStdHandle(STD_ERROR_HANDLE);
  PROCESS_INFORMATION process{};
  if (!StartProgram(start, process)) return cannotStart;
  AssignProcessToJobObject(job, process.hProcess);
  ResumeThread(process.hThread);
  CloseHandle(input.reading);
  CloseHandle(output.writing);

  // The input relay may wait for ever on our own input; only the end of the
  // program and of its output count.
  Relay toProgram{GetStdHandle(STD_INPUT_HANDLE), input.writing};
  Relay fromProgram{output.reading, GetStdHandle(STD_OUTPUT_HANDLE)};
  CreateThread(nullptr, 0, RunRelay, &toProgram, 0, nullptr);
  const HANDLE outputRelay = CreateThread(nullptr, 0, RunRelay, &fromProgram, 0, nullptr);
  WaitForSingleObject(process.hProcess, INFINITE);
  if (WaitForSingleObject(outputRelay, lastOutputLimit) != WAIT_OBJECT_0) {
    std::fprintf(stderr, "pipe_driver: the program has ended, but nobody reads its output\n");
    ExitProcess(cannotEnd);
  }
  DWORD status = 0;
  GetExitCodeProcess(process.hProcess, &status);
  ExitProcess(status);
}
