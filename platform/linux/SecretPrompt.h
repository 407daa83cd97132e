#pragma once

#include "platform/linux/GObjectPtr.h"

#include <gio/gio.h>

#include <chrono>
#include <string>

namespace tavelle {

// A question that the Secret Service asks the person in its own window, or answers itself where it was told to ask
// nothing. Made and destroyed with the main context pushed on which the answer is to be noticed.
class SecretPrompt {
 public:
  // Has the service of this unique name ask.
  SecretPrompt(GDBusConnection* connection, const char* service, const std::string& path);
  ~SecretPrompt();
  SecretPrompt(const SecretPrompt&) = delete;
  SecretPrompt& operator=(const SecretPrompt&) = delete;

  // Whether the person may still be looking at it: it has not been answered, and is not so old that the service must
  // have lost it.
  bool isOpen() const;

  const std::string& service() const { return service_; }

  bool isAgreed() const { return isCompleted_ && !isDismissed_; }

 private:
  static void onCompleted(GDBusConnection*, const char*, const char*, const char*, const char*, GVariant*,
                          gpointer self);

  GObjectPtr<GDBusConnection> connection_;
  std::string service_;
  guint subscription_;
  std::chrono::steady_clock::time_point askedAt_;
  bool isCompleted_ = false;
  bool isDismissed_ = false;
};

}  // namespace tavelle
