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

}  // namespace

struct SecretServiceKeychain::Connection {
  explicit Connection(GObjectPtr<SecretService> opened) : service(std::move(opened)) {}

  GObjectPtr<SecretService> service;
  std::optional<SecretPrompt> prompt;  // the last one
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
      connection_.reset();
      wasSilent_ = calls.isTimeUp();
      if (isFresh || calls.isTimeUp()) return error.status;
    }
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
    const auto found = client.search(query);
    if (found.unlocked.empty()) return found.locked.empty() ? errSecItemNotFound : askToUnlock(client, found.locked);
    value = client.secret(found.unlocked.front());
    readLast_ = query;
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
    const auto found = client.search(*readLast_);
    if (found.unlocked.empty()) return;
    valueAhead_ = {*readLast_, client.secret(found.unlocked.front()), Clock::now()};
  } catch (const SecretServiceError&) {
    // Whoever asks for it finds out why.
  }
}

std::optional<Data> SecretServiceKeychain::takeValueAhead(const KeychainItemQuery& query) {
  const std::lock_guard lock{mutex_};
  auto ahead = std::exchange(valueAhead_, std::nullopt);
  const bool isWanted = ahead && ahead->query == query && Clock::now() < ahead->read + limits_.ageAhead;
  return isWanted ? std::optional{std::move(ahead->value)} : std::nullopt;
}

OSStatus SecretServiceKeychain::secItemDelete(const KeychainItemQuery& query) {
  return told(perform([&](SecretServiceClient& client) { return remove(client, query); }));
}

OSStatus SecretServiceKeychain::add(SecretServiceClient& client, const KeychainItemQuery& item, const Data& value) {
  // The service would replace the item, or keep two.
  const auto found = client.search(item);
  if (!found.unlocked.empty()) return errSecDuplicateItem;
  if (!found.locked.empty()) return askToUnlock(client, found.locked);

  auto collection = client.defaultCollection();
  if (collection.empty()) {
    const auto created = client.createDefaultCollection();
    if (!created.prompt.empty()) return ask(created.prompt);
    collection = created.object;
  }
  if (client.isLocked(collection)) return askToUnlock(client, {collection});
  const auto created = client.createItem(collection, item, value);
  return created.prompt.empty() ? errSecSuccess : ask(created.prompt);
}

OSStatus SecretServiceKeychain::remove(SecretServiceClient& client, const KeychainItemQuery& query) {
  const auto found = client.search(query);
  if (found.unlocked.empty() && found.locked.empty()) return errSecItemNotFound;
  for (const auto& item : found.unlocked) {
    const auto outcome = client.deleteItem(item);
    if (!outcome.prompt.empty()) return ask(outcome.prompt);
  }
  return found.locked.empty() ? errSecSuccess : askToUnlock(client, found.locked);
}

// Some services unlock without asking; the next call succeeds then.
OSStatus SecretServiceKeychain::askToUnlock(SecretServiceClient& client, const std::vector<std::string>& objects) {
  if (connection_->prompt && connection_->prompt->isOpen()) return errSecInteractionNotAllowed;
  const auto outcome = client.unlock(objects);
  return outcome.prompt.empty() ? errSecInteractionNotAllowed : ask(outcome.prompt);
}

// The person is asked one thing at a time, however often a key is wanted in the meantime.
OSStatus SecretServiceKeychain::ask(const std::string& prompt) {
  if (connection_->prompt && connection_->prompt->isOpen()) return errSecInteractionNotAllowed;
  auto* proxy = G_DBUS_PROXY(connection_->service.get());
  const GPtr<> owner{g_dbus_proxy_get_name_owner(proxy)};
  if (!owner) return errSecNotAvailable;
  connection_->prompt.emplace(g_dbus_proxy_get_connection(proxy), owner.get(), prompt);
  return errSecInteractionNotAllowed;
}

}  // namespace tavelle
