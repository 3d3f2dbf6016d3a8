// The UCI options: printing the list and setting one.
#pragma once

namespace mirvo {

/// Prints one "option name" line for each option. Except for the book's name, the
/// defaults do not depend on the settings file.
void PrintUciOptions();

/// "setoption name": `text` begins with the option's name. Values outside the listed
/// limits are accepted; unknown names change nothing.
void SetUciOption(const char* text);

}  // namespace mirvo
