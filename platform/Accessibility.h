#pragma once

#include <map>
#include <string>

namespace tavelle {

// The key that asks AXIsProcessTrustedWithOptions to show the system's own prompt (kAXTrustedCheckOptionPrompt).
inline constexpr const char* trustedCheckOptionPrompt = "AXTrustedCheckOptionPrompt";

// Whether the person lets this process post key strokes into other applications (ApplicationServices, HIServices).
// Linux: whether synthetic input is possible in this session at all; there is no prompt to show.
class Accessibility {
 public:
  virtual ~Accessibility() = default;

  virtual bool isProcessTrusted() = 0;
  virtual bool isProcessTrustedWithOptions(const std::map<std::string, bool>& options) = 0;
};

}  // namespace tavelle
