#include "ui/SettingsView.h"

#include "tests/ui/UIFixture.h"

namespace tavelle::tests {
namespace {

using testing::ElementsAre;
using testing::Pair;
using testing::SizeIs;

class SettingsViewTest : public UIFixture {
 protected:
  void SetUp() override { show<SettingsView>(); }

  std::string chosen() { return screen->widget(NodeType::tabView).string(Attribute::value); }
};

TEST_F(SettingsViewTest, hasThreeTabsWithTitlesAndSymbolsInOrder) {
  std::vector<std::pair<std::string, std::string>> tabs;
  for (const auto* tab : screen->all(NodeType::tab)) {
    tabs.emplace_back(tab->string(Attribute::title), tab->string(Attribute::symbol));
  }
  EXPECT_THAT(tabs, ElementsAre(Pair("General", "gear"), Pair("Provider", "cloud"), Pair("About", "info.circle")));
}

TEST_F(SettingsViewTest, opensOnTheGeneralTab) {
  EXPECT_EQ(chosen(), "General");
  EXPECT_TRUE(screen->shows("Profiles"));
  EXPECT_FALSE(screen->shows("Test Connection"));
}

TEST_F(SettingsViewTest, showsTheTabThatIsChosen) {
  choose(NodeType::tabView, "Provider");
  EXPECT_TRUE(screen->shows("Test Connection"));
  EXPECT_FALSE(screen->shows("Profiles"));
  choose(NodeType::tabView, "About");
  EXPECT_TRUE(screen->shows("Version 1.0.0"));
}

TEST_F(SettingsViewTest, opensOnTheFirstTabAgainWhenItIsMadeAnew) {
  choose(NodeType::tabView, "About");
  show<SettingsView>();
  EXPECT_EQ(chosen(), "General");
}

TEST_F(SettingsViewTest, keeps480By500PointsWhateverTheTab) {
  for (const auto* tab : {"General", "Provider", "About"}) {
    choose(NodeType::tabView, tab);
    const auto& content = screen->widget(NodeType::stack).attributes;
    EXPECT_EQ(*content.get<double>(Attribute::width), 480);
    EXPECT_EQ(*content.get<double>(Attribute::height), 500);
  }
}

TEST_F(SettingsViewTest, stopsRecordingAHotkeyWithTheTab) {
  press("⌘⇧R");
  choose(NodeType::tabView, "Provider");
  screen->focus(screen->widget("Model:"));
  type("x");
  EXPECT_EQ(settings().model(), "gpt-4ox") << "not recorded";
  choose(NodeType::tabView, "General");
  EXPECT_TRUE(screen->shows("⌘⇧R"));
  EXPECT_FALSE(screen->shows("Press keys..."));
}

}  // namespace
}  // namespace tavelle::tests
