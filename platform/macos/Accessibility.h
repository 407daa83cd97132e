#pragma once

#include "platform/Accessibility.h"

namespace tavelle {

class MacAccessibility : public Accessibility {
 public:
  bool isProcessTrusted() override;
  bool isProcessTrustedWithOptions(const std::map<std::string, bool>& options) override;
};

}  // namespace tavelle
