// Input from a console: only keys count. The program puts events into the queue of
// the console that it is started in, or creates a console.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

#include "protocol/input.h"

namespace mirvo {
namespace {

constexpr DWORD ignoredEvents = ENABLE_MOUSE_INPUT | ENABLE_WINDOW_INPUT;

INPUT_RECORD Key(char letter, bool down = true) {
  INPUT_RECORD event{};
  event.EventType = KEY_EVENT;
  event.Event.KeyEvent.bKeyDown = down ? TRUE : FALSE;
  event.Event.KeyEvent.wRepeatCount = 1;
  event.Event.KeyEvent.uChar.AsciiChar = letter;
  event.Event.KeyEvent.wVirtualKeyCode =
      letter == '\r' ? VK_RETURN : static_cast<WORD>(letter - 'a' + 'A');
  return event;
}

INPUT_RECORD Mouse(SHORT column) {
  INPUT_RECORD event{};
  event.EventType = MOUSE_EVENT;
  event.Event.MouseEvent.dwMousePosition.X = column;
  event.Event.MouseEvent.dwEventFlags = MOUSE_MOVED;
  return event;
}

INPUT_RECORD Other(WORD type) {
  INPUT_RECORD event{};
  event.EventType = type;
  return event;
}

/// One console for all tests, because the engine determines the kind of its input
/// once.
class ConsoleInput : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    console = GetStdHandle(STD_INPUT_HANDLE);
    DWORD mode = 0;
    if (GetConsoleMode(console, &mode) == 0) {
      FreeConsole();
      AllocConsole();
      console = CreateFileA("CONIN$", GENERIC_READ | GENERIC_WRITE,
                            FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
      SetStdHandle(STD_INPUT_HANDLE, console);
    }
    made = GetConsoleMode(console, &mode) != 0;
    if (!made) return;
    SetConsoleMode(console, mode | ignoredEvents);
    // The first poll discards what was typed before.
    Queue({Key('x'), Mouse(1)});
    waitingAtFirst = SystemInput().waiting();
  }

  void SetUp() override {
    ASSERT_TRUE(made) << "no console could be made";
    FlushConsoleInputBuffer(console);
  }

  static void Queue(const std::vector<INPUT_RECORD>& events) {
    DWORD nWritten = 0;
    WriteConsoleInputA(console, events.data(), static_cast<DWORD>(events.size()), &nWritten);
    EXPECT_EQ(nWritten, events.size());
  }

  static DWORD NumberQueued() {
    DWORD number = 0;
    GetNumberOfConsoleInputEvents(console, &number);
    return number;
  }

  static inline bool made = false;
  static inline HANDLE console = nullptr;
  static inline std::uint32_t waitingAtFirst = 0;
};

TEST_F(ConsoleInput, TheFirstLookEmptiesTheQueue) { EXPECT_EQ(waitingAtFirst, 0U); }

TEST_F(ConsoleInput, TheFirstLookTurnsMouseAndWindowEventsOff) {
  DWORD mode = 0;
  ASSERT_NE(GetConsoleMode(console, &mode), 0);
  EXPECT_EQ(mode & ignoredEvents, 0U);
  EXPECT_NE(mode & ENABLE_LINE_INPUT, 0U);
}

TEST_F(ConsoleInput, AnEmptyQueueIsNoInput) { EXPECT_EQ(SystemInput().waiting(), 0U); }

TEST_F(ConsoleInput, MouseWindowFocusAndMenuEventsAreNoInput) {
  Queue({Mouse(3), Other(WINDOW_BUFFER_SIZE_EVENT), Other(FOCUS_EVENT), Other(MENU_EVENT)});
  ASSERT_GT(NumberQueued(), 0U);
  EXPECT_EQ(SystemInput().waiting(), 0U);
}

TEST_F(ConsoleInput, AKeyIsInputAndStaysInTheQueue) {
  Queue({Key('u')});
  EXPECT_EQ(SystemInput().waiting(), 1U);
  EXPECT_EQ(SystemInput().waiting(), 1U);
  EXPECT_EQ(NumberQueued(), 1U);
}

TEST_F(ConsoleInput, AKeyReleasedIsInputToo) {
  Queue({Key('u', false)});
  EXPECT_EQ(SystemInput().waiting(), 1U);
}

TEST_F(ConsoleInput, AKeyBehindOtherEventsIsFound) {
  Queue({Mouse(3), Other(FOCUS_EVENT), Mouse(4), Key('u')});
  EXPECT_EQ(SystemInput().waiting(), 1U);
}

TEST_F(ConsoleInput, OnlyTheFirst256EventsAreLookedAt) {
  for (SHORT column = 0; column < 255; ++column) Queue({Other(MENU_EVENT)});
  Queue({Key('u')});
  ASSERT_EQ(NumberQueued(), 256U);
  EXPECT_EQ(SystemInput().waiting(), 1U);
  FlushConsoleInputBuffer(console);
  for (SHORT column = 0; column < 256; ++column) Queue({Other(MENU_EVENT)});
  Queue({Key('u')});
  ASSERT_EQ(NumberQueued(), 257U);
  EXPECT_EQ(SystemInput().waiting(), 0U);
}

TEST_F(ConsoleInput, APollDoesNotReadUntilALineIsComplete) {
  char buffer[64];
  Queue({Key('u'), Key('c'), Key('i')});
  EXPECT_EQ(SystemInput().read(buffer, sizeof buffer, false), nothingToRead);
}

TEST_F(ConsoleInput, APollReadsALineThatIsComplete) {
  char buffer[64];
  Queue({Key('u'), Key('c'), Key('i'), Key('\r')});
  const int nBytes = SystemInput().read(buffer, sizeof buffer, false);
  ASSERT_GT(nBytes, 0);
  EXPECT_EQ(std::string(buffer, static_cast<std::size_t>(nBytes)), "uci\r\n");
}

}  // namespace
}  // namespace mirvo
