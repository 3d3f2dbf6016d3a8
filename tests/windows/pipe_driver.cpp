// Runs a program over real Windows pipes: pipe_driver PROGRAM [ARGUMENT...]
// Relays its own standard input to the program, and the program's output to
// its own standard output, byte for byte. Needed under Wine, which cannot tell
// whether input waits in a Linux pipe. The exit status is the program's; if the
// driver is killed, the program ends with it.
#include <windows.h>

#include <cstdio>

namespace {

constexpr int cannotStart = 126;
constexpr int cannotEnd = 125;

/// Time for reading the last output after the program has ended.
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

/// Copies until either side ends, then closes both, which passes the end on.
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

/// The rest of this program's command line after its first word: the program to run
/// and its arguments, with their quotes.
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

/// Starts the program suspended. Under Wine a new process may find memory that it
/// needs taken (see wine.sh); that is no fault of the program, so this tries once
/// more.
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

  // The input relay may wait for ever on our own input, so wait only for the program
  // and its output.
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
