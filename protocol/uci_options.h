// The UCI options: their list and their setting.
#pragma once

namespace mirvo {

/// Prints one "option name" line for each option. The defaults are the
/// table's whatever the settings file says, but for the book's name.
void PrintUciOptions();

/// "setoption name": `text` begins with the option's name. Values are not
/// compared with the limits of the list; unknown names change nothing.
void SetUciOption(const char* text);

}  // namespace mirvo
