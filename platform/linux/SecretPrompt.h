#pragma once

#include "platform/linux/GDBus.h"
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

  bool isAgreed() const { return state_ == State::agreed; }
  bool isRefused() const { return state_ == State::refused; }

  const std::string& service() const { return service_; }

 private:
  enum class State { asked, agreed, refused, failed };

  static void onAsked(GObject* connection, GAsyncResult* result, gpointer self);
  void onCompleted(GVariant* outcome);

  std::string service_;
  dbus::Registration completed_;
  std::chrono::steady_clock::time_point askedAt_;
  GObjectPtr<GCancellable> asking_;
  State state_ = State::asked;
};

}  // namespace tavelle
