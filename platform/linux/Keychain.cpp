#include "platform/linux/Keychain.h"

#include "platform/linux/GDBus.h"
#include "platform/linux/SecretPrompt.h"
#include "platform/linux/SecretServiceClient.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <optional>
#include <utility>

namespace tavelle {
namespace {

// A service that let a call wait for its whole time is likely to do it again, and the caller stands still meanwhile.
constexpr int patienceAfterSilence = 4;

// The default collection where it is locked; empty otherwise.
std::string lockedCollection(SecretServiceClient& client) {
  auto collection = client.defaultCollection();
  return !collection.empty() && client.isLocked(collection) ? std::move(collection) : "";
}

}  // namespace

struct SecretServiceKeychain::Connection {
  explicit Connection(GObjectPtr<SecretService> opened) : service(std::move(opened)) {}

  GObjectPtr<SecretService> service;
  std::optional<SecretPrompt> prompt;            // the last one
  std::optional<KeychainItemQuery> promptAbout;  // the item that it alone is about
  bool isOutdated = false;                       // whether the change it is about has been superseded
  std::vector<dbus::Registration> answers;       // subscriptions, while a change waits
  bool searchesLocked = true;                    // whether it answers a search before it is unlocked
};

SecretServiceKeychain::SecretServiceKeychain(const Limits& limits) : limits_(limits), context_(g_main_context_new()) {}

// What still waits in the context holds the bus connection.
SecretServiceKeychain::~SecretServiceKeychain() {
  connection_.reset();
  while (g_main_context_iteration(context_.get(), false)) continue;
}

// Runs `operation` on the connection at hand. Where that fails, the service may have been started anew since the
// connection was made: then once more on a fresh one, in what is left of the time.
OSStatus SecretServiceKeychain::perform(const Operation& operation) {
  valueAhead_.reset();
  BoundedCalls calls{context_.get(), wasSilent_ ? limits_.call / patienceAfterSilence : limits_.call};
  while (true) {
    const bool isFresh = !connection_;
    try {
      if (isFresh) connection_ = std::make_unique<Connection>(SecretServiceClient::open(calls));
      SecretServiceClient client{calls, connection_->service.get()};
      makeWhatWaits(client, isFresh);
      const auto status = operation(client);
      wasSilent_ = false;
      return status;
    } catch (const SecretServiceError& error) {
      wasSilent_ = false;
      if (error.status == errSecInteractionNotAllowed) return error.status;
      wasSilent_ = calls.isTimeUp();
      connection_.reset();
      if (isFresh || wasSilent_) return error.status;
    }
  }
}

// Makes a change, in place of what waits for the same item; where the person has to agree first, it waits for that.
OSStatus SecretServiceKeychain::make(const Change& change, bool mayWait) {
  justRead_.reset();
  forget(change.query);
  if (isAskingAbout(change.query)) connection_->isOutdated = true;
  const auto status = perform([&](SecretServiceClient& client) { return tryToMake(client, change); });
  if (status == errSecInteractionNotAllowed && mayWait && !wasRefused()) waiting_.push_back(change);
  return concluded(status);
}

// What the service does when the person agrees to an earlier change of the item must not undo this one.
OSStatus SecretServiceKeychain::tryToMake(SecretServiceClient& client, const Change& change) {
  if (isAskingAbout(change.query)) throw SecretServiceError{errSecInteractionNotAllowed};
  return change.operation(client);
}

bool SecretServiceKeychain::isWaiting(const KeychainItemQuery& query) const {
  return std::ranges::any_of(waiting_, [&](const auto& each) { return each.query == query; });
}

void SecretServiceKeychain::forget(const KeychainItemQuery& query) {
  std::erase_if(waiting_, [&](const auto& each) { return each.query == query; });
}

void SecretServiceKeychain::makeWhatWaits(SecretServiceClient& client, bool isFresh) {
  dropWhatWasRefused();
  for (auto each = waiting_.begin(); each != waiting_.end();) {
    each = mustWait(client, *each, isFresh) ? std::next(each) : waiting_.erase(each);
  }
}

// Makes a change that has waited, unless the person still looks at the question. What fails for another reason than
// them, on a connection that is known to work, would fail for ever.
bool SecretServiceKeychain::mustWait(SecretServiceClient& client, const Change& change, bool isFresh) {
  try {
    tryToMake(client, change);
    return false;
  } catch (const SecretServiceError& error) {
    const bool isQuestion = error.status == errSecInteractionNotAllowed;
    if (client.calls().isTimeUp() || (!isQuestion && !isFresh)) throw;
    return isQuestion && isAsking();
  }
}

// A no to a change is for that one; a no to unlocking is for all.
void SecretServiceKeychain::dropWhatWasRefused() {
  if (!wasRefused()) return;
  if (const auto& about = connection_->promptAbout; !about) {
    waiting_.clear();
  } else if (!connection_->isOutdated) {
    forget(*about);
  }
  connection_->prompt.reset();
}

// Has what waits made once the person has answered, or has unlocked the keyring in another way.
void SecretServiceKeychain::listenForAnswers() {
  if (!connection_) return;
  auto& answers = connection_->answers;
  if (waiting_.empty()) return answers.clear();
  if (!answers.empty()) return;
  auto* service = G_DBUS_PROXY(connection_->service.get());
  const auto listenFor = [&](const char* interface, const char* signal, const auto& isReason) {
    const dbus::Signal wanted{g_dbus_proxy_get_name(service), nullptr, interface, signal};
    answers.push_back(dbus::subscribe(g_dbus_proxy_get_connection(service), wanted, [this, isReason](GVariant*) {
      const std::lock_guard lock{mutex_};
      if (isReason()) concluded(perform([](SecretServiceClient&) { return errSecSuccess; }));
    }));
  };
  listenFor("org.freedesktop.Secret.Prompt", "Completed", [] { return true; });
  listenFor("org.freedesktop.Secret.Service", "CollectionChanged", [this] { return !isLocked(); });
}

bool SecretServiceKeychain::isLocked() {
  BoundedCalls calls{context_.get(), limits_.question};
  SecretServiceClient client{calls, connection_->service.get()};
  try {
    return !lockedCollection(client).empty();
  } catch (const SecretServiceError&) {
    return false;
  }
}

// Ends each call that may have changed what waits.
OSStatus SecretServiceKeychain::concluded(OSStatus status) {
  listenForAnswers();
  tell(status);
  return status;
}

// Whoever started the program in a terminal, or reads its journal, learns why there is no key: once for each change.
void SecretServiceKeychain::tell(OSStatus status) {
  if (std::exchange(toldLast_, status) == status) return;
  if (status == errSecNotAvailable) {
    std::fputs("Tavelle: no Secret Service answers on the session bus: API keys cannot be read or saved\n", stderr);
  } else if (status == errSecInteractionNotAllowed) {
    std::fputs("Tavelle: the keyring is locked: API keys cannot be read or saved until it is unlocked\n", stderr);
  }
}

OSStatus SecretServiceKeychain::secItemAdd(const KeychainItemQuery& item, const Data& value, KeychainAccessible) {
  const std::lock_guard lock{mutex_};
  return make({item, [=, this](SecretServiceClient& client) { return add(client, item, value); }});
}

OSStatus SecretServiceKeychain::secItemCopyMatching(const KeychainItemQuery& query, std::optional<Data>& value) {
  const std::lock_guard lock{mutex_};
  value = takeValueAhead(query);
  const auto status =
      value ? errSecSuccess : perform([&](SecretServiceClient& client) { return read(client, query, value); });
  justRead_ = value ? std::optional{KnownValue{readLast_->item, std::hash<Data>{}(*value)}} : std::nullopt;
  setSeen(query, value.has_value());
  return concluded(status);
}

OSStatus SecretServiceKeychain::secItemDelete(const KeychainItemQuery& query) {
  const std::lock_guard lock{mutex_};
  const bool isTheirs = isSeen(query) || isAskingAbout(query);
  return make({query, [=, this](SecretServiceClient& client) { return remove(client, query); }}, isTheirs);
}

OSStatus SecretServiceKeychain::replaceItem(const KeychainItemQuery& item, const Data& value, KeychainAccessible) {
  const std::lock_guard lock{mutex_};
  return make({item, [=, this, known = justRead_](SecretServiceClient& client) {
                 return replace(client, item, value, known);
               }});
}

void SecretServiceKeychain::readAhead() {
  const std::lock_guard lock{mutex_};
  valueAhead_.reset();
  if (!connection_ || !readLast_ || !waiting_.empty() || wasSilent_) return;
  BoundedCalls calls{context_.get(), limits_.readingAhead};
  SecretServiceClient client{calls, connection_->service.get()};
  try {
    if (!client.isFound(readLast_->item, readLast_->query)) return;  // another one may have its path now
    valueAhead_ = {readLast_->query, client.secret(readLast_->item), Clock::now()};
  } catch (const SecretServiceError&) {
    // Whoever asks for it finds out why.
  }
}

// Its value was read from the item that was read last.
std::optional<Data> SecretServiceKeychain::takeValueAhead(const KeychainItemQuery& query) {
  auto ahead = std::exchange(valueAhead_, std::nullopt);
  const bool isWanted = ahead && ahead->query == query && Clock::now() < ahead->read + limits_.ageAhead;
  return isWanted ? std::optional{std::move(ahead->value)} : std::nullopt;
}

OSStatus SecretServiceKeychain::read(SecretServiceClient& client, const KeychainItemQuery& query,
                                     std::optional<Data>& value) {
  readLast_.reset();
  if (isWaiting(query)) throw SecretServiceError{errSecInteractionNotAllowed};  // what is there is about to change
  const auto items = usableItems(client, query);
  if (items.empty()) return errSecItemNotFound;
  value = client.secret(items.front());
  readLast_ = {query, items.front()};
  return errSecSuccess;
}

bool SecretServiceKeychain::isSeen(const KeychainItemQuery& query) const {
  return std::ranges::find(seen_, query) != seen_.end();
}

void SecretServiceKeychain::setSeen(const KeychainItemQuery& query, bool isSeen) {
  std::erase(seen_, query);
  if (isSeen) seen_.push_back(query);
}

OSStatus SecretServiceKeychain::add(SecretServiceClient& client, const KeychainItemQuery& item, const Data& value) {
  if (!usableItems(client, item).empty()) return errSecDuplicateItem;
  if (unlockDefaultCollection(client) && !usableItems(client, item).empty()) return errSecDuplicateItem;
  create(client, item, value);
  setSeen(item, true);
  return errSecSuccess;
}

OSStatus SecretServiceKeychain::replace(SecretServiceClient& client, const KeychainItemQuery& item, const Data& value,
                                        const std::optional<KnownValue>& known) {
  auto items = allItems(client, item);
  if (items.empty() && unlockDefaultCollection(client)) items = allItems(client, item);
  if (items.empty()) create(client, item, value);
  for (const auto& each : items) {
    // What is known may stand there in other words, as a reference to another entry.
    if (known != KnownValue{each, std::hash<Data>{}(value)}) client.setSecret(each, value);
  }
  setSeen(item, true);
  return errSecSuccess;
}

OSStatus SecretServiceKeychain::remove(SecretServiceClient& client, const KeychainItemQuery& query) {
  const auto removeEach = [&](const std::vector<std::string>& items) {
    for (const auto& item : items) {
      const auto outcome = client.deleteItem(item);
      if (!outcome.prompt.empty()) ask(client, outcome.prompt, query);
    }
  };
  auto found = search(client, query);
  const auto isNothing = [&] { return found.unlocked.empty() && found.locked.empty(); };
  if (isNothing() && isSeen(query) && unlockDefaultCollection(client)) found = search(client, query);
  removeEach(found.unlocked);
  if (!found.locked.empty()) removeEach(unlockedItems(client, query, found.locked));
  setSeen(query, false);
  return isNothing() ? errSecItemNotFound : errSecSuccess;
}

void SecretServiceKeychain::create(SecretServiceClient& client, const KeychainItemQuery& item, const Data& value) {
  auto collection = client.defaultCollection();
  if (collection.empty()) {
    const auto created = client.createDefaultCollection();
    if (!created.prompt.empty()) ask(client, created.prompt, std::nullopt);
    collection = created.prompt.empty() ? created.object : client.defaultCollection();
    if (collection.empty()) throw SecretServiceError{errSecNotAvailable};
  }
  const auto created = client.createItem(collection, item, value);
  if (!created.prompt.empty()) ask(client, created.prompt, item);
}

// The matching items that are unlocked; where all are locked, these, once the service has unlocked them.
std::vector<std::string> SecretServiceKeychain::usableItems(SecretServiceClient& client,
                                                            const KeychainItemQuery& query) {
  const auto found = search(client, query);
  const bool isUsable = !found.unlocked.empty() || found.locked.empty();
  return isUsable ? found.unlocked : unlockedItems(client, query, found.locked);
}

// All matching items, once they are unlocked.
std::vector<std::string> SecretServiceKeychain::allItems(SecretServiceClient& client, const KeychainItemQuery& query) {
  const auto found = search(client, query);
  return found.locked.empty() ? found.unlocked : unlockedItems(client, query, found.locked);
}

// All matching items, once those that were found locked are unlocked. Of several the person may agree to some only.
std::vector<std::string> SecretServiceKeychain::unlockedItems(SecretServiceClient& client,
                                                              const KeychainItemQuery& query,
                                                              const std::vector<std::string>& locked) {
  unlock(client, locked);
  const auto found = search(client, query);
  if (!found.locked.empty()) throw SecretServiceError{errSecInteractionNotAllowed};
  return found.unlocked;
}

// Some services want to be unlocked before they search, ask for that themselves, and answer no earlier. They are given
// the time of one call to show it; from then on they are asked to unlock first.
SecretItems SecretServiceKeychain::search(SecretServiceClient& client, const KeychainItemQuery& query) {
  if (!connection_->searchesLocked) unlockDefaultCollection(client);
  try {
    return client.search(query);
  } catch (const SecretServiceError&) {
    connection_->searchesLocked = !client.calls().isTimeUp() || !isLocked();
    if (!connection_->searchesLocked) throw SecretServiceError{errSecInteractionNotAllowed};
    throw;
  }
}

// Returns whether it was locked. Some services tell of nothing in a collection while it is.
bool SecretServiceKeychain::unlockDefaultCollection(SecretServiceClient& client) {
  const auto locked = lockedCollection(client);
  if (!locked.empty()) unlock(client, {locked});
  return !locked.empty();
}

void SecretServiceKeychain::unlock(SecretServiceClient& client, const std::vector<std::string>& objects) {
  if (isAsking()) throw SecretServiceError{errSecInteractionNotAllowed};
  const auto outcome = client.unlock(objects);
  if (!outcome.prompt.empty()) ask(client, outcome.prompt, std::nullopt);
}

// Returns once the service has done what it asks about; throws where the person has not agreed, or not yet. They are
// asked one thing at a time, however often a key is wanted in the meantime.
void SecretServiceKeychain::ask(SecretServiceClient& client, const std::string& prompt,
                                const std::optional<KeychainItemQuery>& about) {
  if (isAsking()) throw SecretServiceError{errSecInteractionNotAllowed};
  auto* proxy = G_DBUS_PROXY(connection_->service.get());
  const GPtr<> owner{g_dbus_proxy_get_name_owner(proxy)};
  if (!owner) throw SecretServiceError{errSecNotAvailable};
  connection_->promptAbout = about;
  connection_->isOutdated = false;
  auto& question = connection_->prompt.emplace(g_dbus_proxy_get_connection(proxy), owner.get(), prompt);
  client.calls().waitUntil([&] { return !question.isOpen(); }, limits_.question);
  if (!question.isAgreed()) throw SecretServiceError{errSecInteractionNotAllowed};
}

// A service that has been started anew knows nothing of its predecessor's question.
bool SecretServiceKeychain::isAsking() const {
  const GPtr<> owner{g_dbus_proxy_get_name_owner(G_DBUS_PROXY(connection_->service.get()))};
  return owner && connection_->prompt && connection_->prompt->isOpen() && connection_->prompt->service() == owner.get();
}

bool SecretServiceKeychain::isAskingAbout(const KeychainItemQuery& query) const {
  return connection_ && connection_->promptAbout == query && isAsking();
}

// Whether the person has answered the last question with a no.
bool SecretServiceKeychain::wasRefused() const {
  return connection_ && connection_->prompt && connection_->prompt->isRefused();
}

}  // namespace tavelle
