#include "platform/linux/Keychain.h"

#include "platform/linux/SecretPrompt.h"
#include "platform/linux/SecretServiceClient.h"

#include <cstdio>
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
  std::optional<SecretPrompt> prompt;  // the last one
  bool searchesLocked = true;          // whether it answers a search before it is unlocked
};

SecretServiceKeychain::SecretServiceKeychain(const Limits& limits) : limits_(limits), context_(g_main_context_new()) {}

// What still waits in the context holds the bus connection.
SecretServiceKeychain::~SecretServiceKeychain() {
  connection_.reset();
  while (g_main_context_iteration(context_.get(), false)) continue;
}

// Runs `operation` on the connection at hand. Where that fails, the service may have been started anew since the
// connection was made: then once more on a fresh one, in what is left of the time.
template <typename Operation>
OSStatus SecretServiceKeychain::perform(const Operation& operation) {
  const std::lock_guard lock{mutex_};
  valueAhead_.reset();
  BoundedCalls calls{context_.get(), wasSilent_ ? limits_.call / patienceAfterSilence : limits_.call};
  while (true) {
    const bool isFresh = !connection_;
    try {
      if (isFresh) connection_ = std::make_unique<Connection>(SecretServiceClient::open(calls));
      SecretServiceClient client{calls, connection_->service.get()};
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

bool SecretServiceKeychain::isLocked() {
  BoundedCalls calls{context_.get(), limits_.question};
  SecretServiceClient client{calls, connection_->service.get()};
  try {
    return !lockedCollection(client).empty();
  } catch (const SecretServiceError&) {
    return false;
  }
}

// Whoever started the program in a terminal, or reads its journal, learns why there is no key: once for each change.
OSStatus SecretServiceKeychain::told(OSStatus status) {
  if (toldLast_.exchange(status) == status) return status;
  if (status == errSecNotAvailable) {
    std::fputs("Tavelle: no Secret Service answers on the session bus: API keys cannot be read or saved\n", stderr);
  } else if (status == errSecInteractionNotAllowed) {
    std::fputs("Tavelle: the keyring is locked: API keys cannot be read or saved until it is unlocked\n", stderr);
  }
  return status;
}

OSStatus SecretServiceKeychain::secItemAdd(const KeychainItemQuery& item, const Data& value, KeychainAccessible) {
  return told(perform([&](SecretServiceClient& client) { return add(client, item, value); }));
}

OSStatus SecretServiceKeychain::secItemCopyMatching(const KeychainItemQuery& query, std::optional<Data>& value) {
  value = takeValueAhead(query);
  if (value) return told(errSecSuccess);
  return told(perform([&](SecretServiceClient& client) {
    const auto items = usableItems(client, query);
    if (items.empty()) return errSecItemNotFound;
    value = client.secret(items.front());
    readLast_ = {query, items.front()};
    justRead_ = std::hash<Data>{}(*value);
    return errSecSuccess;
  }));
}

void SecretServiceKeychain::readAhead() {
  const std::lock_guard lock{mutex_};
  valueAhead_.reset();
  if (!connection_ || !readLast_ || wasSilent_) return;
  BoundedCalls calls{context_.get(), limits_.readingAhead};
  SecretServiceClient client{calls, connection_->service.get()};
  try {
    if (!client.isFound(readLast_->item, readLast_->query)) return;  // another one may have its path now
    valueAhead_ = {readLast_->query, client.secret(readLast_->item), Clock::now()};
  } catch (const SecretServiceError&) {
    // Whoever asks for it finds out why.
  }
}

std::optional<Data> SecretServiceKeychain::takeValueAhead(const KeychainItemQuery& query) {
  const std::lock_guard lock{mutex_};
  auto ahead = std::exchange(valueAhead_, std::nullopt);
  justRead_.reset();
  const bool isWanted = ahead && ahead->query == query && Clock::now() < ahead->read + limits_.ageAhead;
  return isWanted ? std::optional{std::move(ahead->value)} : std::nullopt;
}

OSStatus SecretServiceKeychain::secItemDelete(const KeychainItemQuery& query) {
  return told(perform([&](SecretServiceClient& client) { return remove(client, query); }));
}

OSStatus SecretServiceKeychain::replaceItem(const KeychainItemQuery& item, const Data& value, KeychainAccessible) {
  return told(perform([&](SecretServiceClient& client) {
    const auto known = std::exchange(justRead_, std::nullopt);
    const bool isThere = forEachItem(client, item, [&](const auto& each) {
      // What has just been read may stand there in other words, as a reference to another entry.
      if (known == std::hash<Data>{}(value) && each == readLast_->item) return;
      client.setSecret(each, value);
    });
    if (!isThere) create(client, item, value);
    return errSecSuccess;
  }));
}

OSStatus SecretServiceKeychain::add(SecretServiceClient& client, const KeychainItemQuery& item, const Data& value) {
  justRead_.reset();
  if (!usableItems(client, item).empty()) return errSecDuplicateItem;
  create(client, item, value);
  return errSecSuccess;
}

void SecretServiceKeychain::create(SecretServiceClient& client, const KeychainItemQuery& item, const Data& value) {
  auto collection = client.defaultCollection();
  if (collection.empty()) {
    const auto created = client.createDefaultCollection();
    if (!created.prompt.empty()) ask(client, created.prompt);
    collection = created.prompt.empty() ? created.object : client.defaultCollection();
    if (collection.empty()) throw SecretServiceError{errSecNotAvailable};
  }
  if (client.isLocked(collection)) unlock(client, {collection});
  const auto created = client.createItem(collection, item, value);
  if (!created.prompt.empty()) ask(client, created.prompt);
}

OSStatus SecretServiceKeychain::remove(SecretServiceClient& client, const KeychainItemQuery& query) {
  justRead_.reset();
  const bool wasThere = forEachItem(client, query, [&](const auto& item) {
    const auto outcome = client.deleteItem(item);
    if (!outcome.prompt.empty()) ask(client, outcome.prompt);
  });
  return wasThere ? errSecSuccess : errSecItemNotFound;
}

// Calls `action` with every matching item, once all are unlocked. Returns whether there are any.
template <typename Action>
bool SecretServiceKeychain::forEachItem(SecretServiceClient& client, const KeychainItemQuery& query,
                                        const Action& action) {
  const auto found = search(client, query);
  if (!found.locked.empty()) unlock(client, found.locked);
  for (const auto& item : found.unlocked) action(item);
  for (const auto& item : found.locked) action(item);
  return !found.unlocked.empty() || !found.locked.empty();
}

// The matching items that are unlocked; where all are locked, these, once the service has unlocked them.
std::vector<std::string> SecretServiceKeychain::usableItems(SecretServiceClient& client,
                                                            const KeychainItemQuery& query) {
  auto found = search(client, query);
  if (!found.unlocked.empty() || found.locked.empty()) return std::move(found.unlocked);
  unlock(client, found.locked);
  return std::move(found.locked);
}

// Some services want to be unlocked before they search, ask for that themselves, and answer no earlier. They are given
// the time of one call to show it; from then on they are asked to unlock first.
SecretItems SecretServiceKeychain::search(SecretServiceClient& client, const KeychainItemQuery& query) {
  if (!connection_->searchesLocked) {
    if (const auto locked = lockedCollection(client); !locked.empty()) unlock(client, {locked});
  }
  try {
    return client.search(query);
  } catch (const SecretServiceError&) {
    connection_->searchesLocked = !client.calls().isTimeUp() || !isLocked();
    if (!connection_->searchesLocked) throw SecretServiceError{errSecInteractionNotAllowed};
    throw;
  }
}

void SecretServiceKeychain::unlock(SecretServiceClient& client, const std::vector<std::string>& objects) {
  if (isAsking()) throw SecretServiceError{errSecInteractionNotAllowed};
  const auto outcome = client.unlock(objects);
  if (!outcome.prompt.empty()) ask(client, outcome.prompt);
}

// Returns once the service has done what it asks about; throws where the person has not agreed, or not yet. They are
// asked one thing at a time, however often a key is wanted in the meantime.
void SecretServiceKeychain::ask(SecretServiceClient& client, const std::string& prompt) {
  if (isAsking()) throw SecretServiceError{errSecInteractionNotAllowed};
  auto* proxy = G_DBUS_PROXY(connection_->service.get());
  const GPtr<> owner{g_dbus_proxy_get_name_owner(proxy)};
  if (!owner) throw SecretServiceError{errSecNotAvailable};
  auto& question = connection_->prompt.emplace(g_dbus_proxy_get_connection(proxy), owner.get(), prompt);
  client.calls().waitUntil([&] { return !question.isOpen(); }, limits_.question);
  if (!question.isAgreed()) throw SecretServiceError{errSecInteractionNotAllowed};
}

// A service that has been started anew knows nothing of its predecessor's question.
bool SecretServiceKeychain::isAsking() const {
  const GPtr<> owner{g_dbus_proxy_get_name_owner(G_DBUS_PROXY(connection_->service.get()))};
  return owner && connection_->prompt && connection_->prompt->isOpen() && connection_->prompt->service() == owner.get();
}

}  // namespace tavelle
