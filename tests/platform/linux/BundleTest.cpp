#include "platform/linux/Bundle.h"

#include "tests/platform/contracts/BundleContract.h"
#include "tests/platform/linux/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace tavelle::tests {
namespace {

std::shared_ptr<LinuxImage> imageIn(const std::filesystem::path& folder) {
  return std::dynamic_pointer_cast<LinuxImage>(LinuxBundle{folder}.imageNamed("MenuBarIcon"));
}

struct FolderBundle {
  FolderBundle() {
    const auto icons = folder.path() / "icons";
    std::filesystem::create_directory(icons);
    write(icons / "MenuBarIcon-16.pgm", "P5\n16 16\n255\n" + std::string(256, 'x'));
    write(folder.path() / "Info.json", R"({"CFBundleName": "Tavelle", "LSUIElement": true, "Count": 2})");
  }
  Bundle& bundle() { return own; }

  TemporaryFolder folder;
  LinuxBundle own{folder};
};

INSTANTIATE_TYPED_TEST_SUITE_P(Folder, BundleContract, FolderBundle);

TEST(LinuxBundle, knowsWhatTheProgramIs) {
  LinuxBundle bundle{LinuxBundle::standardFolder()};
  EXPECT_EQ(bundle.objectForInfoDictionaryKey("CFBundleName"), InfoValue{std::string{"Tavelle"}});
  EXPECT_EQ(bundle.objectForInfoDictionaryKey("CFBundleIdentifier"), InfoValue{std::string{"app.tavelle.Tavelle"}});
  EXPECT_EQ(bundle.objectForInfoDictionaryKey("CFBundleShortVersionString"),
            InfoValue{std::string{TAVELLE_TEST_VERSION}});
}

TEST(LinuxBundle, hasTheMenuBarIconInEverySizeOfAPanel) {
  const auto image = imageIn(LinuxBundle::standardFolder());
  ASSERT_TRUE(image);
  EXPECT_EQ(image->iconName(), "MenuBarIcon-symbolic");
  EXPECT_TRUE(std::filesystem::exists(image->folder() / "MenuBarIcon-symbolic.svg"));
  std::vector<int> sizes;
  for (const auto& mask : image->masks()) {
    sizes.push_back(mask.size);
    EXPECT_EQ(mask.alpha.size(), static_cast<std::size_t>(mask.size * mask.size));
    EXPECT_EQ(std::count(mask.alpha.begin(), mask.alpha.end(), '\xff') > 0, true) << "nothing to see at " << mask.size;
  }
  EXPECT_EQ(sizes, (std::vector{16, 22, 24, 32, 48}));
}

TEST(LinuxBundle, hasNothingWhereItsFolderIsMissing) {
  EXPECT_EQ(LinuxBundle{"/nonexistent"}.imageNamed("MenuBarIcon"), nullptr);
  EXPECT_EQ(LinuxBundle{"/nonexistent"}.objectForInfoDictionaryKey("CFBundleName"), std::nullopt);
}

TEST(LinuxBundle, leavesOutMasksThatAreNotWhatTheyShouldBe) {
  TemporaryFolder folder;
  const auto icons = folder.path() / "icons";
  std::filesystem::create_directory(icons);
  write(icons / "MenuBarIcon-16.pgm", "P5\n16 16\n255\n" + std::string(256, 'x'));
  write(icons / "MenuBarIcon-22.pgm", "P5\n22 22\n255\n" + std::string(10, 'x'));
  write(icons / "MenuBarIcon-24.pgm", "P5\n16 16\n255\n" + std::string(256, 'x'));
  write(icons / "MenuBarIcon-32.pgm", "P5\n");
  write(icons / "MenuBarIcon-48.pgm", "");
  const auto image = imageIn(folder);
  ASSERT_TRUE(image);
  ASSERT_EQ(image->masks().size(), 1u);
  EXPECT_EQ(image->masks()[0].size, 16);
}

TEST(LinuxBundle, handsOverNoValueThatItCannotHold) {
  TemporaryFolder folder;
  write(folder.path() / "Info.json", R"({"list": [], "nothing": null})");
  LinuxBundle bundle{folder};
  EXPECT_EQ(bundle.objectForInfoDictionaryKey("list"), std::nullopt);
  EXPECT_EQ(bundle.objectForInfoDictionaryKey("nothing"), std::nullopt);
}

}  // namespace
}  // namespace tavelle::tests
