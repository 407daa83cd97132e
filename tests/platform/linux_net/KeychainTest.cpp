#include "platform/linux/Keychain.h"

#include "tests/platform/contracts/KeychainContract.h"
#include "tests/platform/linux_net/Keyring.h"
#include "tests/support/Environment.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <chrono>
#include <cstring>
#include <optional>
#include <regex>
#include <string>

namespace tavelle::tests {
namespace {

using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;
using Clock = std::chrono::steady_clock;

struct GnomeKeyringBackend {
  GnomeKeyringBackend() { keyring.startUnlocked(); }
  Keychain& keychain() { return keychain_; }

  Keyring keyring;
  SecretServiceKeychain keychain_{{.call = seconds(20)}};
};

// What the main loop has not been served for holds the connection to the test's bus, beyond the bus's end.
struct MainLoopServedInTheEnd {
  ~MainLoopServedInTheEnd() {
    while (g_main_context_iteration(nullptr, false)) continue;
  }
};

class SecretServiceKeychainTest : public testing::Test {
 protected:
  OSStatus add(const Data& value) { return keychain().secItemAdd(item, value, KeychainAccessible::whenUnlocked); }
  OSStatus replace(const Data& value) { return keychain().replaceItem(item, value, KeychainAccessible::whenUnlocked); }
  OSStatus copy() { return keychain().secItemCopyMatching(item, read); }
  OSStatus remove() { return keychain().secItemDelete(item); }

  void addAndReadAhead(const Data& value) {
    keyring.startUnlocked();
    EXPECT_EQ(add(value), errSecSuccess);
    EXPECT_EQ(copy(), errSecSuccess);
    keychain().readAhead();
  }

  virtual SecretServiceKeychain& keychain() { return patient_; }

  Keyring keyring;
  MainLoopServedInTheEnd mainLoop;
  const KeychainItemQuery item{"app.tavelle.Tavelle", "apiKey_openai"};
  const std::vector<std::string> attributes{"service", "app.tavelle.Tavelle", "account", "apiKey_openai"};
  std::optional<Data> read;

  // An item of the person's own, which has an attribute more.
  void storeWithMore(const std::string& label, const std::string& secret) {
    auto store = command({"store", "--label=" + label});
    store.insert(store.end(), {"more", "1"});
    keyring.secretTool(store, secret);
  }

  // What secret-tool lists of items, but for what is the keyring's own: when they were made and changed, and the schema
  // that GNOME's keyring gives to one without any as soon as it reads its file again.
  static std::string personsOwn(const std::string& listed) {
    const std::regex keyringsOwn{"(created = [^\n]*|modified = [^\n]*|schema = org.freedesktop.Secret.Generic)\n"};
    return std::regex_replace(listed, keyringsOwn, "");
  }

  std::vector<std::string> command(std::vector<std::string> words) const {
    words.insert(words.end(), attributes.begin(), attributes.end());
    return words;
  }

 private:
  SecretServiceKeychain patient_{
      {.call = seconds(20), .question = seconds(20), .readingAhead = seconds(20), .ageAhead = minutes(10)}};
};

TEST_F(SecretServiceKeychainTest, findsWhatSecretToolStored) {
  keyring.startUnlocked();
  keyring.secretTool(command({"store", "--label=OpenAI"}), "sk-stored");
  EXPECT_EQ(copy(), errSecSuccess);
  EXPECT_EQ(read, "sk-stored");
  EXPECT_EQ(add("sk-other"), errSecDuplicateItem);
}

TEST_F(SecretServiceKeychainTest, storesWhatSecretToolFinds) {
  keyring.startUnlocked();
  EXPECT_EQ(add("sk-added"), errSecSuccess);
  EXPECT_EQ(keyring.secretTool(command({"lookup"})), "sk-added");
  const auto listed = keyring.secretTool(command({"search"}));
  EXPECT_NE(listed.find("label = Tavelle: apiKey_openai\n"), std::string::npos) << listed;
}

TEST_F(SecretServiceKeychainTest, deletesEveryMatchingItem) {
  keyring.startUnlocked();
  EXPECT_EQ(add("sk-added"), errSecSuccess);
  storeWithMore("twice", "sk-stored");
  EXPECT_EQ(remove(), errSecSuccess);
  EXPECT_EQ(copy(), errSecItemNotFound);
  EXPECT_EQ(keyring.secretTool(command({"search", "--all"})), "");
}

TEST_F(SecretServiceKeychainTest, replacesTheValueOfAPersonsOwnItemAndNothingElseOfIt) {
  keyring.startUnlocked();
  storeWithMore("my own", "sk-old");
  EXPECT_EQ(replace("sk-new"), errSecSuccess);
  EXPECT_EQ(personsOwn(keyring.secretTool(command({"search", "--all"}))), "[/1]\nlabel = my own\nsecret = sk-new\n");
  EXPECT_EQ(keyring.secretTool(command({"lookup", "more", "1"})), "sk-new");
}

TEST_F(SecretServiceKeychainTest, replacesNothingWithoutTellingWhereAMatchingItemIsLocked) {
  keyring.startUnlocked();
  EXPECT_EQ(add("sk-added"), errSecSuccess);
  keyring.secretTool(command({"store", "--label=for now", "--collection=session"}), "sk-stored");
  keyring.secretTool({"lock", "--collection=login"});
  EXPECT_EQ(replace("sk-new"), errSecInteractionNotAllowed);
  EXPECT_EQ(copy(), errSecSuccess);
  EXPECT_EQ(read, "sk-stored");
}

TEST_F(SecretServiceKeychainTest, deletesWhatIsNotLockedThoughAnotherMatchingItemIs) {
  keyring.startUnlocked();
  EXPECT_EQ(add("sk-added"), errSecSuccess);
  keyring.secretTool(command({"store", "--label=for now", "--collection=session"}), "sk-stored");
  keyring.secretTool({"lock", "--collection=login"});
  EXPECT_EQ(remove(), errSecInteractionNotAllowed);
  EXPECT_EQ(copy(), errSecInteractionNotAllowed);
}

TEST_F(SecretServiceKeychainTest, replacesTheValueOfEveryMatchingItem) {
  keyring.startUnlocked();
  EXPECT_EQ(add("sk-added"), errSecSuccess);
  storeWithMore("twice", "sk-stored");
  EXPECT_EQ(replace("sk-new"), errSecSuccess);
  EXPECT_EQ(keyring.secretTool({"lookup", "more", "1"}), "sk-new");
  EXPECT_EQ(keyring.secretTool({"lookup", "xdg:schema", "app.tavelle.Secret"}), "sk-new");
}

TEST_F(SecretServiceKeychainTest, keepsItemsAcrossARestartOfTheService) {
  keyring.startUnlocked();
  EXPECT_EQ(add("sk-added"), errSecSuccess);
  keyring.stop();
  EXPECT_EQ(copy(), errSecNotAvailable);
  keyring.startUnlocked();
  EXPECT_EQ(copy(), errSecSuccess);
  EXPECT_EQ(read, "sk-added");
}

TEST_F(SecretServiceKeychainTest, noticesARestartInBetween) {
  keyring.startUnlocked();
  EXPECT_EQ(add("sk-added"), errSecSuccess);
  keyring.stop();
  keyring.startUnlocked();
  EXPECT_EQ(copy(), errSecSuccess);
  EXPECT_EQ(read, "sk-added");
}

TEST_F(SecretServiceKeychainTest, isNotAvailableWithoutAService) {
  EXPECT_EQ(copy(), errSecNotAvailable);
  EXPECT_EQ(add("sk-added"), errSecNotAvailable);
  EXPECT_EQ(remove(), errSecNotAvailable);
}

TEST_F(SecretServiceKeychainTest, worksOnceTheServiceHasCome) {
  EXPECT_EQ(add("sk-added"), errSecNotAvailable);
  keyring.startUnlocked();
  EXPECT_EQ(add("sk-added"), errSecSuccess);
}

TEST_F(SecretServiceKeychainTest, isNotAvailableWithoutABus) {
  const Environment environment{{{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus"}}};
  EXPECT_EQ(copy(), errSecNotAvailable);
  EXPECT_EQ(add("sk-added"), errSecNotAvailable);
}

TEST_F(SecretServiceKeychainTest, asksForAKeyringWhereThereIsNone) {
  keyring.start();
  EXPECT_EQ(copy(), errSecItemNotFound);
  EXPECT_EQ(remove(), errSecItemNotFound);
  EXPECT_EQ(add("sk-added"), errSecInteractionNotAllowed);
}

TEST_F(SecretServiceKeychainTest, doesNotOpenALockedKeyring) {
  keyring.startUnlocked();
  EXPECT_EQ(add("sk-added"), errSecSuccess);
  keyring.stop();
  keyring.start();
  EXPECT_EQ(copy(), errSecInteractionNotAllowed);
  EXPECT_EQ(read, std::nullopt);
  EXPECT_EQ(add("sk-other"), errSecInteractionNotAllowed);
  EXPECT_EQ(replace("sk-other"), errSecInteractionNotAllowed);
  EXPECT_EQ(remove(), errSecInteractionNotAllowed);

  keyring.stop();
  keyring.startUnlocked();
  EXPECT_EQ(copy(), errSecSuccess);
  EXPECT_EQ(read, "sk-added");
}

TEST_F(SecretServiceKeychainTest, hasWhatWasReadAheadWithoutAskingAgain) {
  addAndReadAhead("sk-added");
  keyring.stop();
  EXPECT_EQ(copy(), errSecSuccess);
  EXPECT_EQ(read, "sk-added");
  EXPECT_EQ(copy(), errSecNotAvailable) << "it is good for one call";
}

TEST_F(SecretServiceKeychainTest, readsAheadWhatAnotherProgramHasStoredSinceTheLastTime) {
  keyring.startUnlocked();
  keyring.secretTool(command({"store", "--label=OpenAI"}), "sk-first");
  EXPECT_EQ(copy(), errSecSuccess);
  keyring.secretTool(command({"store", "--label=OpenAI"}), "sk-second");
  keychain().readAhead();
  keyring.stop();
  EXPECT_EQ(copy(), errSecSuccess);
  EXPECT_EQ(read, "sk-second");
}

TEST_F(SecretServiceKeychainTest, forgetsWhatWasReadAheadWithTheNextChange) {
  addAndReadAhead("sk-first");
  EXPECT_EQ(remove(), errSecSuccess);
  EXPECT_EQ(copy(), errSecItemNotFound);
  EXPECT_EQ(add("sk-second"), errSecSuccess);
  EXPECT_EQ(copy(), errSecSuccess);
  EXPECT_EQ(read, "sk-second");
}

TEST_F(SecretServiceKeychainTest, givesNobodyWhatWasReadAheadForAnotherItem) {
  const KeychainItemQuery other{item.service, "apiKey_gemini"};
  addAndReadAhead("sk-added");
  EXPECT_EQ(keychain().secItemCopyMatching(other, read), errSecItemNotFound);
  EXPECT_EQ(read, std::nullopt);
  EXPECT_EQ(copy(), errSecSuccess);
  EXPECT_EQ(read, "sk-added");
}

TEST_F(SecretServiceKeychainTest, asksAgainOnceWhatWasReadAheadIsOld) {
  SecretServiceKeychain forgetful{{.call = seconds(20), .readingAhead = seconds(20), .ageAhead = seconds(0)}};
  keyring.startUnlocked();
  EXPECT_EQ(add("sk-first"), errSecSuccess);
  EXPECT_EQ(forgetful.secItemCopyMatching(item, read), errSecSuccess);
  forgetful.readAhead();
  keyring.secretTool(command({"store", "--label=OpenAI"}), "sk-second");
  EXPECT_EQ(forgetful.secItemCopyMatching(item, read), errSecSuccess);
  EXPECT_EQ(read, "sk-second");
}

// The keychain that gives up soon.
class SilentSecretServiceTest : public SecretServiceKeychainTest {
 protected:
  SecretServiceKeychain& keychain() override { return impatient_; }

  // Runs `call`, which must come to its end in time.
  template <typename Call>
  void expectInTime(const Call& call) {
    const auto start = Clock::now();
    EXPECT_EQ(call(), errSecNotAvailable);
    EXPECT_LT(Clock::now() - start, limit + seconds(5));
  }

  static constexpr milliseconds limit{4000};  // a quarter of it must do for a service that is back

 private:
  SecretServiceKeychain impatient_{{.call = limit}};
};

TEST_F(SilentSecretServiceTest, answersInTimeAndRecovers) {
  keyring.startUnlocked();
  EXPECT_EQ(add("sk-added"), errSecSuccess);
  keyring.hang();
  expectInTime([this] { return copy(); });
  expectInTime([this] { return add("sk-other"); });
  expectInTime([this] { return remove(); });
  keyring.stop();
  keyring.startUnlocked();
  EXPECT_EQ(copy(), errSecSuccess);
  EXPECT_EQ(read, "sk-added");
}

TEST_F(SilentSecretServiceTest, answersInTimeWhereTheServiceWasSilentFromTheStart) {
  keyring.startUnlocked();
  keyring.hang();
  expectInTime([this] { return copy(); });
}

TEST_F(SilentSecretServiceTest, answersInTimeWhereTheBusIsSilent) {
  const TemporaryFolder folder;
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::strcpy(address.sun_path, (folder.path() / "bus").c_str());
  const FileDescriptor bus{socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)};
  ASSERT_EQ(bind(bus.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  ASSERT_EQ(listen(bus.get(), 8), 0);
  const Environment environment{{{"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + (folder.path() / "bus").string()}}};
  expectInTime([this] { return copy(); });
}

// A keyring that asks the person before it does anything.
class PromptingSecretServiceTest : public SecretServiceKeychainTest {
 protected:
  explicit PromptingSecretServiceTest(SecretServiceKeychain::Limits limits = {.call = seconds(20),
                                                                              .question = seconds(0),
                                                                              .readingAhead = seconds(20)})
      : keychain_(limits) {}

  SecretServiceKeychain& keychain() override { return keychain_; }

  void start(const std::vector<std::string>& manners = {}) {
    std::vector<std::string> command{"/usr/bin/python3", TAVELLE_PROMPTING_SERVICE};
    command.insert(command.end(), manners.begin(), manners.end());
    peer_.emplace(command);
    ASSERT_TRUE(keyring.bus().waitForOwner("org.freedesktop.secrets"));
  }

  void end() {
    peer_.reset();
    keyring.bus().waitForNoOwner("org.freedesktop.secrets");
  }

  // Reads what the service was asked until it was asked that, too.
  void expectAsked(const std::string& method) {
    std::string line;
    do {
      line = peer_->readLine();
      ASSERT_NE(line, "") << "the service was not asked: " << method;
      asked_ += line + " ";
    } while (line != method);
  }

  // The person sees the question, and agrees.
  void answer() { answer("answer\n"); }
  void refuse() { answer("refuse\n"); }

  void lock() {
    peer_->write("lock\n");
    expectAsked("locked");
  }

  // As another program has it done.
  void unlockWithoutAsking() {
    peer_->write("unlock\n");
    expectAsked("unlocked");
    hearTheService();
  }

  void reuse() {
    peer_->write("reuse\n");
    expectAsked("reused");
  }

  void unlock() {
    EXPECT_EQ(copy(), errSecInteractionNotAllowed);
    answer();
    EXPECT_EQ(copy(), errSecSuccess);
  }

  int timesAsked(const std::string& method) const {
    int count = 0;
    for (auto at = asked_.find(method); at != std::string::npos; at = asked_.find(method, at + 1)) ++count;
    return count;
  }

 private:
  void answer(const std::string& answer) {
    const bool isAsked = timesAsked("Prompt") > timesAsked("answered");
    if (!isAsked) expectAsked("Prompt");
    peer_->write(answer);
    expectAsked("answered");
    hearTheService();
  }

  // What the service has told of is in this process once it has replied to a later call on the same connection.
  static void hearTheService() {
    const GObjectPtr<GDBusConnection> connection{g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr)};
    const GVariantPtr pong{g_dbus_connection_call_sync(
        connection.get(), "org.freedesktop.secrets", "/", "org.freedesktop.DBus.Peer", "Ping", nullptr, nullptr,
        G_DBUS_CALL_FLAGS_NONE, static_cast<int>(milliseconds(seconds(20)).count()), nullptr, nullptr)};
    EXPECT_TRUE(pong);
  }

  std::optional<ChildProcess> peer_;
  std::string asked_;
  SecretServiceKeychain keychain_;
};

TEST_F(PromptingSecretServiceTest, asksThePersonAndDoesNotWaitForTheAnswer) {
  start();
  EXPECT_EQ(copy(), errSecInteractionNotAllowed);
  answer();
  EXPECT_EQ(copy(), errSecSuccess);
  EXPECT_EQ(read, "the secret");
}

TEST_F(PromptingSecretServiceTest, asksThePersonNothingToReadAhead) {
  start();
  unlock();
  lock();
  const int searches = timesAsked("SearchItems");
  keychain().readAhead();
  lock();
  EXPECT_EQ(timesAsked("GetSecret"), 2);
  EXPECT_EQ(timesAsked("SearchItems"), searches) << "some services ask to be unlocked before they search";
  EXPECT_EQ(timesAsked("Prompt"), 1);
}

TEST_F(PromptingSecretServiceTest, readsAheadNothingOfSomebodyElsesThatHasTakenTheItemsPath) {
  start();
  unlock();
  reuse();
  keychain().readAhead();
  EXPECT_EQ(copy(), errSecItemNotFound);
  lock();
  EXPECT_EQ(timesAsked("GetSecret"), 1);
}

TEST_F(PromptingSecretServiceTest, changesAnItemWithoutDeletingIt) {
  start();
  unlock();
  EXPECT_EQ(replace("another"), errSecSuccess);
  EXPECT_EQ(copy(), errSecSuccess);
  EXPECT_EQ(read, "another");
  expectAsked("SetSecret");
  EXPECT_EQ(timesAsked("Delete"), 0);
}

TEST_F(PromptingSecretServiceTest, writesNothingWhereThatHasJustBeenRead) {
  start();
  unlock();
  EXPECT_EQ(replace("the secret"), errSecSuccess);
  EXPECT_EQ(replace("another"), errSecSuccess);
  EXPECT_EQ(replace("the secret"), errSecSuccess);
  EXPECT_EQ(copy(), errSecSuccess);
  EXPECT_EQ(read, "the secret");
  lock();
  EXPECT_EQ(timesAsked("SetSecret"), 2);
}

TEST_F(PromptingSecretServiceTest, writesNothingWhereThatWasReadAhead) {
  start();
  unlock();
  keychain().readAhead();
  EXPECT_EQ(copy(), errSecSuccess);
  EXPECT_EQ(replace("the secret"), errSecSuccess);
  lock();
  EXPECT_EQ(timesAsked("GetSecret"), 2);
  EXPECT_EQ(timesAsked("SetSecret"), 0);
}

TEST_F(PromptingSecretServiceTest, readsNothingAheadOnceAnItemWasNotFound) {
  start();
  unlock();
  EXPECT_EQ(keychain().secItemCopyMatching({"app.tavelle.Tavelle", "apiKey_ollama"}, read), errSecItemNotFound);
  keychain().readAhead();
  lock();
  EXPECT_EQ(timesAsked("GetSecret"), 1);
}

TEST_F(PromptingSecretServiceTest, makesUpForTheLastChangeOnceThePersonHasAgreed) {
  start();
  EXPECT_EQ(replace("t"), errSecInteractionNotAllowed);
  EXPECT_EQ(replace("typed"), errSecInteractionNotAllowed);
  EXPECT_EQ(copy(), errSecInteractionNotAllowed);
  answer();
  EXPECT_EQ(copy(), errSecSuccess);
  EXPECT_EQ(read, "typed");
  lock();
  EXPECT_EQ(timesAsked("SetSecret"), 1);
  EXPECT_EQ(timesAsked("Prompt"), 1);
}

TEST_F(PromptingSecretServiceTest, makesAChangeAsSoonAsThePersonHasAgreed) {
  start();
  EXPECT_EQ(replace("typed"), errSecInteractionNotAllowed);
  answer();
  g_main_context_iteration(nullptr, true);  // the main loop has nothing else to serve
  expectAsked("SetSecret");
}

TEST_F(PromptingSecretServiceTest, makesAChangeAsSoonAsTheKeyringIsUnlockedInAnotherWay) {
  start();
  EXPECT_EQ(replace("typed"), errSecInteractionNotAllowed);
  unlockWithoutAsking();
  g_main_context_iteration(nullptr, true);
  expectAsked("SetSecret");
}

TEST_F(PromptingSecretServiceTest, readsAheadNothingThatIsAboutToChange) {
  start();
  unlock();
  lock();
  EXPECT_EQ(replace("typed"), errSecInteractionNotAllowed);
  answer();
  keychain().readAhead();
  EXPECT_EQ(copy(), errSecSuccess);
  EXPECT_EQ(read, "typed");
}

TEST_F(PromptingSecretServiceTest, deletesWhatWasReadOnceThePersonHasAgreed) {
  start();
  unlock();
  lock();
  EXPECT_EQ(replace("the secre"), errSecInteractionNotAllowed);
  EXPECT_EQ(remove(), errSecInteractionNotAllowed);
  answer();
  EXPECT_EQ(copy(), errSecInteractionNotAllowed) << "the deletion asks, too";
  expectAsked("Delete");
  expectAsked("Prompt");
  EXPECT_EQ(timesAsked("SetSecret"), 0);
}

TEST_F(PromptingSecretServiceTest, makesAChangeThoughThePersonRefusesAnother) {
  const KeychainItemQuery other{"app.tavelle.Tavelle", "apiKey_gemini"};
  start();
  unlock();
  EXPECT_EQ(keychain().replaceItem(other, "another's", KeychainAccessible::whenUnlocked), errSecInteractionNotAllowed);
  lock();
  EXPECT_EQ(replace("typed"), errSecInteractionNotAllowed);
  refuse();
  EXPECT_EQ(copy(), errSecInteractionNotAllowed);
  answer();
  EXPECT_EQ(copy(), errSecSuccess);
  EXPECT_EQ(read, "typed");
  lock();
  EXPECT_EQ(timesAsked("CreateItem"), 1);
}

TEST_F(PromptingSecretServiceTest, leavesTheStoredKeyWhereOneWasTypedAndTakenAwayWhileItWasLocked) {
  start();
  EXPECT_EQ(replace("typed"), errSecInteractionNotAllowed);
  EXPECT_EQ(remove(), errSecInteractionNotAllowed);
  answer();
  EXPECT_EQ(copy(), errSecSuccess);
  EXPECT_EQ(read, "the secret");
  lock();
  EXPECT_EQ(timesAsked("SetSecret"), 0);
  EXPECT_EQ(timesAsked("Delete"), 0);
}

TEST_F(PromptingSecretServiceTest, leavesTheStoredKeyThatCouldNotBeReadWhereOneWasTypedAndTakenAway) {
  start();
  unlock();
  lock();
  EXPECT_EQ(copy(), errSecInteractionNotAllowed);
  EXPECT_EQ(replace("typed"), errSecInteractionNotAllowed);
  EXPECT_EQ(remove(), errSecInteractionNotAllowed);
  answer();
  EXPECT_EQ(copy(), errSecSuccess);
  EXPECT_EQ(read, "the secret");
  lock();
  EXPECT_EQ(timesAsked("Delete"), 0);
}

TEST_F(PromptingSecretServiceTest, keepsWhatIsStoredWhileThePersonIsAskedAboutDeletingIt) {
  start();
  unlock();
  EXPECT_EQ(remove(), errSecInteractionNotAllowed);
  EXPECT_EQ(replace("another"), errSecInteractionNotAllowed);
  answer();  // deletes
  EXPECT_EQ(copy(), errSecInteractionNotAllowed);
  answer();  // stores
  EXPECT_EQ(copy(), errSecSuccess);
  EXPECT_EQ(read, "another");
}

TEST_F(PromptingSecretServiceTest, keepsWhatIsStoredWhileThePersonRefusesToDeleteWhatWasThere) {
  start();
  unlock();
  EXPECT_EQ(remove(), errSecInteractionNotAllowed);
  EXPECT_EQ(replace("another"), errSecInteractionNotAllowed);
  refuse();
  EXPECT_EQ(copy(), errSecSuccess);
  EXPECT_EQ(read, "another");
}

TEST_F(PromptingSecretServiceTest, deletesWhatThePersonHasYetToLetItStore) {
  start();
  unlock();
  EXPECT_EQ(remove(), errSecInteractionNotAllowed);
  answer();
  EXPECT_EQ(copy(), errSecItemNotFound);
  EXPECT_EQ(replace("typed"), errSecInteractionNotAllowed);
  EXPECT_EQ(remove(), errSecInteractionNotAllowed);
  answer();
  EXPECT_EQ(copy(), errSecInteractionNotAllowed) << "the deletion asks, too";
  answer();
  EXPECT_EQ(copy(), errSecItemNotFound);
}

TEST_F(PromptingSecretServiceTest, dropsAChangeThatThePersonRefuses) {
  start();
  EXPECT_EQ(replace("typed"), errSecInteractionNotAllowed);
  refuse();
  unlock();
  EXPECT_EQ(read, "the secret");
  lock();
  EXPECT_EQ(timesAsked("SetSecret"), 0);
}

TEST_F(PromptingSecretServiceTest, dropsAChangeForALaterOne) {
  start();
  EXPECT_EQ(replace("typed"), errSecInteractionNotAllowed);
  answer();
  EXPECT_EQ(replace("typed later"), errSecSuccess);
  EXPECT_EQ(copy(), errSecSuccess);
  EXPECT_EQ(read, "typed later");
  lock();
  EXPECT_EQ(timesAsked("SetSecret"), 1);
}

TEST_F(PromptingSecretServiceTest, asksAgainWhereTheServiceCannotAsk) {
  start({"cannot-ask"});
  EXPECT_EQ(copy(), errSecInteractionNotAllowed);
  expectAsked("Prompt");
  EXPECT_EQ(copy(), errSecInteractionNotAllowed);
  expectAsked("Prompt");
}

TEST_F(PromptingSecretServiceTest, asksThePersonOneThingAtATime) {
  start();
  for (int count = 0; count < 5; ++count) EXPECT_EQ(copy(), errSecInteractionNotAllowed);
  EXPECT_EQ(add("sk-added"), errSecInteractionNotAllowed);
  EXPECT_EQ(remove(), errSecInteractionNotAllowed);
  answer();
  EXPECT_EQ(timesAsked("Prompt"), 1);
}

TEST_F(PromptingSecretServiceTest, asksAgainOnceTheLastQuestionWasAnswered) {
  start();
  EXPECT_EQ(copy(), errSecInteractionNotAllowed);
  answer();
  EXPECT_EQ(remove(), errSecInteractionNotAllowed);
  expectAsked("Delete");
  expectAsked("Prompt");
  EXPECT_EQ(timesAsked("Prompt"), 2);
}

TEST_F(PromptingSecretServiceTest, asksAgainWhereTheServiceThatAskedHasGone) {
  start();
  EXPECT_EQ(copy(), errSecInteractionNotAllowed);
  expectAsked("Prompt");
  end();
  start();
  EXPECT_EQ(copy(), errSecInteractionNotAllowed);
  expectAsked("Prompt");
}

TEST_F(PromptingSecretServiceTest, asksWhetherToMakeAKeyring) {
  start({"without-keyring"});
  EXPECT_EQ(copy(), errSecItemNotFound);
  EXPECT_EQ(add("sk-added"), errSecInteractionNotAllowed);
  expectAsked("CreateCollection");
  expectAsked("Prompt");
}

// One that was told to ask nothing, and still answers with prompts.
class AgreeingSecretServiceTest : public PromptingSecretServiceTest {
 protected:
  AgreeingSecretServiceTest() : PromptingSecretServiceTest({.call = seconds(40), .question = seconds(20)}) {}
};

TEST_F(AgreeingSecretServiceTest, readsAtOnceWhatItUnlocks) {
  start({"asks-nobody"});
  EXPECT_EQ(copy(), errSecSuccess);
  EXPECT_EQ(read, "the secret");
}

TEST_F(AgreeingSecretServiceTest, replacesAtOnceWhatItUnlocks) {
  start({"asks-nobody"});
  EXPECT_EQ(replace("another"), errSecSuccess);
  EXPECT_EQ(copy(), errSecSuccess);
  EXPECT_EQ(read, "another");
}

TEST_F(AgreeingSecretServiceTest, replacesWhatItDoesNotFindWhileItIsLocked) {
  start({"asks-nobody", "hides-locked"});
  EXPECT_EQ(replace("another"), errSecSuccess);
  EXPECT_EQ(copy(), errSecSuccess);
  EXPECT_EQ(read, "another");
  lock();
  EXPECT_EQ(timesAsked("CreateItem"), 0);
}

TEST_F(AgreeingSecretServiceTest, deletesAtOnceWhatItUnlocks) {
  start({"asks-nobody"});
  EXPECT_EQ(remove(), errSecSuccess);
  expectAsked("Delete");
  expectAsked("answered");
}

TEST_F(AgreeingSecretServiceTest, deletesWhatItDoesNotFindAnyMoreWhileItIsLocked) {
  start({"asks-nobody", "hides-locked"});
  EXPECT_EQ(replace("another"), errSecSuccess);
  lock();
  EXPECT_EQ(remove(), errSecSuccess);
  EXPECT_EQ(copy(), errSecItemNotFound);
}

TEST_F(AgreeingSecretServiceTest, addsAtOnceToTheKeyringThatItMakes) {
  start({"asks-nobody", "without-keyring"});
  EXPECT_EQ(replace("sk-added"), errSecSuccess);
  expectAsked("CreateCollection");
  expectAsked("CreateItem");
  expectAsked("answered");
}

TEST_F(AgreeingSecretServiceTest, takesANoForOne) {
  start({"declines"});
  EXPECT_EQ(copy(), errSecInteractionNotAllowed);
  EXPECT_EQ(replace("another"), errSecInteractionNotAllowed);
  EXPECT_EQ(remove(), errSecInteractionNotAllowed);
  EXPECT_EQ(read, std::nullopt);
}

// One that answers no search before it is unlocked, and has asked for that itself.
class UnlockedFirstTest : public PromptingSecretServiceTest {
 protected:
  UnlockedFirstTest() : PromptingSecretServiceTest({.call = seconds(4), .question = seconds(4)}) {}
};

TEST_F(UnlockedFirstTest, isLockedAndAsksToBeUnlockedTheNextTime) {
  start({"unlocked-first"});
  EXPECT_EQ(copy(), errSecInteractionNotAllowed);
  const int searches = timesAsked("SearchItems");
  EXPECT_EQ(copy(), errSecInteractionNotAllowed);
  answer();
  EXPECT_EQ(timesAsked("SearchItems"), searches + 1) << "it is not asked again what it does not answer";
  EXPECT_EQ(copy(), errSecSuccess);
  EXPECT_EQ(read, "the secret");
}

TEST_F(UnlockedFirstTest, makesAChangeAsSoonAsItIsUnlocked) {
  start({"unlocked-first"});
  EXPECT_EQ(replace("typed"), errSecInteractionNotAllowed);
  unlockWithoutAsking();
  g_main_context_iteration(nullptr, true);
  expectAsked("SetSecret");
}

}  // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(GnomeKeyring, KeychainContract, GnomeKeyringBackend);

}  // namespace tavelle::tests
