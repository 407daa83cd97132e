#include "view/UnseenInput.h"

#include "tests/view/ViewFixture.h"

#include <deque>

namespace tavelle::view::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A component with a field, and a button that sets it.
class Form : public Component {
 public:
  explicit Form(std::function<std::string(std::string)> filter) : filter_(std::move(filter)) {}

  Node body() override {
    const Binding<std::string> filtered{[this] { return name_.get(); },
                                        [this](const std::string& name) { name_.set(filter_(name)); }};
    return form(textField("Name:", filtered), text(name_.get()).labeled("echo"),
                button("Reset", [this] { name_.set("default"); }));
  }

 private:
  std::function<std::string(std::string)> filter_;
  State<std::string> name_{*this, ""};
};

std::string asItIs(std::string name) {
  return name;
}

class TypingTest : public ViewFixture {
 protected:
  void showForm(std::function<std::string(std::string)> filter = asItIs) {
    showNode(component<Form>(std::move(filter)));
    screen.focus(screen.widget("Name:"));
  }
};

TEST_F(TypingTest, sendsAFieldWhoseTextIsRightNoUpdate) {
  showForm();
  screen.type("ab");
  loop.turn();
  EXPECT_THAT(screen.takeLog(), ElementsAre("update 3 text=\"a\"", "update 3 text=\"ab\""))
      << "the echo, and only that";
}

TEST_F(TypingTest, keepsFocusAndCursorWhileTypingInTheMiddle) {
  showForm();
  screen.type("ad");
  loop.turn();
  screen.moveCursor(1);
  screen.type("bc");
  loop.turn();
  EXPECT_EQ(screen.value("Name:"), "abcd");
  EXPECT_EQ(screen.widget("Name:").cursor, 3);
  EXPECT_EQ(screen.focused(), "Name:");
}

TEST_F(TypingTest, keepsFocusAndCursorWhileEverythingAroundTheFieldChanges) {
  std::string letters = "ab";
  std::string name;
  show([&] {
    std::vector<Node> nodes;
    for (const char letter : letters) nodes.push_back(text({letter}).keyed({letter}));
    nodes.insert(nodes.begin() + 1, textField("Name:", {[&] { return name; }, [&](std::string now) { name = now; }}));
    return form(std::move(nodes));
  });
  screen.focus(screen.widget("Name:"));
  screen.type("xyz");
  screen.moveCursor(2);
  for (const auto* around : {"ba", "bcd", "x", "ab"}) {
    letters = around;
    redraw();
    EXPECT_EQ(screen.focused(), "Name:");
    EXPECT_EQ(screen.widget("Name:").cursor, 2);
  }
}

TEST_F(TypingTest, updatesAFieldThatWasSetByTheProgram) {
  showForm();
  screen.type("ab");
  screen.press("Reset");
  screen.takeLog();
  loop.turn();
  EXPECT_EQ(screen.value("Name:"), "default");
  EXPECT_EQ(screen.widget("Name:").cursor, 2);
}

TEST_F(TypingTest, correctsAFieldWhoseTextWasNotTakenAsTyped) {
  showForm([](std::string name) {
    std::erase(name, '!');
    return name;
  });
  screen.type("a!");
  loop.turn();
  EXPECT_EQ(screen.value("Name:"), "a");
  screen.type("!");
  loop.turn();
  EXPECT_EQ(screen.value("Name:"), "a") << "also where what it is bound to did not change at all";
}

TEST_F(TypingTest, correctsADisabledFieldThatWasTypedIntoBeforeItKnew) {
  std::string name = "fixed";
  show([&] { return textField("Name:", {[&] { return name; }, [&](std::string now) { name = now; }}).disabled(true); });
  reconciler->dispatch({1, 1, Edited{"fixed!"}});
  loop.turn();
  EXPECT_EQ(name, "fixed");
  EXPECT_THAT(screen.takeLog(), ElementsAre("update 1 value=\"fixed\""));
}

// A renderer in another process: what goes down and what comes up is on its way for as long as the test wants.
class DistantRenderer : public Renderer {
 public:
  void apply(const Batch& batch) override { down_.push_back(batch); }

  void deliverDown() {
    if (down_.empty()) return;
    screen.apply(down_.front());
    down_.pop_front();
  }
  void deliverUp(Reconciler& reconciler) {
    if (up_.empty()) return;
    const auto event = up_.front();
    up_.pop_front();
    reconciler.dispatch(event);
  }
  bool isQuiet() const { return up_.empty() && down_.empty(); }

  HeadlessRenderer screen{[this](const Event& event) { up_.push_back(event); }};

 private:
  std::deque<Batch> down_;
  std::deque<Event> up_;
};

class DistantTypingTest : public testing::Test {
 protected:
  void show(std::function<std::string(std::string)> filter) {
    distant = std::make_unique<DistantRenderer>();
    reconciler = std::make_shared<Reconciler>(component<Form>(std::move(filter)), loop.schedule());
    reconciler->attach(distant.get());
    distant->deliverDown();
    distant->screen.focus(distant->screen.widget("Name:"));
  }

  void settle() {
    do {
      distant->deliverUp(*reconciler);
      loop.turn();
      distant->deliverDown();
    } while (!distant->isQuiet());
  }

  HeadlessRenderer& screen() { return distant->screen; }
  std::string echo() { return screen().widget("echo").string(Attribute::text); }

  Loop loop;
  std::unique_ptr<DistantRenderer> distant;
  std::shared_ptr<Reconciler> reconciler;
};

TEST_F(DistantTypingTest, keepsWhatIsTypedWhileAnUpdateIsOnItsWay) {
  show(asItIs);
  screen().press("Reset");
  distant->deliverUp(*reconciler);
  loop.turn();           // "default" is on its way down
  screen().type("new");  // and this crosses it
  distant->deliverDown();
  EXPECT_EQ(screen().value("Name:"), "new");
  settle();
  EXPECT_EQ(screen().value("Name:"), "new");
  EXPECT_EQ(echo(), "new");
}

TEST_F(DistantTypingTest, takesAnUpdateThatKnowsOfEverythingTyped) {
  show(asItIs);
  screen().type("ab");
  screen().press("Reset");
  settle();
  EXPECT_EQ(screen().value("Name:"), "default");
  EXPECT_EQ(echo(), "default");
}

TEST_F(DistantTypingTest, leavesOutOnlyTheValueOfAnUpdateThatCrossedTyping) {
  UnseenInput input;
  const auto typed = input.stamp(7, Edited{"x"});
  EXPECT_EQ(typed, (Event{7, 1, Edited{"x"}}));
  const Batch crossing{0,
                       {Update{7, {{Attribute::value, "old"}, {Attribute::title, "T"}}},
                        Update{7, {{Attribute::value, "o"}}}, Update{8, {{Attribute::value, "other"}}}}};
  const Batch left{0, {Update{7, {{Attribute::title, "T"}}}, Update{8, {{Attribute::value, "other"}}}}};
  EXPECT_EQ(input.withoutStaleValues(crossing), left);
  Batch answer{1, {Update{7, {{Attribute::value, "X"}}}}};
  EXPECT_EQ(input.withoutStaleValues(answer), answer);
}

// Many ways in which keystrokes, turns of the loop and updates may cross.
TEST_F(DistantTypingTest, losesNoCharacterHoweverKeystrokesAndUpdatesCross) {
  for (unsigned seed = 1; seed <= 100; ++seed) {
    const bool shouts = seed % 2 == 0;
    show([shouts](std::string name) {
      if (shouts) {
        for (auto& letter : name) {
          if (letter >= 'a' && letter <= 'z') letter = static_cast<char>(letter - 'a' + 'A');
        }
      }
      return name;
    });
    std::string typed;
    unsigned state = seed * 2654435761U;
    while (typed.size() < 40) {
      state = state * 1664525U + 1013904223U;
      switch ((state >> 16) % 4) {
        case 0:
          typed += static_cast<char>('a' + (state >> 20) % 26);
          screen().type(typed.substr(typed.size() - 1));
          break;
        case 1:
          distant->deliverUp(*reconciler);
          break;
        case 2:
          distant->deliverDown();
          break;
        default:
          loop.turn();
      }
      ASSERT_EQ(screen().value("Name:").size(), typed.size());
    }
    settle();
    if (shouts) {
      for (auto& letter : typed) letter = static_cast<char>(letter - 'a' + 'A');
    }
    ASSERT_EQ(screen().value("Name:"), typed) << "seed " << seed;
    ASSERT_EQ(echo(), typed) << "seed " << seed;
    ASSERT_EQ(screen().widget("Name:").cursor, typed.size());
  }
}

}  // namespace
}  // namespace tavelle::view::tests
