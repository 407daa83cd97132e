#pragma once

#include <functional>
#include <sstream>
#include <string>

namespace tavelle::bench {

// What the bench says to one of its programs on standard input.
class CommandLines {
 public:
  // Has each line that came obeyed. False where no more will come.
  bool read(const std::function<void(std::istringstream& line)>& obey);

 private:
  std::string input_;
};

}  // namespace tavelle::bench
