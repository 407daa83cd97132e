#pragma once

#include <stdexcept>

namespace tavelle::view {

// What came over the wire is not what a well-behaved other side sends. It says where, and shows none of the contents.
class WireError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace tavelle::view
