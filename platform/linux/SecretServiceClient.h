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

// The calls of the Secret Service that a keychain is made of (specifications.freedesktop.org/secret-service). libsecret
// keeps the session, in which secrets cross the bus encrypted. Every call throws SecretServiceError, when the time is
// up too.
class SecretServiceClient {
 public:
  using ObjectPath = std::string;

  struct Items {
    std::vector<ObjectPath> unlocked;
    std::vector<ObjectPath> locked;
  };

  // What a call came to that may have to ask the person first.
  struct Outcome {
    ObjectPath object;  // empty where there is none yet
    ObjectPath prompt;  // empty where nothing is asked; otherwise nothing has been done yet
  };

  // The service as it is now, with an open session of its own.
  static GObjectPtr<SecretService> open(BoundedCalls& calls);

  SecretServiceClient(BoundedCalls& calls, SecretService* service) : calls_(calls), service_(service) {}

  Items search(const KeychainItemQuery& query);
  Data secret(const ObjectPath& item);

  // The collection for new items; empty where there is none.
  ObjectPath defaultCollection();
  bool isLocked(const ObjectPath& collection);
  Outcome createDefaultCollection();

  Outcome createItem(const ObjectPath& collection, const KeychainItemQuery& item, const Data& value);
  Outcome deleteItem(const ObjectPath& item);
  Outcome unlock(const std::vector<ObjectPath>& objects);

 private:
  GVariantPtr call(const ObjectPath& object, const char* interface, const char* method, GVariant* arguments,
                   const char* replyType);

  BoundedCalls& calls_;
  SecretService* service_;
};

}  // namespace tavelle
