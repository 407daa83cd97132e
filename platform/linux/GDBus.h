#pragma once

#include "platform/linux/GObjectPtr.h"

#include <gio/gio.h>

#include <functional>
#include <string>
#include <string_view>
#include <utility>

// D-Bus by GIO, with function objects in place of callbacks and tokens in place of numbers. Callbacks come on the main
// context that was the thread's own when they were given: on the main thread where nobody pushed another.
namespace tavelle::dbus {

// Undoes a registration when it goes: unexports an object, gives up a name, ends a watch or a subscription.
class [[nodiscard]] Registration {
 public:
  Registration() = default;
  explicit Registration(std::function<void()> undo) : undo_(std::move(undo)) {}
  Registration(Registration&& other) noexcept : undo_(std::exchange(other.undo_, nullptr)) {}
  Registration& operator=(Registration&& other) noexcept {
    std::swap(undo_, other.undo_);
    return *this;
  }
  Registration(const Registration&) = delete;
  Registration& operator=(const Registration&) = delete;
  ~Registration() {
    if (undo_) undo_();
  }

  explicit operator bool() const { return undo_ != nullptr; }

 private:
  std::function<void()> undo_;
};

// What an exported object does.
struct Object {
  // Returns the arguments of the reply as a tuple, floating; null for a method with nothing to return, or for an error,
  // which it puts in `error`.
  std::function<GVariant*(std::string_view method, GVariant* arguments, GError** error)> call;
  // Returns the property's value, floating.
  std::function<GVariant*(std::string_view property)> property;
};

// Exports `object` under `path`, with the first interface that `introspectionXML` describes. Empty where the path is
// taken.
Registration exportObject(GDBusConnection* connection, const char* path, const char* introspectionXML, Object object);

// Asks the bus for a name, which need not be granted, and gives it up when the registration goes. Does not wait for
// either.
Registration ownName(GDBusConnection* connection, const std::string& name);
void releaseName(GDBusConnection* connection, const char* name);

// Calls `appeared` once the name has an owner and at each new one, `vanished` when it has none.
Registration watchName(GDBusConnection* connection, const char* name, std::function<void()> appeared,
                       std::function<void()> vanished);

struct Method {
  const char* destination;
  const char* path;
  const char* interface;
  const char* name;
};

// The reply's arguments as a tuple, or null and the error.
using Reply = std::function<void(GVariantPtr result, const GError* error)>;

// Calls a method without waiting. `arguments` is a tuple, floating, or null; `reply` may be empty.
void call(GDBusConnection* connection, const Method& method, GVariant* arguments, Reply reply);

struct Signal {
  const char* sender;
  const char* path;  // null for any
  const char* interface;
  const char* name;
};

// Calls `emitted` with each such signal's arguments as a tuple. It may end the subscription itself.
Registration subscribe(GDBusConnection* connection, const Signal& signal, std::function<void(GVariant*)> emitted);

void emit(GDBusConnection* connection, const char* path, const char* interface, const char* signal,
          GVariant* arguments);

}  // namespace tavelle::dbus
