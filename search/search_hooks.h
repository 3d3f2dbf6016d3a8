// Calls from the search to the layers above it, as function pointers that start-up
// sets. A null pointer means that there is nothing to call.
#pragma once

namespace mirvo {

struct SearchHooks {
  /// Handles input that is already waiting; returns at once if none is.
  void (*pollInput)() = nullptr;
};

/// Owner: search_hooks.cpp. Writers: start-up, tests.
extern SearchHooks searchHooks;

}  // namespace mirvo
