// How often a test repeats what chance or sheer number may show, by the kind of
// build. Under the sanitizers every step is looked at, and takes ten times as
// long; more of the same steps shows nothing more there.
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
