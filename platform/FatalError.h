#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

namespace tavelle {

// Ends the process for a fault that no caller can answer: `message` goes to standard error first. It must hold no
// secret.
[[noreturn]] inline void fatalError(const std::string& message) {
  std::fprintf(stderr, "Tavelle: fatal error: %s\n", message.c_str());
  std::fflush(stderr);
  std::abort();
}

}  // namespace tavelle
