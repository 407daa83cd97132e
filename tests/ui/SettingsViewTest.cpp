#include "ui/SettingsView.h"

#include "tests/ui/UIFixture.h"

#include <algorithm>
#include <cctype>

namespace tavelle::tests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;
using testing::SizeIs;

class SettingsViewTest : public UIFixture {
 protected:
  void SetUp() override { show<SettingsView>(); }

  std::string chosen() { return screen->widget(NodeType::tabView).string(Attribute::value); }

  // Of what is shown now: each control's letter, which must be in its title.
  std::vector<std::string> mnemonics() {
    std::vector<std::string> letters;
    for (const auto type : {NodeType::tab, NodeType::textField, NodeType::secureField, NodeType::picker,
                            NodeType::labeledContent, NodeType::button}) {
      for (const auto* control : screen->all(type)) {
        const auto letter = control->string(Attribute::mnemonic);
        if (letter.empty()) continue;
        letters.push_back(letter);
        auto title = control->string(Attribute::title);
        std::transform(title.begin(), title.end(), title.begin(), [](unsigned char c) { return std::toupper(c); });
        EXPECT_THAT(title, HasSubstr(letter));
      }
    }
    std::sort(letters.begin(), letters.end());
    return letters;
  }
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

TEST_F(SettingsViewTest, givesEachControlOfATabALetterOfItsOwn) {
  platform.access.trusted = false;
  show<SettingsView>();
  EXPECT_THAT(mnemonics(), ElementsAre("A", "C", "G", "H", "N", "P", "R"));
  choose(NodeType::tabView, "Provider");
  EXPECT_THAT(mnemonics(), ElementsAre("A", "B", "G", "K", "M", "P", "T", "V"));
  choose(NodeType::picker, "tavelle");
  EXPECT_THAT(mnemonics(), ElementsAre("A", "E", "G", "L", "P", "T", "V"));
}

}  // namespace
}  // namespace tavelle::tests
