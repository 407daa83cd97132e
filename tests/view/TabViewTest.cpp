#include "view/TabView.h"

#include "tests/view/ViewFixture.h"

namespace tavelle::view::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Note : public Component {
 public:
  Node body() override { return textField("Note:", note_.binding()); }

 private:
  State<std::string> note_{*this, ""};
};

class TabViewTest : public ViewFixture {
 protected:
  void SetUp() override {
    showNode(component<TabView>(
        std::vector<Tab>{{"One", "O", "gear", component<Note>()}, {"Two", "T", "cloud", text("two")}}));
  }

  void choose(std::string_view tab) {
    screen.choose(screen.widget(NodeType::tabView), tab);
    loop.turn();
  }
};

TEST_F(TabViewTest, opensOnTheFirstTabAndShowsOnlyThatOnesContent) {
  EXPECT_THAT(
      built,
      ElementsAre("create 1 tabView value=\"One\"", "insert 1 in 0",                                         //
                  "create 2 tab title=\"One\" tag=\"One\" mnemonic=\"O\" symbol=\"gear\"", "insert 2 in 1",  //
                  "create 3 textField title=\"Note:\" value=\"\"", "insert 3 in 2",                          //
                  "create 4 tab title=\"Two\" tag=\"Two\" mnemonic=\"T\" symbol=\"cloud\"", "insert 4 in 1 after 2"));
}

TEST_F(TabViewTest, showsTheTabThatWasChosen) {
  choose("Two");
  EXPECT_THAT(screen.takeLog(), ElementsAre("remove 3", "create 5 text text=\"two\"", "insert 5 in 4"));
}

TEST_F(TabViewTest, startsATabAfreshEachTimeItIsShown) {
  screen.replaceText(screen.widget("Note:"), "kept?");
  choose("Two");
  choose("One");
  EXPECT_EQ(screen.value("Note:"), "");
}

TEST_F(TabViewTest, keepsTheChoiceForARendererThatTakesOver) {
  choose("Two");
  HeadlessRenderer other{[](const Event&) {}};
  reconciler->attach(&other);
  EXPECT_EQ(other.widget(NodeType::tabView).string(Attribute::value), "Two");
  EXPECT_TRUE(other.shows("two"));
}

TEST_F(TabViewTest, ignoresATabThatDoesNotExist) {
  reconciler->dispatch({1, 1, Selected{"Three"}});
  loop.turn();
  EXPECT_THAT(screen.takeLog(), ElementsAre("update 1 value=\"One\""));
}

}  // namespace
}  // namespace tavelle::view::tests
