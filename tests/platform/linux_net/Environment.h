#pragma once

#include <cstdlib>
#include <map>
#include <optional>
#include <string>

namespace tavelle::tests {

// Environment variables, set for the life of this object.
class Environment {
 public:
  explicit Environment(const std::map<std::string, std::string>& values) {
    for (const auto& [name, value] : values) {
      const char* before = std::getenv(name.c_str());
      before_[name] = before ? std::optional<std::string>{before} : std::nullopt;
      setenv(name.c_str(), value.c_str(), 1);
    }
  }
  ~Environment() {
    for (const auto& [name, value] : before_) {
      if (value) {
        setenv(name.c_str(), value->c_str(), 1);
      } else {
        unsetenv(name.c_str());
      }
    }
  }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

 private:
  std::map<std::string, std::optional<std::string>> before_;
};

}  // namespace tavelle::tests
