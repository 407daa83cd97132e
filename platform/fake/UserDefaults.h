#pragma once

#include "platform/UserDefaults.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace tavelle {

// Defaults in memory, and the keys in the order in which they were written.
class FakeUserDefaults : public UserDefaults {
 public:
  std::optional<DefaultsValue> objectForKey(const std::string& key) const override {
    const auto found = values.find(key);
    return found == values.end() ? std::nullopt : std::optional{found->second};
  }
  void setObject(DefaultsValue value, const std::string& key) override {
    writes.push_back(key);
    values.insert_or_assign(key, std::move(value));
  }
  void removeObjectForKey(const std::string& key) override { values.erase(key); }

  std::map<std::string, DefaultsValue> values;
  std::vector<std::string> writes;
};

}  // namespace tavelle
