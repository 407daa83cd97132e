#include "platform/fake/Keychain.h"
#include "platform/fake/UserDefaults.h"
#include "tests/platform/contracts/KeychainContract.h"
#include "tests/platform/contracts/UserDefaultsContract.h"

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

INSTANTIATE_TYPED_TEST_SUITE_P(InMemory, KeychainContract, KeychainInMemory);
INSTANTIATE_TYPED_TEST_SUITE_P(InMemory, UserDefaultsContract, DefaultsInMemory);

}  // namespace
}  // namespace tavelle::tests
