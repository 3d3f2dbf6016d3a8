// An input source with the bytes that a test has sent so far.
#pragma once

#include <algorithm>
#include <cstring>
#include <deque>
#include <string>
#include <vector>

#include "protocol/input.h"

namespace mirvo {

struct FakeInput {
  std::string bytes;           // sent and not read
  bool ended = false;          // nothing follows them
  bool parentExited = false;   // what the source answers when asked
  bool outputClosed = false;   // the same about the reader of the output
  std::size_t maxRead = 4096;  // bytes that one read gives at most
  int nReads = 0;
  bool ranDry = false;  // a waiting read found nothing, or the end
  std::vector<std::uint32_t> pauses;
  std::deque<std::string> afterPause;  // sent during the next pauses
};

inline FakeInput fakeInput;

/// As an element of FakeInput::afterPause: the input ends.
inline const std::string inputEnds = "<end>";

inline std::uint32_t FakeWaiting() {
  if (fakeInput.bytes.empty()) return fakeInput.ended ? 1 : 0;
  return static_cast<std::uint32_t>(fakeInput.bytes.size());
}

inline int FakeRead(char* buffer, std::size_t size, bool wait) {
  ++fakeInput.nReads;
  const std::size_t nBytes = std::min({size, fakeInput.maxRead, fakeInput.bytes.size()});
  // Bytes, not a text. NOLINTNEXTLINE(bugprone-not-null-terminated-result)
  std::memcpy(buffer, fakeInput.bytes.data(), nBytes);
  fakeInput.bytes.erase(0, nBytes);
  if (nBytes > 0) return static_cast<int>(nBytes);
  fakeInput.ranDry = fakeInput.ranDry || wait;
  return fakeInput.ended ? inputEnded : nothingToRead;
}

inline bool FakeParentExited() { return fakeInput.parentExited; }

inline bool FakeOutputClosed() { return fakeInput.outputClosed; }

inline void FakePause(std::uint32_t milliseconds) {
  fakeInput.pauses.push_back(milliseconds);
  if (fakeInput.afterPause.empty()) {
    // A test without further input must not wait for ever.
    if (fakeInput.pauses.size() > 1000) fakeInput.ended = true;
    return;
  }
  const std::string sent = fakeInput.afterPause.front();
  fakeInput.afterPause.pop_front();
  if (sent == inputEnds) {
    fakeInput.ended = true;
  } else {
    fakeInput.bytes += sent;
  }
}

inline constexpr InputSource fakeSource{FakeWaiting, FakeRead, FakeParentExited, FakeOutputClosed,
                                        FakePause};

}  // namespace mirvo
