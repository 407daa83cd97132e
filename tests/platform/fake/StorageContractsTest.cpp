#include "platform/fake/FakePlatform.h"
#include "tests/platform/contracts/BundleContract.h"
#include "tests/platform/contracts/KeychainContract.h"
#include "tests/platform/contracts/PasteboardContract.h"
#include "tests/platform/contracts/UserDefaultsContract.h"
#include "tests/support/Await.h"

namespace tavelle::tests {
namespace {

struct KeychainInMemory {
  Keychain& keychain() { return fake; }
  FakeKeychain fake;
};

struct DefaultsInMemory {
  UserDefaults& defaults() { return fake; }
  FakeUserDefaults fake;
};

struct BundleInMemory {
  BundleInMemory() { fake.info = {{"CFBundleName", std::string{"Tavelle"}}, {"LSUIElement", true}, {"Count", 2.0}}; }
  Bundle& bundle() { return fake; }
  FakeBundle fake;
};

struct PasteboardInMemory {
  static constexpr const char* textType = "public.utf8-plain-text";

  Pasteboard& pasteboard() { return fake; }
  void take(const FakePasteboard::Contents& contents) { fake.take(contents); }
  template <typename T>
  T await(Task<T> task) {
    return tests::await(loop, std::move(task));
  }

  EventLog log;
  FakeMainActor loop{log};
  FakePasteboard fake{log};
};

INSTANTIATE_TYPED_TEST_SUITE_P(InMemory, KeychainContract, KeychainInMemory);
INSTANTIATE_TYPED_TEST_SUITE_P(InMemory, UserDefaultsContract, DefaultsInMemory);
INSTANTIATE_TYPED_TEST_SUITE_P(InMemory, BundleContract, BundleInMemory);
INSTANTIATE_TYPED_TEST_SUITE_P(InMemory, PasteboardContract, PasteboardInMemory);

}  // namespace
}  // namespace tavelle::tests
