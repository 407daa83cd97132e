#pragma once

#include <cstdlib>
#include <map>
#include <optional>
#include <string>

namespace tavelle::tests {

// Environment variables with other values, or none, for the life of this object.
class Environment {
 public:
  using Values = std::map<std::string, std::optional<std::string>>;

  explicit Environment(const Values& values) {
    for (const auto& [name, value] : values) {
      const char* before = std::getenv(name.c_str());
      before_[name] = before ? std::optional<std::string>{before} : std::nullopt;
    }
    set(values);
  }
  ~Environment() { set(before_); }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

 private:
  static void set(const Values& values) {
    for (const auto& [name, value] : values) {
      if (value) {
        setenv(name.c_str(), value->c_str(), 1);
      } else {
        unsetenv(name.c_str());
      }
    }
  }

  Values before_;
};

// For programs that look up a host that does not exist, where the name server that was asked keeps silent: resolver(3)
// would wait for five seconds, twice for each server.
inline const Environment::Values quickResolver{{"RES_OPTIONS", "timeout:1 attempts:1"}};

}  // namespace tavelle::tests
