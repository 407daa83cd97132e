// The settings file: made to be edited by hand.

#include "platform/linux/DefaultsJSON.h"

#include "tests/fuzz/Fuzz.h"

#include <optional>

namespace tavelle::fuzz {
namespace {

using JSON = nlohmann::ordered_json;

// A value that is written to the file and read from it again.
std::optional<DefaultsValue> throughTheFile(const DefaultsValue& value) {
  const auto file = settingsText(JSON{{"key", jsonFromDefaults(value)}});
  require(isUTF8(file) && file.ends_with('\n'), "the file is no text");
  const auto read = parseSettings(file);
  require(read && read->size() == 1, "the file does not read back");
  return defaultsFromJSON(read->at("key"));
}

void read(const std::string& file) {
  const auto values = parseSettings(file);
  if (!values) return;
  require(file.find('\0') == file.npos, "the file has an end before its end");
  const auto written = settingsText(*values);
  require(parseSettings(written) == values, "what is written does not read back");
  require(settingsText(*parseSettings(written)) == written, "the file changes with every reading");
  for (const auto& [key, value] : values->items()) {
    const auto held = defaultsFromJSON(value);
    if (!held) continue;
    require(throughTheFile(*held) == held, "a value changes");
    require(value.is_structured() || jsonFromDefaults(*held).dump() == value.dump(), "a value is another");
  }
}

void run(Input input) {
  switch (input.choice(3)) {
    case 0:
      return read(std::string{input.rest()});
    case 1: {
      const DefaultsValue data = DataValue{Data{input.rest()}};
      return require(throughTheFile(data) == data, "data lose a byte");
    }
    default: {
      const DefaultsValue text = textOf(input.rest());
      require(throughTheFile(text) == text, "text loses a character");
    }
  }
}

}  // namespace
}  // namespace tavelle::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tavelle::fuzz::run({data, size});
  return 0;
}
