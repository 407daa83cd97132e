#pragma once

#include "platform/UserDefaults.h"

namespace tavelle {

// NSUserDefaults.standardUserDefaults.
class MacUserDefaults : public UserDefaults {
 public:
  std::optional<DefaultsValue> objectForKey(const std::string& key) const override;
  void setObject(DefaultsValue value, const std::string& key) override;
  void removeObjectForKey(const std::string& key) override;
};

}  // namespace tavelle
