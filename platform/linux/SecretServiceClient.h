#pragma once

#include "platform/Data.h"
#include "platform/Keychain.h"
#include "platform/OSStatus.h"
#include "platform/linux/BoundedCalls.h"
#include "platform/linux/GObjectPtr.h"

#include <gio/gio.h>
#include <libsecret/secret.h>

#include <string>
#include <vector>

namespace tavelle {

// A call of the Secret Service failed. Not for people: the keychain answers with the status.
struct SecretServiceError {
  OSStatus status;
};

// What a search found: object paths.
struct SecretItems {
  std::vector<std::string> unlocked;
  std::vector<std::string> locked;
};

// The calls of the Secret Service that a keychain is made of (specifications.freedesktop.org/secret-service). libsecret
// keeps the session, in which secrets cross the bus encrypted. Every call throws SecretServiceError, when the time is
// up too.
class SecretServiceClient {
 public:
  using ObjectPath = std::string;

  // What a call came to that may have to ask the person first.
  struct Outcome {
    ObjectPath object;  // empty where there is none yet
    ObjectPath prompt;  // empty where nothing is asked; otherwise nothing has been done yet
  };

  // The service as it is now, with an open session of its own.
  static GObjectPtr<SecretService> open(BoundedCalls& calls);

  SecretServiceClient(BoundedCalls& calls, SecretService* service) : calls_(calls), service_(service) {}

  BoundedCalls& calls() { return calls_; }

  // A service may ask the person to unlock it first, without waiting for that.
  SecretItems search(const KeychainItemQuery& query);
  // Whether this item would be found. Asks nobody anything.
  bool isFound(const ObjectPath& item, const KeychainItemQuery& query);
  Data secret(const ObjectPath& item);
  void setSecret(const ObjectPath& item, const Data& value);

  // The collection for new items; empty where there is none.
  ObjectPath defaultCollection();
  bool isLocked(const ObjectPath& collection);
  Outcome createDefaultCollection();

  // In place of the one with these attributes, should it have come since it was looked for.
  Outcome createItem(const ObjectPath& collection, const KeychainItemQuery& item, const Data& value);
  Outcome deleteItem(const ObjectPath& item);
  Outcome unlock(const std::vector<ObjectPath>& objects);

 private:
  // Null where it has another type.
  GVariantPtr property(const ObjectPath& object, const char* interface, const char* name, const GVariantType* type);
  GVariant* encrypted(const Data& value);  // with a floating reference
  GVariantPtr call(const ObjectPath& object, const char* interface, const char* method, GVariant* arguments,
                   const char* replyType);

  BoundedCalls& calls_;
  SecretService* service_;
};

}  // namespace tavelle
