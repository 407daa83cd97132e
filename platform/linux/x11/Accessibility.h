#pragma once

#include "platform/Accessibility.h"
#include "platform/linux/x11/Connection.h"

namespace tavelle::x11 {

// Every client of an X server may post keys through XTEST, where the server offers it: one that is reached over
// untrusted forwarding (ssh -X) does not.
class X11Accessibility : public Accessibility {
 public:
  explicit X11Accessibility(const Connection& connection);

  bool isProcessTrusted() override;
  bool isProcessTrustedWithOptions(const std::map<std::string, bool>& options) override;

 private:
  const Connection& connection_;
};

}  // namespace tavelle::x11
