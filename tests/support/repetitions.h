// How often a test with many repetitions repeats, by the kind of build. The
// sanitizers check every step, an emulator translates it for another processor, and
// either takes ten times as long; repeating the same steps more often shows nothing
// more there.
#pragma once

namespace mirvo::test {

#if defined(__SANITIZE_ADDRESS__) || defined(MIRVO_EMULATED)
inline constexpr bool isSlow = true;
#else
inline constexpr bool isSlow = false;
#endif

/// `all`, or `few` of them where each is slow.
constexpr int Repetitions(int all, int few) { return isSlow ? few : all; }

}  // namespace mirvo::test
