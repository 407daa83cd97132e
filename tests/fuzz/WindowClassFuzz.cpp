// WM_CLASS, by which terminals are known: whoever is taken for none gets Control+C.

#include "platform/linux/x11/PropertyValues.h"
#include "platform/linux/x11/Terminals.h"
#include "tests/fuzz/Fuzz.h"

#include <cctype>

namespace tavelle::fuzz {
namespace {

using x11::EditingKeys;

std::string upperCased(std::string_view text) {
  std::string upper{text};
  std::transform(upper.begin(), upper.end(), upper.begin(),
                 [](unsigned char c) { return static_cast<char>(c < 0x80 ? std::toupper(c) : c); });
  return upper;
}

void run(std::string_view property) {
  const auto [instance, name] = x11::windowClassIn(property);
  require(instance.find('\0') == std::string_view::npos && name.find('\0') == std::string_view::npos,
          "a name has a NUL");
  require(property.starts_with(instance), "the instance comes first");
  const auto both = instance.size() + 1 + name.size();
  require(both >= property.size() || (property.substr(0, both).ends_with(name) && property[both] == '\0'),
          "the class comes second, up to its end");

  const auto keys = x11::editingKeysOf(instance, name);
  require(keys == x11::editingKeysOf(upperCased(instance), upperCased(name)), "letter case changes the keys");
  const bool isNamedSo = upperCased(instance).ends_with("TERMINAL") || upperCased(name).ends_with("TERMINAL");
  require(!isNamedSo || keys != EditingKeys::control, "a terminal is interrupted");
  const bool isKnown =
      x11::editingKeysOf(instance, "") != EditingKeys::control || x11::editingKeysOf("", name) != EditingKeys::control;
  require(isKnown == (keys != EditingKeys::control), "either name is enough, and one of them is needed");
}

}  // namespace
}  // namespace tavelle::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tavelle::fuzz::run(tavelle::fuzz::Input{data, size}.rest());
  return 0;
}
