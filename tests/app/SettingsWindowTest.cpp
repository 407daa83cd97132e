#include "app/SettingsWindow.h"

#include "tests/app/AppFixture.h"
#include "view/Nodes.h"

#include <string>

namespace tavelle::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using view::Attribute;
using view::NodeType;

class SettingsWindowTest : public AppFixture {
 protected:
  SettingsWindowTest() {
    launch();
    platform.log.take();
  }

  void openSettings() {
    platform.statusBar.choose("Settings...");
    platform.loop.runUntilIdle();
  }

  FakeWindow& window() { return *platform.windows.at(0); }
  view::HeadlessRenderer& screen() { return window().screen; }
  void press(std::string_view name) {
    screen().press(name);
    platform.loop.runUntilIdle();
  }
};

TEST_F(SettingsWindowTest, isNotThereBeforeItIsOpened) {
  EXPECT_THAT(platform.windows, IsEmpty());
}

TEST_F(SettingsWindowTest, opensFromTheMenuCentredInFrontOfEverything) {
  openSettings();
  EXPECT_THAT(platform.log.take(),
              ElementsAre("made a window", "centred the window", "ordered the window front", "activated"));
  EXPECT_TRUE(window().isVisible);
}

TEST_F(SettingsWindowTest, isATitledClosableWindowOf480By500Points) {
  openSettings();
  EXPECT_EQ(window().contentRect, (Rect{0, 0, 480, 500}));
  EXPECT_EQ(static_cast<std::uint32_t>(window().styleMask), 3) << "neither resizable nor miniaturisable";
  EXPECT_EQ(window().backing, BackingStoreType::buffered);
  EXPECT_FALSE(window().isDeferred);
  EXPECT_EQ(window().title, "Tavelle Settings");
  EXPECT_FALSE(window().isReleasedWhenClosed);
}

TEST_F(SettingsWindowTest, showsTheSettingsOnTheGeneralTab) {
  openSettings();
  EXPECT_EQ(screen().widget(NodeType::tabView).string(Attribute::value), "General");
  EXPECT_EQ(screen().value("Name:"), "Reword");
}

TEST_F(SettingsWindowTest, isTheSameWhenItIsOpenedAgainWhereThePersonLeftIt) {
  openSettings();
  platform.log.take();
  openSettings();
  EXPECT_THAT(platform.windows, SizeIs(1));
  EXPECT_THAT(platform.log.take(), ElementsAre("ordered the window front", "activated")) << "and not centred again";
}

TEST_F(SettingsWindowTest, keepsItsStateWhileItIsClosed) {
  openSettings();
  press("plus");
  screen().choose(screen().widget(NodeType::tabView), "Provider");
  platform.loop.runUntilIdle();
  screen().focus(screen().widget("Model:"));
  screen().type("x");
  window().close();
  platform.log.take();
  openSettings();
  EXPECT_THAT(platform.windows, SizeIs(1));
  EXPECT_TRUE(window().isVisible);
  EXPECT_EQ(screen().widget(NodeType::tabView).string(Attribute::value), "Provider");
  EXPECT_EQ(screen().value("Model:"), "gpt-4ox");
  EXPECT_EQ(screen().focused(), "Model:");
}

TEST_F(SettingsWindowTest, waitsForAConnectionTestThatEndsWhileItIsClosed) {
  openSettings();
  screen().choose(screen().widget(NodeType::tabView), "Provider");
  platform.loop.runUntilIdle();
  press("Test Connection");
  window().close();
  openSettings();
  EXPECT_TRUE(screen().shows("Testing..."));
  window().close();
  platform.network.answer(500, "oops");
  platform.loop.runUntilIdle();
  openSettings();
  EXPECT_TRUE(screen().shows("Error: API error (500): oops"));
}

TEST_F(SettingsWindowTest, opensWhenThePersonStartsTheApplicationASecondTime) {
  app->applicationShouldHandleReopen();
  EXPECT_THAT(platform.windows, SizeIs(1));
  EXPECT_TRUE(window().isVisible);
  app->applicationShouldHandleReopen();
  EXPECT_THAT(platform.windows, SizeIs(1));
}

TEST_F(SettingsWindowTest, registersAHotkeyAsSoonAsItIsRecorded) {
  openSettings();
  press("⌘⇧R");
  platform.log.take();
  screen().keyDown({8, 0x100000}, "c");
  EXPECT_EQ(platform.hotKeys.registered().at(1).keyCode, 8);
  EXPECT_EQ(platform.hotKeys.registered().at(1).modifiers, cmdKey);
  EXPECT_THAT(platform.log.take(), ElementsAre("unregistered 1", "registered 1", "unregistered 1", "registered 1"));
}

TEST_F(SettingsWindowTest, goesOnServingHotkeysWhileItIsOpen) {
  openSettings();
  press("minus");
  platform.hotKeys.press(1);
  platform.loop.runUntilIdle();
  EXPECT_TRUE(app->isProcessing());
  platform.loop.runToEnd();
}

TEST_F(SettingsWindowTest, endsWithTheApplication) {
  openSettings();
  screen().focus(screen().widget("Name:"));
  screen().type("x");  // a redrawing is still to come
  const std::weak_ptr<AppDelegate> weak = app;
  app.reset();
  EXPECT_TRUE(weak.expired());
  platform.loop.runUntilIdle();
  EXPECT_EQ(SettingsManager::shared().profiles().at(0).name, "Rewordx");
}

}  // namespace
}  // namespace tavelle::tests
