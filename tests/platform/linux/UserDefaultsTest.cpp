#include "platform/linux/UserDefaults.h"

#include "tests/platform/contracts/UserDefaultsContract.h"
#include "tests/platform/linux/TemporaryFolder.h"

#include <sys/fsuid.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

namespace tavelle::tests {
namespace {

namespace fs = std::filesystem;

struct JSONBackend {
  TemporaryFolder folder;
  JSONUserDefaults store{folder.path() / "settings.json"};
  UserDefaults& defaults() { return store; }
};

// Reads through a new object each time: what the file holds, not what is remembered.
struct ReopenedJSONBackend : UserDefaults {
  TemporaryFolder folder;
  fs::path file = folder.path() / "settings.json";

  UserDefaults& defaults() { return *this; }
  std::optional<DefaultsValue> objectForKey(const std::string& key) const override {
    return JSONUserDefaults{file}.objectForKey(key);
  }
  void setObject(DefaultsValue value, const std::string& key) override {
    JSONUserDefaults{file}.setObject(std::move(value), key);
  }
  void removeObjectForKey(const std::string& key) override { JSONUserDefaults{file}.removeObjectForKey(key); }
};

INSTANTIATE_TYPED_TEST_SUITE_P(JSON, UserDefaultsContract, JSONBackend);
INSTANTIATE_TYPED_TEST_SUITE_P(ReopenedJSON, UserDefaultsContract, ReopenedJSONBackend);

class JSONUserDefaultsTest : public testing::Test {
 protected:
  fs::path file() const { return folder_.path() / "settings.json"; }
  std::size_t fileCount() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator{folder_.path()}, {}));
  }
  static std::optional<DefaultsValue> data(const std::string& bytes) { return DataValue{bytes}; }

  TemporaryFolder folder_;
};

// Files may grow to `size` bytes only, as on a disk that is full.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t size) {
    std::signal(SIGXFSZ, SIG_IGN);
    getrlimit(RLIMIT_FSIZE, &before_);
    set(size);
  }
  ~FileSizeLimit() { set(before_.rlim_cur); }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  void set(rlim_t size) const {
    const rlimit limit{size, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  rlimit before_{};
};

// A folder in which nothing can be made, by the superuser neither.
class ReadOnlyFolder {
 public:
  explicit ReadOnlyFolder(fs::path folder) : folder_(std::move(folder)) {
    fs::permissions(folder_, fs::perms{0555});
    setfsuid(nobody);
  }
  ~ReadOnlyFolder() {
    setfsuid(geteuid());
    fs::permissions(folder_, fs::perms{0700});
  }
  ReadOnlyFolder(const ReadOnlyFolder&) = delete;
  ReadOnlyFolder& operator=(const ReadOnlyFolder&) = delete;

 private:
  static constexpr uid_t nobody = 65534;
  fs::path folder_;
};

TEST_F(JSONUserDefaultsTest, readsWhatAPersonWrote) {
  write(file(), R"({"provider": "ollama", "temperature": 1, "exact": 1.0, "on": true, "none": null, "huge": 1e19,
                    "over": 18446744073709551615})");
  const JSONUserDefaults defaults{file()};
  EXPECT_EQ(defaults.objectForKey("provider"), DefaultsValue{std::string{"ollama"}});
  EXPECT_EQ(defaults.objectForKey("temperature"), DefaultsValue{std::int64_t{1}});
  EXPECT_EQ(defaults.objectForKey("exact"), DefaultsValue{1.0});
  EXPECT_EQ(defaults.objectForKey("on"), DefaultsValue{true});
  EXPECT_EQ(defaults.objectForKey("none"), std::nullopt);
  EXPECT_EQ(defaults.objectForKey("huge"), DefaultsValue{1e19});
  EXPECT_EQ(defaults.objectForKey("over"), std::nullopt);
}

TEST_F(JSONUserDefaultsTest, readsAListThatAPersonWroteAsItsCompactText) {
  write(file(), "{\"rewriteProfiles\": [\n  {\"name\": \"Formal\", \"keyCode\": 15}\n]}");
  EXPECT_EQ(JSONUserDefaults{file()}.objectForKey("rewriteProfiles"), data(R"([{"name":"Formal","keyCode":15}])"));
}

TEST_F(JSONUserDefaultsTest, writesDataThatAreJSONSoThatAPersonCanEditThem) {
  JSONUserDefaults{file()}.setObject(DataValue{R"([{"name":"Formal"}])"}, "rewriteProfiles");
  EXPECT_EQ(contentsOf(file()), "{\n  \"rewriteProfiles\": [\n    {\n      \"name\": \"Formal\"\n    }\n  ]\n}\n");
}

TEST_F(JSONUserDefaultsTest, writesOtherDataAsTextOrBase64) {
  JSONUserDefaults defaults{file()};
  defaults.setObject(DataValue{"plain"}, "text");
  defaults.setObject(DataValue{"\xff\x01"}, "bytes");
  const std::string contents = contentsOf(file());
  EXPECT_NE(contents.find("\"$data\": \"plain\""), std::string::npos) << contents;
  EXPECT_NE(contents.find("\"$base64\": \"/wE=\""), std::string::npos) << contents;
}

TEST_F(JSONUserDefaultsTest, keepsWhatItDoesNotKnowAndTheOrderOfTheFile) {
  write(file(), R"({"zebra": {"deep": [1, 2.50, null]}, "model": "a", "alpha": null})");
  JSONUserDefaults{file()}.setObject(std::string{"b"}, "model");
  EXPECT_EQ(contentsOf(file()), R"({
  "zebra": {
    "deep": [
      1,
      2.5,
      null
    ]
  },
  "model": "b",
  "alpha": null
}
)");
}

TEST_F(JSONUserDefaultsTest, makesItsFolderAndAFileForItsOwnerOnly) {
  const auto deep = folder_.path() / "config" / "tavelle" / "settings.json";
  JSONUserDefaults{deep}.setObject(true, "key");
  struct stat status {};
  ASSERT_EQ(stat(deep.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
  ASSERT_EQ(stat(deep.parent_path().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0700u);
}

TEST_F(JSONUserDefaultsTest, leavesNothingElseInTheFolder) {
  JSONUserDefaults{file()}.setObject(true, "key");
  EXPECT_EQ(fileCount(), 1u);
}

TEST_F(JSONUserDefaultsTest, writesNothingWhereNothingChanges) {
  JSONUserDefaults defaults{file()};
  defaults.setObject(true, "key");
  fs::remove(file());
  defaults.setObject(true, "key");
  defaults.removeObjectForKey("absent");
  EXPECT_FALSE(fs::exists(file()));
}

TEST_F(JSONUserDefaultsTest, keepsASymbolicLinkALink) {
  fs::create_directory(folder_.path() / "dotfiles");
  write(folder_.path() / "dotfiles" / "tavelle.json", R"({"model": "a"})");
  fs::create_symlink("dotfiles/tavelle.json", file());
  JSONUserDefaults{file()}.setObject(std::string{"b"}, "model");
  EXPECT_TRUE(fs::is_symlink(file()));
  EXPECT_EQ(contentsOf(folder_.path() / "dotfiles" / "tavelle.json"), "{\n  \"model\": \"b\"\n}\n");
}

TEST_F(JSONUserDefaultsTest, writesTheFileThatADanglingLinkNames) {
  fs::create_symlink(folder_.path() / "elsewhere.json", file());
  JSONUserDefaults{file()}.setObject(true, "key");
  EXPECT_TRUE(fs::is_symlink(file()));
  EXPECT_EQ(contentsOf(folder_.path() / "elsewhere.json"), "{\n  \"key\": true\n}\n");
}

TEST_F(JSONUserDefaultsTest, keepsADamagedFileAsideAndSaysSo) {
  for (const auto& damaged :
       {std::string{"{\"model\": \"a\""}, std::string{"[]"}, std::string{"{} {}"}, std::string{"\"text\""},
        std::string{"{\"a\": \"\xff\"}"}, std::string{"nonsense"}, std::string("{\"model\": \"a\"}\0, and more", 25)}) {
    write(file(), damaged);
    testing::internal::CaptureStderr();
    JSONUserDefaults defaults{file()};
    const auto told = testing::internal::GetCapturedStderr();
    EXPECT_NE(told.find("settings.json.damaged"), std::string::npos) << told;
    EXPECT_EQ(defaults.objectForKey("model"), std::nullopt);
    EXPECT_FALSE(fs::exists(file()));
    EXPECT_EQ(contentsOf(folder_.path() / "settings.json.damaged"), damaged);
    fs::remove(folder_.path() / "settings.json.damaged");
  }
}

TEST_F(JSONUserDefaultsTest, neverOverwritesAnEarlierDamagedFile) {
  testing::internal::CaptureStderr();
  for (const std::string damaged : {"first", "second", "third"}) {
    write(file(), damaged);
    const JSONUserDefaults defaults{file()};
  }
  testing::internal::GetCapturedStderr();
  EXPECT_EQ(contentsOf(folder_.path() / "settings.json.damaged"), "first");
  EXPECT_EQ(contentsOf(folder_.path() / "settings.json.damaged.2"), "second");
  EXPECT_EQ(contentsOf(folder_.path() / "settings.json.damaged.3"), "third");
}

TEST_F(JSONUserDefaultsTest, takesADeeplyNestedFileForDamaged) {
  write(file(), "{\"a\": " + std::string(100'000, '[') + std::string(100'000, ']') + "}");
  testing::internal::CaptureStderr();
  EXPECT_EQ(JSONUserDefaults{file()}.objectForKey("a"), std::nullopt);
  EXPECT_NE(testing::internal::GetCapturedStderr(), "");
}

TEST_F(JSONUserDefaultsTest, readsBackDataOfAnyNesting) {
  for (std::size_t depth = 60; depth < 70; ++depth) {
    const auto nested = std::string(depth, '[') + std::string(depth, ']');
    JSONUserDefaults{file()}.setObject(DataValue{nested}, "a");
    EXPECT_EQ(JSONUserDefaults{file()}.objectForKey("a"), data(nested)) << depth;
  }
}

TEST_F(JSONUserDefaultsTest, takesAnEmptyFileForNoSettings) {
  write(file(), "\n");
  testing::internal::CaptureStderr();
  const JSONUserDefaults defaults{file()};
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(fileCount(), 1u);
}

TEST_F(JSONUserDefaultsTest, keepsTheOldFileWholeOnAFullDisk) {
  JSONUserDefaults defaults{file()};
  defaults.setObject(std::string{"before"}, "model");
  const auto before = contentsOf(file());
  testing::internal::CaptureStderr();
  {
    const FileSizeLimit full{1'000};
    defaults.setObject(std::string(100'000, 'a'), "model");
    defaults.setObject(std::string(100'000, 'b'), "model");
  }
  const auto told = testing::internal::GetCapturedStderr();
  EXPECT_NE(told.find("cannot be stored"), std::string::npos) << told;
  EXPECT_EQ(told.find('\n'), told.size() - 1) << "told once: " << told;
  EXPECT_EQ(contentsOf(file()), before);
  EXPECT_EQ(fileCount(), 1u);
  EXPECT_EQ(defaults.objectForKey("model"), DefaultsValue{std::string(100'000, 'b')});
}

TEST_F(JSONUserDefaultsTest, storesAgainWhenTheDiskHasRoom) {
  const std::string text(100'000, 'a');
  JSONUserDefaults defaults{file()};
  testing::internal::CaptureStderr();
  {
    const FileSizeLimit full{1'000};
    defaults.setObject(text, "model");
  }
  testing::internal::GetCapturedStderr();
  defaults.setObject(text, "model");
  EXPECT_EQ(JSONUserDefaults{file()}.objectForKey("model"), DefaultsValue{text});
}

TEST_F(JSONUserDefaultsTest, keepsTheOldFileWholeInAReadOnlyFolder) {
  const auto before = R"({"model": "before"})";
  write(file(), before);
  JSONUserDefaults defaults{file()};
  testing::internal::CaptureStderr();
  {
    const ReadOnlyFolder readOnly{folder_.path()};
    defaults.setObject(std::string{"after"}, "model");
  }
  EXPECT_NE(testing::internal::GetCapturedStderr().find("Permission denied"), std::string::npos);
  EXPECT_EQ(contentsOf(file()), before);
  EXPECT_EQ(defaults.objectForKey("model"), DefaultsValue{std::string{"after"}});
}

TEST_F(JSONUserDefaultsTest, neverReplacesAFileThatItCouldNotRead) {
  fs::create_directory(file());
  testing::internal::CaptureStderr();
  JSONUserDefaults defaults{file()};
  defaults.setObject(true, "key");
  EXPECT_NE(testing::internal::GetCapturedStderr().find("cannot be read"), std::string::npos);
  EXPECT_TRUE(fs::is_directory(file()));
  EXPECT_EQ(defaults.objectForKey("key"), DefaultsValue{true});
}

}  // namespace
}  // namespace tavelle::tests
