// What it costs to edit one of ten thousand profiles: the list published, encoded, written to its file and synced.
#include "platform/linux/UserDefaults.h"
#include "settings/SettingsManager.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>
#include <vector>

namespace {

using namespace tavelle;

class NoKeychain : public Keychain {
 public:
  OSStatus secItemAdd(const KeychainItemQuery&, const Data&, KeychainAccessible) override { return errSecNotAvailable; }
  OSStatus secItemCopyMatching(const KeychainItemQuery&, std::optional<Data>&) override { return errSecNotAvailable; }
  OSStatus secItemDelete(const KeychainItemQuery&) override { return errSecNotAvailable; }
};

std::vector<RewriteProfile> profiles(std::int64_t count) {
  std::vector<RewriteProfile> list;
  for (std::int64_t i = 0; i < count; ++i) {
    list.push_back({.id = UUID::random(),
                    .name = "Profile " + std::to_string(i),
                    .keyCode = 15,
                    .modifiers = 768,
                    .systemPrompt = std::string{defaultSystemPrompt}});
  }
  return list;
}

// A folder on a real disk, whose syncs cost what they cost a person.
std::filesystem::path folder() {
  const auto path = std::filesystem::current_path() / "settings-bench";
  std::filesystem::remove_all(path);
  std::filesystem::create_directories(path);
  return path;
}

void editOneProfile(benchmark::State& state) {
  const auto place = folder();
  {
    JSONUserDefaults defaults{place / "settings.json"};
    NoKeychain keychain;
    SettingsManager settings{defaults, KeychainHelper{keychain}};
    settings.setProfiles(profiles(state.range(0)));
    int edits = 0;
    for (auto _ : state) {
      auto edited = settings.profiles();
      edited[edited.size() / 2].name = "Edited " + std::to_string(++edits);
      settings.setProfiles(std::move(edited));
    }
    state.counters["bytes"] = static_cast<double>(std::filesystem::file_size(place / "settings.json"));
  }
  std::filesystem::remove_all(place);
}
BENCHMARK(editOneProfile)->Arg(10'000)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
