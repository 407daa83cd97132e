// The stored profiles: a file that a person may edit, and that a power cut may damage.

#include "platform/fake/FakePlatform.h"
#include "settings/RewriteProfile.h"
#include "settings/SettingsManager.h"
#include "tests/fuzz/Fuzz.h"

#include <optional>

namespace tavelle::fuzz {
namespace {

using Profiles = std::vector<RewriteProfile>;

std::optional<Profiles> decoded(const Data& stored) {
  try {
    return decodeProfiles(stored);
  } catch (const JSONError& error) {
    require(isUTF8(error.errorDescription()), "words that cannot be shown");
    return std::nullopt;
  }
}

void startOn(const Data& stored) {
  const auto profiles = decoded(stored);
  if (profiles) require(decoded(encodeProfiles(*profiles)) == profiles, "what is stored does not read back");

  FakePlatform platform;
  platform.defaults.values["rewriteProfiles"] = DataValue{stored};
  const SettingsManager settings{platform.defaults, KeychainHelper{platform.secrets}};
  if (profiles && !profiles->empty()) {
    require(settings.profiles() == *profiles, "other profiles than those stored");
    require(platform.defaults.values["rewriteProfiles"] == DefaultsValue{DataValue{stored}}, "the file has changed");
  } else {
    require(settings.profiles().size() == 1, "there is always a profile");
  }
}

void store(Input input) {
  RewriteProfile profile{.id = UUID::random(), .name = {}, .systemPrompt = {}};
  for (auto* const number : {&profile.keyCode, &profile.modifiers}) {
    for (const char byte : input.take(4)) *number = *number << 8 | static_cast<unsigned char>(byte);
  }
  profile.name = textOf(input.takeUntil('\n'));
  profile.systemPrompt = textOf(input.rest());
  const Profiles profiles{profile, profile};
  require(decoded(encodeProfiles(profiles)) == profiles, "a profile does not read back");
}

void run(Input input) {
  if (input.choice(2) == 0) return startOn(Data{input.rest()});
  store(input);
}

}  // namespace
}  // namespace tavelle::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tavelle::fuzz::run({data, size});
  return 0;
}
