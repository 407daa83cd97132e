#include "view/Reconciler.h"

#include "tests/view/ViewFixture.h"

namespace tavelle::view::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ReconcilerTest : public ViewFixture {
 protected:
  static std::vector<Node> texts(const std::string& letters) {
    std::vector<Node> nodes;
    for (const char letter : letters) nodes.push_back(text({letter}).keyed({letter}));
    return nodes;
  }

  std::string shown() {
    std::string letters;
    for (const auto& letter : screen.texts()) letters += letter;
    return letters;
  }

  // How often each of these has been drawn, made and ended.
  struct Counts {
    int drawn = 0;
    int appeared = 0;
    int ended = 0;
  };

  class Counter : public Component {
   public:
    explicit Counter(std::shared_ptr<Counts> counts) : counts_(std::move(counts)) {}
    ~Counter() override { ++counts_->ended; }
    void onAppear() override { ++counts_->appeared; }
    Node body() override {
      ++counts_->drawn;
      return button(std::to_string(count_.get()), [this] { count_.set(count_.get() + 1); });
    }

   private:
    std::shared_ptr<Counts> counts_;
    State<int> count_{*this, 0};
  };
};

TEST_F(ReconcilerTest, createsAndInsertsEachNodeFromTheTop) {
  show([] { return form(section("Keys", text("None").color(Color::secondary)), section("")); });
  EXPECT_THAT(built, ElementsAre("create 1 form", "insert 1 in 0",                                    //
                                 "create 2 section title=\"Keys\"", "insert 2 in 1",                  //
                                 "create 3 text text=\"None\" color=\"secondary\"", "insert 3 in 2",  //
                                 "create 4 section", "insert 4 in 1 after 2"));
}

TEST_F(ReconcilerTest, sendsNothingWhereNothingChanged) {
  show([] { return form(section("Keys", text("None"))); });
  EXPECT_THAT(redraw(), IsEmpty());
  EXPECT_EQ(screen.batches(), 1);
}

TEST_F(ReconcilerTest, sendsOnlyTheAttributesThatChanged) {
  bool later = false;
  show([&later] {
    Node node = text("None").with(Attribute::bold, true);
    return later ? text("⌘R").with(Attribute::bold, true).color(Color::red) : std::move(node);
  });
  later = true;
  EXPECT_THAT(redraw(), ElementsAre("update 1 text=\"⌘R\" color=\"red\""));
  later = false;
  EXPECT_THAT(redraw(), ElementsAre("update 1 text=\"None\" color="));
  EXPECT_EQ(screen.widget("None").attributes, Attributes({{Attribute::text, "None"}, {Attribute::bold, true}}));
}

TEST_F(ReconcilerTest, replacesANodeOfAnotherType) {
  bool editable = false;
  show([&editable] { return form(text("a"), editable ? button("b", [] {}) : text("b"), text("c").keyed("c")); });
  editable = true;
  EXPECT_THAT(redraw(), ElementsAre("remove 3", "create 5 button title=\"b\"", "insert 5 in 1 after 2"));
}

TEST_F(ReconcilerTest, replacesTheRootInItsPlace) {
  bool editable = false;
  show([&editable] { return editable ? button("b", [] {}) : text("b"); });
  editable = true;
  EXPECT_THAT(redraw(), ElementsAre("remove 1", "create 2 button title=\"b\"", "insert 2 in 0"));
}

TEST_F(ReconcilerTest, insertsAndRemovesInTheMiddleWithoutTouchingTheOthers) {
  std::string letters = "ac";
  show([&letters] { return form(texts(letters)); });
  letters = "abc";
  EXPECT_THAT(redraw(), ElementsAre("create 4 text text=\"b\"", "insert 4 in 1 after 2"));
  letters = "bc";
  EXPECT_THAT(redraw(), ElementsAre("remove 2"));
  EXPECT_EQ(shown(), "bc");
}

TEST_F(ReconcilerTest, movesAsFewNodesAsItCan) {
  std::string letters = "abcde";
  show([&letters] { return form(texts(letters)); });
  letters = "eabcd";
  EXPECT_THAT(redraw(), ElementsAre("move 6 in 1"));
  letters = "abcde";
  EXPECT_THAT(redraw(), ElementsAre("move 6 in 1 after 5"));
  letters = "badce";
  EXPECT_EQ(redraw().size(), 2);
  EXPECT_EQ(shown(), "badce");
}

TEST_F(ReconcilerTest, showsEveryOrderThatIsAskedOfIt) {
  std::string letters = "abcdef";
  show([&letters] { return form(texts(letters)); });
  std::string next = "";
  for (unsigned seed = 1; seed < 2000; ++seed) {
    next.clear();
    unsigned state = seed * 2654435761U;
    for (std::string left = "abcdefgh"; !left.empty(); state = state * 1664525U + 1013904223U) {
      const auto at = (state >> 16) % left.size();
      if (((state >> 8) & 3U) != 0) next += left[at];
      left.erase(at, 1);
    }
    letters = next;
    redraw();
    ASSERT_EQ(shown(), next);
  }
}

TEST_F(ReconcilerTest, tellsSiblingsOfOneTypeApartByTheirOrder) {
  bool warned = false;
  show([&warned] {
    return form(text("a"), warned ? std::optional{text("warning")} : std::nullopt, button("b", [] {}));
  });
  warned = true;
  EXPECT_THAT(redraw(), ElementsAre("create 4 text text=\"warning\"", "insert 4 in 1 after 2"));
}

TEST_F(ReconcilerTest, drawsOnlyTheComponentThatChanged) {
  const auto first = std::make_shared<Counts>();
  const auto second = std::make_shared<Counts>();
  show([&] { return form(component<Counter>(first), component<Counter>(second).keyed("second")); });
  screen.press("0");
  loop.turn();
  EXPECT_THAT(screen.takeLog(), ElementsAre("update 2 title=\"1\""));
  EXPECT_EQ(first->drawn, 2);
  EXPECT_EQ(second->drawn, 1);
}

TEST_F(ReconcilerTest, flushesOnceATurnHoweverManyChangesThereWere) {
  int drawn = 0;
  Component* root = nullptr;
  showNode(component<Drawn>(std::function<Node(Component&)>{[&](Component& self) {
    root = &self;
    return text(std::to_string(++drawn));
  }}));
  for (int change = 0; change < 10; ++change) root->invalidate();
  EXPECT_THAT(screen.takeLog(), IsEmpty()) << "not at once";
  EXPECT_EQ(loop.turn(), 1);
  EXPECT_THAT(screen.takeLog(), ElementsAre("update 1 text=\"2\""));
  EXPECT_EQ(loop.turn(), 0);
}

TEST_F(ReconcilerTest, keepsAComponentsStateThroughEveryChangeAroundIt) {
  const auto counts = std::make_shared<Counts>();
  std::string letters = "ab";
  show([&] { return form(texts(letters), component<Counter>(counts)); });
  screen.press("0");
  for (const auto* around : {"", "xyz", "a"}) {
    letters = around;
    redraw();
  }
  EXPECT_TRUE(screen.shows("1"));
  EXPECT_EQ(counts->appeared, 1);
  EXPECT_EQ(counts->ended, 0);
}

TEST_F(ReconcilerTest, movesAComponentByItsKeyWithItsState) {
  const auto counts = std::make_shared<Counts>();
  bool last = false;
  show([&] {
    std::vector<Node> nodes = texts("ab");
    nodes.insert(last ? nodes.end() : nodes.begin(), component<Counter>(counts).keyed("counter"));
    return form(std::move(nodes));
  });
  screen.press("0");
  last = true;
  EXPECT_THAT(redraw(), ElementsAre("move 2 in 1 after 4", "update 2 title=\"1\""));
}

TEST_F(ReconcilerTest, givesAComponentThatComesBackFreshState) {
  const auto counts = std::make_shared<Counts>();
  bool present = true;
  show([&] { return form(present ? std::optional{component<Counter>(counts)} : std::nullopt); });
  screen.press("0");
  present = false;
  EXPECT_THAT(redraw(), ElementsAre("remove 2"));
  EXPECT_EQ(counts->ended, 1);
  present = true;
  EXPECT_THAT(redraw(), ElementsAre("create 3 button title=\"0\"", "insert 3 in 1"));
  EXPECT_EQ(counts->appeared, 2);
}

TEST_F(ReconcilerTest, givesAComponentWithAnotherKeyFreshState) {
  const auto counts = std::make_shared<Counts>();
  std::string key = "a";
  show([&] { return form(component<Counter>(counts).keyed(key)); });
  screen.press("0");
  key = "b";
  redraw();
  EXPECT_TRUE(screen.shows("0"));
}

TEST_F(ReconcilerTest, replacesWhatAComponentIsDrawnAsBehindWhatStandsBeforeIt) {
  Component* inner = nullptr;
  bool editable = false;
  show([&] {
    return form(text("a"), component<Drawn>(std::function<Node(Component&)>{[&](Component& self) {
                  inner = &self;
                  return editable ? button("b", [] {}) : text("b");
                }}),
                text("c").keyed("c"));
  });
  editable = true;
  inner->invalidate();
  loop.turn();
  EXPECT_THAT(screen.takeLog(), ElementsAre("remove 3", "create 5 button title=\"b\"", "insert 5 in 1 after 2"));
}

TEST_F(ReconcilerTest, forgetsAComponentThatWasMarkedAndIsGoneWithTheSameFlush) {
  const auto counts = std::make_shared<Counts>();
  bool present = true;
  show([&] { return form(present ? std::optional{component<Counter>(counts)} : std::nullopt); });
  screen.press("0");
  present = false;
  redraw();
  EXPECT_EQ(counts->drawn, 1);
}

TEST_F(ReconcilerTest, isNotDisturbedByAComponentThatOutlivesItsPlace) {
  std::weak_ptr<Component> weak;
  bool present = true;
  show([&] {
    return form(present ? std::optional{component<Drawn>(std::function<Node(Component&)>{[&](Component& self) {
      weak = self.weak_from_this();
      return text("a");
    }})}
                        : std::nullopt);
  });
  const auto held = weak.lock();
  present = false;
  redraw();
  held->invalidate();
  EXPECT_EQ(loop.turn(), 0);
}

TEST_F(ReconcilerTest, letsAnEventMeetTheTreeAsTheOnesBeforeItLeftIt) {
  std::vector<std::string> heard;
  bool isOn = false;
  Component* root = nullptr;
  showNode(component<Drawn>(std::function<Node(Component&)>{[&](Component& self) {
    root = &self;
    const std::string now = isOn ? "on" : "off";
    return button("switch", [&, now] {
      heard.push_back(now);
      isOn = true;
      root->invalidate();
    });
  }}));
  screen.press("switch");
  screen.press("switch");
  EXPECT_THAT(heard, ElementsAre("off", "on"));
}

TEST_F(ReconcilerTest, doesNotHearWhatIsDoneToANodeThatIsGone) {
  int presses = 0;
  bool present = true;
  show([&] { return form(present ? std::optional{button("b", [&presses] { ++presses; })} : std::nullopt); });
  present = false;
  redraw();
  reconciler->dispatch({2, 1, Pressed{}});
  reconciler->dispatch({77, 2, Pressed{}});
  EXPECT_EQ(presses, 0);
}

TEST_F(ReconcilerTest, doesNotHearWhatWasDoneToAControlBeforeItKnewThatItIsDisabled) {
  int presses = 0;
  bool disabled = false;
  show([&] { return button("b", [&presses] { ++presses; }).disabled(disabled); });
  reconciler->dispatch({1, 1, Pressed{}});
  disabled = true;
  redraw();
  reconciler->dispatch({1, 2, Pressed{}});
  EXPECT_EQ(presses, 1);
}

TEST_F(ReconcilerTest, ignoresInputOfAKindThatTheNodeDoesNotTake) {
  int presses = 0;
  show([&] { return button("b", [&presses] { ++presses; }).disabled(false); });
  reconciler->dispatch({1, 1, Edited{"x"}});
  reconciler->dispatch({1, 2, KeyDown{}});
  EXPECT_EQ(presses, 0);
}

TEST_F(ReconcilerTest, showsTheSameStateToARendererThatTakesOver) {
  const auto counts = std::make_shared<Counts>();
  show([&] { return form(section("a", text("x")), component<Counter>(counts), text("y")); });
  screen.press("0");
  reconciler->attach(nullptr);
  screen.press("1");
  loop.turn();
  screen.takeLog();

  HeadlessRenderer other{[this](const Event& event) { reconciler->dispatch(event); }};
  reconciler->attach(&other);
  EXPECT_THAT(other.takeLog(), ElementsAre("create 1 form", "insert 1 in 0",                        //
                                           "create 2 section title=\"a\"", "insert 2 in 1",         //
                                           "create 3 text text=\"x\"", "insert 3 in 2",             //
                                           "create 4 button title=\"2\"", "insert 4 in 1 after 2",  //
                                           "create 5 text text=\"y\"", "insert 5 in 1 after 4"));
  other.press("2");
  loop.turn();
  EXPECT_TRUE(other.shows("3"));
  EXPECT_THAT(screen.takeLog(), IsEmpty()) << "the one before is told nothing more";
}

TEST_F(ReconcilerTest, mayEndWithAFlushStillToCome) {
  const auto counts = std::make_shared<Counts>();
  show([&] { return component<Counter>(counts); });
  screen.press("0");
  reconciler.reset();
  loop.turn();
  EXPECT_EQ(counts->ended, 1);
}

TEST_F(ReconcilerTest, drawsAgainWhenWhatIsObservedChanges) {
  class Follower : public Component {
   public:
    Follower(Subject<>* changes, int* value) : value_(*value) { observe(*changes); }
    Node body() override { return text(std::to_string(value_)); }

   private:
    int& value_;
  };
  Subject<> changes;
  int value = 1;
  showNode(component<Follower>(&changes, &value));
  changes.send();
  value = 2;  // the subject tells before the value changes
  loop.turn();
  EXPECT_THAT(screen.takeLog(), ElementsAre("update 1 text=\"2\""));
}

}  // namespace
}  // namespace tavelle::view::tests
