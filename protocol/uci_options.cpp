#include "protocol/uci_options.h"

#include <cstdint>
#include <cstring>

#include "search/hash/hash_allocation.h"
#include "search/hash/hash_table.h"
#include "shell/base/output.h"
#include "shell/base/text.h"
#include "shell/config/config.h"

namespace mirvo {
namespace {

enum OptionType { spinOption, comboOption, checkOption, stringOption, buttonOption };

constexpr const char* optionTypeNames[] = {"spin", "combo", "check", "string", "button"};

constexpr int maxComboValues = 8;

struct UciOption {
  const char* name;
  OptionType type;
  const char* defaultText;
  std::int32_t minimum;  // spins only
  std::int32_t maximum;
  const char* comboValues[maxComboValues];  // ends at the first null
};

constexpr UciOption uciOptions[] = {
    {"Use Opening Book", checkOption, "true", 0, 0, {}},
    {"Book File", stringOption, bookFileOptionText, 0, 0, {}},
    {"Pawn Hash Size", spinOption, "30", 1, 100, {}},
    {"Eval Hash Size", spinOption, "100", 1, 100, {}},
    {"TT Hash Size", spinOption, "100", 1, 100, {}},
    {"Ponder", checkOption, "true", 0, 0, {}},
};

void PrintOption(const UciOption& option) {
  Output(output, "option name %s type %s", option.name, optionTypeNames[option.type]);
  if (option.type != buttonOption) Output(output, " default %s", option.defaultText);
  if (option.type == spinOption) Output(output, " min %d max %d", option.minimum, option.maximum);
  if (option.type == comboOption) {
    for (const char* const* value = option.comboValues; *value != nullptr; ++value) {
      Output(output, " var %s", *value);
    }
  }
  Output(output, "\n");
}

std::int32_t ReadCheck(const char* value) { return StartsWith(value, "true") ? 1 : 0; }

/// New memory is zeroed, so the new table is empty without clearing.
void Resize(HashTable& table, std::int32_t megabytes) {
  table.size = static_cast<std::uint32_t>(megabytes);
  HashAllocate(table);
}

void SetUseOpeningBook(const char* value) { engineConfig.UseOpeningBook = ReadCheck(value); }

void SetPawnHashSize(const char* value) {
  engineConfig.PawnHashSize = ReadDecimal(value);
  Resize(PawnHashTable, engineConfig.PawnHashSize);
}

void SetEvalHashSize(const char* value) {
  engineConfig.EvalHashSize = ReadDecimal(value);
  Resize(EvalHashTable, engineConfig.EvalHashSize);
}

void SetTTHashSize(const char* value) {
  engineConfig.TTHashSize = ReadDecimal(value);
  Resize(TranspositionTable, engineConfig.TTHashSize);
}

void SetContempt(const char* value) { engineConfig.Contempt = ReadDecimal(value); }

void SetPonder(const char* value) { engineConfig.Ponder = ReadCheck(value); }

struct OptionSetter {
  const char* name;
  void (*set)(const char* value);
};

/// The options that can be set, in the order of comparison.
constexpr OptionSetter optionSetters[] = {
    {"Use Opening Book", SetUseOpeningBook},
    {"Pawn Hash Size", SetPawnHashSize},
    {"Eval Hash Size", SetEvalHashSize},
    {"TT Hash Size", SetTTHashSize},
    {"Contempt", SetContempt},
    {"Ponder", SetPonder},
};

/// The text between name and value; only its length matters.
constexpr char valueWord[] = " value ";

/// The text from `distance` characters on, or its end if it is shorter.
const char* TextBehind(const char* text, std::size_t distance) {
  return text + strnlen(text, distance);
}

}  // namespace

void PrintUciOptions() {
  for (const UciOption& option : uciOptions) PrintOption(option);
}

void SetUciOption(const char* text) {
  for (const OptionSetter& setter : optionSetters) {
    if (StartsWith(text, setter.name)) {
      setter.set(TextBehind(text, std::strlen(setter.name) + sizeof valueWord - 1));
      return;
    }
  }
}

}  // namespace mirvo
