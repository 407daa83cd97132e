#pragma once

#include "platform/Data.h"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

namespace tavelle {

// What the defaults can hold under a key. Whole numbers and fractions keep their kind; Data is apart from text.
struct DataValue {
  Data bytes;
  bool operator==(const DataValue&) const = default;
};
using DefaultsValue = std::variant<bool, std::int64_t, double, std::string, DataValue>;

// The application's standard preferences domain (NSUserDefaults; one JSON file in the person's configuration folder on
// Linux, replaced atomically at every change). Main thread only. A value set is read back in this process even where it
// cannot be stored.
class UserDefaults {
 public:
  virtual ~UserDefaults() = default;

  virtual std::optional<DefaultsValue> objectForKey(const std::string& key) const = 0;
  virtual void setObject(DefaultsValue value, const std::string& key) = 0;
  virtual void removeObjectForKey(const std::string& key) = 0;
};

}  // namespace tavelle
