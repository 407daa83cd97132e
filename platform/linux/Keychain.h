#pragma once

#include "platform/Keychain.h"
#include "platform/linux/BoundedCalls.h"

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace tavelle {

class SecretServiceClient;
struct SecretItems;

// The keychain on the Secret Service. Items have the attributes `service` and `account`; new ones go into the default
// collection. What secret-tool stores under these attributes is found:
//
//     secret-tool store --label="OpenAI" service app.tavelle.Tavelle account apiKey_openai
//
// Where the service is missing or does not answer in time, the status is errSecNotAvailable. Where the person has to
// agree first (to unlock or to create a keyring, to let Tavelle have an item, to delete one), it is
// errSecInteractionNotAllowed: the service's own question is on the screen then, or they have just said no, and the
// call that comes after they agreed succeeds. A change that they have not said no to waits for the answer: it is made
// when that has come, or the keyring was unlocked in another way, which the default main context has to be served for,
// or by the next call, whichever is first.
class SecretServiceKeychain : public Keychain {
 public:
  struct Limits {
    // One call; a quarter of it after a call that took all of it, until one is answered.
    std::chrono::milliseconds call = std::chrono::seconds(2);
    // For a question that the service answers itself, as it does where the person has told it to ask nothing; and for
    // finding out, after a call that took all of its time, whether the keyring is locked.
    std::chrono::milliseconds question{500};
    // Reading ahead, which is done in a pause and of no use after it.
    std::chrono::milliseconds readingAhead{100};
    // How old what was read ahead may become.
    std::chrono::milliseconds ageAhead{500};
  };

  SecretServiceKeychain() : SecretServiceKeychain(Limits{}) {}
  explicit SecretServiceKeychain(const Limits& limits);
  ~SecretServiceKeychain() override;
  SecretServiceKeychain(const SecretServiceKeychain&) = delete;
  SecretServiceKeychain& operator=(const SecretServiceKeychain&) = delete;

  OSStatus secItemAdd(const KeychainItemQuery& item, const Data& value, KeychainAccessible accessible) override;
  OSStatus secItemCopyMatching(const KeychainItemQuery& query, std::optional<Data>& value) override;

  // Deletes every matching item, those that are not locked before anything is asked. Does not wait for the person where
  // the item was neither read the last time, nor stored: they cannot mean what they have not seen.
  OSStatus secItemDelete(const KeychainItemQuery& query) override;

  // Changes every matching item where it is, all or none, unless it was just read and had that value: its label, its
  // notes and its other attributes are the person's. A service may ask before it deletes one, or keep what was deleted
  // in a bin.
  OSStatus replaceItem(const KeychainItemQuery& item, const Data& value, KeychainAccessible accessible) override;

  // Reads what was read last once more, because it is about to be wanted: if the next call asks for just that, and
  // soon, it has the value without asking the service. Never asks the person anything, nor has a service do so: some
  // want to be unlocked before they search.
  void readAhead();

 private:
  using Clock = std::chrono::steady_clock;

  struct Connection;

  using Operation = std::function<OSStatus(SecretServiceClient&)>;

  struct Change {
    KeychainItemQuery query;
    Operation operation;
  };

  struct Reading {
    KeychainItemQuery query;
    std::string item;  // its object path
  };

  struct KnownValue {
    std::string item;  // its object path
    std::size_t hash;

    bool operator==(const KnownValue&) const = default;
  };

  struct ValueAhead {
    KeychainItemQuery query;
    Data value;
    Clock::time_point read;
  };

  OSStatus perform(const Operation& operation);
  OSStatus make(const Change& change, bool mayWait = true);
  OSStatus tryToMake(SecretServiceClient& client, const Change& change);
  bool isWaiting(const KeychainItemQuery& query) const;
  void forget(const KeychainItemQuery& query);
  void makeWhatWaits(SecretServiceClient& client, bool isFresh);
  bool mustWait(SecretServiceClient& client, const Change& change, bool isFresh);
  void dropWhatWasRefused();
  void listenForAnswers();
  bool isLocked();
  std::optional<Data> takeValueAhead(const KeychainItemQuery& query);
  OSStatus concluded(OSStatus status);
  void tell(OSStatus status);

  bool isSeen(const KeychainItemQuery& query) const;
  void setSeen(const KeychainItemQuery& query, bool isSeen);
  OSStatus read(SecretServiceClient& client, const KeychainItemQuery& query, std::optional<Data>& value);
  OSStatus add(SecretServiceClient& client, const KeychainItemQuery& item, const Data& value);
  OSStatus replace(SecretServiceClient& client, const KeychainItemQuery& item, const Data& value,
                   const std::optional<KnownValue>& known);
  OSStatus remove(SecretServiceClient& client, const KeychainItemQuery& query);
  void create(SecretServiceClient& client, const KeychainItemQuery& item, const Data& value);

  SecretItems search(SecretServiceClient& client, const KeychainItemQuery& query);
  std::vector<std::string> usableItems(SecretServiceClient& client, const KeychainItemQuery& query);
  std::vector<std::string> allItems(SecretServiceClient& client, const KeychainItemQuery& query);
  std::vector<std::string> unlockedItems(SecretServiceClient& client, const KeychainItemQuery& query,
                                         const std::vector<std::string>& locked);
  bool unlockDefaultCollection(SecretServiceClient& client);
  void unlock(SecretServiceClient& client, const std::vector<std::string>& objects);
  void ask(SecretServiceClient& client, const std::string& prompt, const std::optional<KeychainItemQuery>& about);
  bool isAsking() const;
  bool isAskingAbout(const KeychainItemQuery& query) const;
  bool wasRefused() const;

  const Limits limits_;
  std::mutex mutex_;  // guards the rest; every public member holds it
  OSStatus toldLast_ = errSecSuccess;
  GMainContextPtr context_;
  std::unique_ptr<Connection> connection_;  // kept from call to call; dropped when a call fails
  bool wasSilent_ = false;
  std::vector<Change> waiting_;          // for the person; one for each query
  std::vector<KeychainItemQuery> seen_;  // read the last time, or stored
  std::optional<Reading> readLast_;
  std::optional<KnownValue> justRead_;    // until the next call but readAhead()
  std::optional<ValueAhead> valueAhead_;  // until the next call, whatever that is
};

}  // namespace tavelle
