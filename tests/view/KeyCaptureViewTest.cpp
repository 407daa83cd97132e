#include "view/KeyCaptureView.h"
#include "view/KeyDownListener.h"

#include "tests/view/ViewFixture.h"

namespace tavelle::view::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr KeyDown commandShiftR{15, 0x100000 | 0x20000};

// A window with a field, and the view in it.
class KeyCaptureViewTest : public ViewFixture {
 protected:
  KeyCaptureViewTest() {
    show([this] {
      return form(textField("Name:", {[this] { return name; }, [this](std::string now) { name = now; }}));
    });
    screen.focus(screen.widget("Name:"));
    capture->handler = [this](const KeyDown& event) { captured.push_back(event); };
    capture->viewDidMoveToWindow(screen);
  }

  std::string name;
  std::vector<KeyDown> captured;
  std::shared_ptr<KeyCaptureView> capture = std::make_shared<KeyCaptureView>();
};

TEST_F(KeyCaptureViewTest, startsDisabledWithoutHandlerAndMonitor) {
  const KeyCaptureView fresh;
  EXPECT_FALSE(fresh.isEnabled);
  EXPECT_FALSE(fresh.handler);
  EXPECT_FALSE(fresh.monitor);
}

TEST_F(KeyCaptureViewTest, isEnabledByTheFirstUpdateOfItsListenerAndNotBefore) {
  KeyDownListener listener{true, [this](const KeyDown& event) { captured.push_back(event); }};
  const auto made = listener.makeView();
  EXPECT_FALSE(made->isEnabled);
  made->handler(commandShiftR);
  listener.handler = nullptr;
  listener.updateView(*made);
  EXPECT_TRUE(made->isEnabled);
  EXPECT_FALSE(made->handler);
  EXPECT_THAT(captured, ElementsAre(commandShiftR));
}

TEST_F(KeyCaptureViewTest, letsTypingPassWhileItIsDisabled) {
  screen.type("abc");
  EXPECT_EQ(name, "abc");
  EXPECT_THAT(captured, IsEmpty());
}

TEST_F(KeyCaptureViewTest, takesALetterAwayFromTheFocusedFieldWhileItIsEnabled) {
  capture->isEnabled = true;
  screen.keyDown({0, 0}, "a");
  EXPECT_THAT(captured, ElementsAre(KeyDown{0, 0}));
  EXPECT_EQ(name, "");
  EXPECT_EQ(screen.value("Name:"), "");
}

TEST_F(KeyCaptureViewTest, swallowsKeysSilentlyWithoutAHandler) {
  capture->isEnabled = true;
  capture->handler = nullptr;
  screen.type("abc");
  EXPECT_EQ(name, "");
}

TEST_F(KeyCaptureViewTest, letsItsHandlerReplaceItselfWhileItRuns) {
  capture->isEnabled = true;
  capture->handler = [this, words = std::string(100, 'x')](const KeyDown&) {
    capture->handler = nullptr;
    name = words;
  };
  screen.keyDown({0, 0}, "a");
  EXPECT_EQ(name, std::string(100, 'x'));
  EXPECT_FALSE(capture->handler);
}

TEST_F(KeyCaptureViewTest, waitsForAKeyThatIsNoModifier) {
  capture->isEnabled = true;
  screen.modifiersChange();
  EXPECT_THAT(captured, IsEmpty());
  screen.keyDown(commandShiftR, "");
  EXPECT_THAT(captured, ElementsAre(commandShiftR));
}

TEST_F(KeyCaptureViewTest, takesEveryKeyWithoutFiltering) {
  capture->isEnabled = true;
  constexpr std::uint16_t keys[] = {53, 36, 48, 51, 105, 126};
  for (const auto key : keys) screen.keyDown({key, 0}, "");
  EXPECT_EQ(captured.size(), 6) << "Escape, Return, Tab, Delete, F13 and the arrow up";
}

TEST_F(KeyCaptureViewTest, takesNothingMoreOnceItIsRemoved) {
  capture->isEnabled = true;
  capture->removeFromSuperview(screen);
  screen.type("a");
  EXPECT_EQ(name, "a");
  EXPECT_THAT(captured, IsEmpty());
  EXPECT_TRUE(capture->monitor) << "the token is not cleared";
}

TEST_F(KeyCaptureViewTest, installsOneMoreMonitorAtEachMoveIntoAWindow) {
  const auto first = capture->monitor;
  capture->viewDidMoveToWindow(screen);
  EXPECT_NE(capture->monitor, first);
  capture->isEnabled = true;
  capture->removeFromSuperview(screen);
  screen.type("a");
  EXPECT_EQ(captured.size(), 1) << "the first monitor is still there";
}

TEST_F(KeyCaptureViewTest, passesEverythingOnOnceTheViewIsGone) {
  capture->isEnabled = true;
  capture.reset();
  screen.type("a");
  EXPECT_EQ(name, "a");
}

using KeyCaptureTest = ViewFixture;

TEST_F(KeyCaptureTest, capturesKeysBehindAnyContentWhileItsNodeIsEnabled) {
  bool recording = false;
  std::string name;
  std::vector<KeyDown> captured;
  show([&] {
    return keyCapture(
        recording, [&](const KeyDown& event) { captured.push_back(event); },
        form(textField("Name:", {[&] { return name; }, [&](std::string now) { name = now; }})));
  });
  screen.focus(screen.widget("Name:"));
  screen.type("a");
  recording = true;
  redraw();
  screen.keyDown(commandShiftR, "R");
  recording = false;
  redraw();
  screen.type("b");
  EXPECT_THAT(captured, ElementsAre(commandShiftR));
  EXPECT_EQ(name, "ab");
}

}  // namespace
}  // namespace tavelle::view::tests
