#pragma once

#include <string>
#include <utility>
#include <vector>

namespace tavelle {

// What the fake services did, in order: the one place where a test reads a whole run.
class EventLog {
 public:
  void add(std::string event) { events_.push_back(std::move(event)); }
  const std::vector<std::string>& events() const { return events_; }
  std::vector<std::string> take() { return std::exchange(events_, {}); }

 private:
  std::vector<std::string> events_;
};

}  // namespace tavelle
