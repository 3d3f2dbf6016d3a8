// How often a test with many repetitions repeats, by the kind of build. Under the
// sanitizers every step is checked and takes ten times as long; repeating the
// same steps more often shows nothing more there.
#pragma once

namespace mirvo::test {

#ifdef __SANITIZE_ADDRESS__
inline constexpr bool isInstrumented = true;
#else
inline constexpr bool isInstrumented = false;
#endif

/// `all`, or `few` of them under the sanitizers.
constexpr int Repetitions(int all, int few) { return isInstrumented ? few : all; }

}  // namespace mirvo::test
