#include "tools/hotkeys/KeyCombination.h"

#include "platform/CarbonEvents.h"

#include <algorithm>
#include <array>

namespace tavelle {
namespace {

struct Named {
  std::string_view name;
  std::uint32_t code;
};

constexpr std::array modifierNames = {
    Named{"control", controlKey}, Named{"ctrl", controlKey}, Named{"option", optionKey}, Named{"alt", optionKey},
    Named{"shift", shiftKey},     Named{"command", cmdKey},  Named{"cmd", cmdKey},       Named{"super", cmdKey},
    Named{"meta", cmdKey},        Named{"win", cmdKey}};

// The keys of the usual combinations come first.
constexpr std::array keyNames = {Named{"a", 0},
                                 Named{"b", 11},
                                 Named{"c", 8},
                                 Named{"d", 2},
                                 Named{"e", 14},
                                 Named{"f", 3},
                                 Named{"g", 5},
                                 Named{"h", 4},
                                 Named{"i", 34},
                                 Named{"j", 38},
                                 Named{"k", 40},
                                 Named{"l", 37},
                                 Named{"m", 46},
                                 Named{"n", 45},
                                 Named{"o", 31},
                                 Named{"p", 35},
                                 Named{"q", 12},
                                 Named{"r", 15},
                                 Named{"s", 1},
                                 Named{"t", 17},
                                 Named{"u", 32},
                                 Named{"v", 9},
                                 Named{"w", 13},
                                 Named{"x", 7},
                                 Named{"y", 16},
                                 Named{"z", 6},
                                 Named{"0", 29},
                                 Named{"1", 18},
                                 Named{"2", 19},
                                 Named{"3", 20},
                                 Named{"4", 21},
                                 Named{"5", 23},
                                 Named{"6", 22},
                                 Named{"7", 26},
                                 Named{"8", 28},
                                 Named{"9", 25},
                                 Named{"f1", 122},
                                 Named{"f2", 120},
                                 Named{"f3", 99},
                                 Named{"f4", 118},
                                 Named{"f5", 96},
                                 Named{"f6", 97},
                                 Named{"f7", 98},
                                 Named{"f8", 100},
                                 Named{"f9", 101},
                                 Named{"f10", 109},
                                 Named{"f11", 103},
                                 Named{"f12", 111},
                                 Named{"f13", 105},
                                 Named{"f14", 107},
                                 Named{"f15", 113},
                                 Named{"f16", 106},
                                 Named{"f17", 64},
                                 Named{"f18", 79},
                                 Named{"f19", 80},
                                 Named{"f20", 90},
                                 Named{"space", 49},
                                 Named{"return", 36},
                                 Named{"enter", 36},
                                 Named{"tab", 48},
                                 Named{"escape", 53},
                                 Named{"delete", 117},
                                 Named{"backspace", 51},
                                 Named{"insert", 114},
                                 Named{"home", 115},
                                 Named{"end", 119},
                                 Named{"pageup", 116},
                                 Named{"pagedown", 121},
                                 Named{"left", 123},
                                 Named{"right", 124},
                                 Named{"up", 126},
                                 Named{"down", 125},
                                 Named{"grave", 50},
                                 Named{"minus", 27},
                                 Named{"equal", 24},
                                 Named{"comma", 43},
                                 Named{"period", 47},
                                 Named{"slash", 44},
                                 Named{"backslash", 42},
                                 Named{"semicolon", 41},
                                 Named{"quote", 39},
                                 Named{"leftbracket", 33},
                                 Named{"rightbracket", 30}};
constexpr std::size_t usualKeyCount = 26 + 10 + 12;

char lowerCased(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}
char upperCased(char letter) {
  return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
}

template <std::size_t count>
std::optional<std::uint32_t> codeOf(const std::array<Named, count>& names, const std::string& name) {
  const auto known = std::ranges::find(names, std::string_view{name}, &Named::name);
  return known == names.end() ? std::nullopt : std::optional{known->code};
}

}  // namespace

std::optional<KeyCombination> KeyCombination::parse(std::string_view text) {
  std::string lower{text};
  std::ranges::transform(lower, lower.begin(), lowerCased);
  KeyCombination combination{0, 0};
  std::size_t start = 0;
  for (auto plus = lower.find('+'); plus != std::string::npos; plus = lower.find('+', start)) {
    const auto modifier = codeOf(modifierNames, lower.substr(start, plus - start));
    if (!modifier) return std::nullopt;
    combination.modifiers |= *modifier;
    start = plus + 1;
  }
  const auto key = codeOf(keyNames, lower.substr(start));
  if (!key) return std::nullopt;
  combination.keyCode = *key;
  return combination;
}

std::string KeyCombination::description() const {
  std::string text;
  if (modifiers & controlKey) text += "Control+";
  if (modifiers & optionKey) text += "Alt+";
  if (modifiers & shiftKey) text += "Shift+";
  if (modifiers & cmdKey) text += "Super+";
  const auto known = std::ranges::find(keyNames, keyCode, &Named::code);
  if (known == keyNames.end()) return text + std::to_string(keyCode);
  std::string name{known->name};
  name.front() = upperCased(name.front());
  return text + name;
}

std::vector<KeyCombination> usualCombinations() {
  std::vector<KeyCombination> combinations;
  for (const auto modifiers : {cmdKey | shiftKey, cmdKey, cmdKey | optionKey, cmdKey | controlKey,
                               controlKey | optionKey, controlKey | shiftKey | optionKey}) {
    for (std::size_t i = 0; i < usualKeyCount; ++i) combinations.push_back({keyNames.at(i).code, modifiers});
  }
  return combinations;
}

}  // namespace tavelle
