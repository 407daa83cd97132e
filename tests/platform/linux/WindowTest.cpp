#include "platform/linux/Window.h"

#include "observation/Subject.h"
#include "platform/fake/MainActor.h"
#include "platform/linux/MainActor.h"
#include "tests/platform/linux/MainLoop.h"
#include "tests/platform/linux/TemporaryFolder.h"
#include "view/wire/BatchLine.h"

#include <gmock/gmock.h>
#include <signal.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <sstream>
#include <vector>

namespace tavelle::tests {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const view::Batch shown{0, {view::Create{1, view::NodeType::text, {}}, view::Insert{0, 1, 0}}};

// Shows one text, and takes down what the person does to it.
class OneText : public view::Content {
 public:
  void attach(view::Renderer* renderer) override {
    isDrawn = renderer != nullptr;
    if (renderer) renderer->apply(shown);
  }
  void dispatch(const view::Event& event) override { events.push_back(event); }

  bool isDrawn = false;
  std::vector<view::Event> events;
};

// The window, with a script in the place of the program that draws it.
class WindowTest : public testing::Test {
 protected:
  // Hears a line, and then does what `manners` say, with the line as $line; "number" prints the one in it.
  void drawnBy(const std::string& manners) {
    write(program(), "#!/bin/sh\nexec <&3 >&3\necho $$ >> '" + file("started") +
                         "'\n"
                         "number() { echo \"$line\" | sed 's/.*\"number\":\\([0-9]*\\).*/\\1/'; }\n"
                         "while read -r line; do\n  echo \"$line\" >> '" +
                         file("heard") + "'\n" + manners + "\ndone\n");
    std::filesystem::permissions(program(), std::filesystem::perms::owner_all);
  }

  void open(std::chrono::milliseconds patience = 30s, std::chrono::milliseconds rest = 1h) {
    if (!window) make(patience, rest);
    window->makeKeyAndOrderFront();
  }

  void make(std::chrono::milliseconds patience = 30s, std::chrono::milliseconds rest = 1h) {
    makeOn(actor, LinuxWindow::Drawing{program(), patience, rest});
  }

  void makeOn(MainActor& mainActor, LinuxWindow::Drawing drawing) {
    window = std::make_unique<LinuxWindow>(
        mainActor, Rect{0, 0, 480, 500}, std::move(drawing),
        [this](std::function<void()> onPress) { return presses.subscribe(std::move(onPress)); },
        [this](const std::string& trouble, const std::string& cause) { told.push_back(trouble + " " + cause); });
    window->setTitle("Settings");
    window->setContentView(content);
  }

  std::filesystem::path program() const { return folder.path() / "renderer"; }
  std::string file(const char* name) const { return (folder.path() / name).string(); }

  std::vector<std::string> linesOf(const char* name) const {
    std::vector<std::string> lines;
    std::istringstream text{contentsOf(file(name))};
    for (std::string line; std::getline(text, line);) lines.push_back(line + '\n');
    return lines;
  }

  bool waitForHeard(std::size_t count) {
    return waitLooking([&] { return linesOf("heard").size() >= count; });
  }

  // The process that was started as number `index` has ended, and is nobody's child any more.
  bool waitForEnd(std::size_t index) {
    const auto pid = std::stoi(linesOf("started").at(index));
    return waitLooking([&] { return kill(pid, 0) != 0; });
  }

  // For what happens in another process, of which this one's main loop hears nothing.
  static bool waitLooking(const std::function<bool()>& isTrue) {
    const auto look = makeSource("another look", [] {});
    return waitUntil([&] {
      g_source_set_ready_time(look.get(), g_get_monotonic_time() + G_USEC_PER_SEC / 100);
      return isTrue();
    });
  }

  TemporaryFolder folder;
  GLibMainActor actor;
  std::shared_ptr<OneText> content = std::make_shared<OneText>();
  Subject<> presses;
  std::vector<std::string> told;
  std::unique_ptr<LinuxWindow> window;
};

constexpr const char* answers =
    "case $line in *present*) echo \"[\\\"presented\\\",{\\\"number\\\":$(number)}]\";; esac\n";
constexpr const char* closes = "case $line in *present*) echo '[\"closed\",{\"place\":{\"x\":12,\"y\":34}}]';; esac\n";

TEST_F(WindowTest, startsNobodyBeforeItIsShown) {
  drawnBy(answers);
  make();
  serveReady();
  EXPECT_FALSE(content->isDrawn);
  EXPECT_THAT(linesOf("started"), IsEmpty());
}

TEST_F(WindowTest, hasAllOfItsContentDrawnAndIsThenShown) {
  drawnBy(answers);
  open();
  ASSERT_TRUE(waitForHeard(2));
  EXPECT_THAT(linesOf("heard"),
              ElementsAre(view::encodeBatch(shown), encodeLine(Present{1, "Settings", 480, 500, std::nullopt})));
}

TEST_F(WindowTest, tellsThatItsRendererIsMissing) {
  open();
  EXPECT_THAT(told, ElementsAre(HasSubstr("The settings window could not be opened.")));
  EXPECT_THAT(told, ElementsAre(HasSubstr("No such file or directory")));
  drawnBy(answers);
  open();
  EXPECT_TRUE(waitForHeard(2)) << "it is started as soon as it is there";
}

TEST_F(WindowTest, tellsThatItsRendererHasEndedAndStartsAnotherWhenItIsNextShown) {
  drawnBy("exit 1");
  open();
  ASSERT_TRUE(waitUntil([&] { return !told.empty(); }));
  EXPECT_THAT(told, ElementsAre(HasSubstr("The settings window has ended. Open it again.")));
  EXPECT_FALSE(content->isDrawn);
  drawnBy(answers);
  const auto before = linesOf("heard").size();
  open();
  ASSERT_TRUE(waitForHeard(before + 2));
  EXPECT_EQ(linesOf("heard").at(before), view::encodeBatch(shown));
  EXPECT_TRUE(content->isDrawn);
}

TEST_F(WindowTest, endsARendererThatDoesNotAnswerAndTells) {
  drawnBy("kill -STOP $$");
  open(1ms);
  ASSERT_TRUE(waitUntil([&] { return !told.empty(); }));
  EXPECT_THAT(told, ElementsAre(HasSubstr("The settings window did not answer. Open it again.")));
  EXPECT_FALSE(content->isDrawn);
}

TEST_F(WindowTest, endsAFrozenRendererForGood) {
  drawnBy("kill -STOP $$");
  open();
  ASSERT_TRUE(waitForHeard(1));
  window.reset();
  EXPECT_TRUE(waitForEnd(0));
}

TEST_F(WindowTest, doesNotTakeAnAnswerToAnEarlierRequestForAnother) {
  drawnBy("case $line in *'\"number\":1,'*) echo '[\"presented\",{\"number\":1}]';; esac");
  open(200ms);
  open(200ms);
  ASSERT_TRUE(waitUntil([&] { return !told.empty(); }));
  EXPECT_THAT(told, ElementsAre(HasSubstr("The settings window did not answer.")));
}

TEST_F(WindowTest, endsARendererThatSaysWhatNobodyUnderstands) {
  drawnBy("echo nonsense");
  open();
  ASSERT_TRUE(waitUntil([&] { return !told.empty(); }));
  EXPECT_THAT(told, ElementsAre("The settings window has ended. Open it again. a line is not JSON"));
  EXPECT_TRUE(waitForEnd(0));
}

TEST_F(WindowTest, endsItsRendererWhenItHasBeenClosedForAWhile) {
  drawnBy(std::string{answers} + closes);
  open(30s, 1ms);
  ASSERT_TRUE(waitForHeard(2));
  ASSERT_TRUE(waitUntil([&] { return !content->isDrawn; }));
  EXPECT_TRUE(waitForEnd(0));
  EXPECT_THAT(told, IsEmpty());
}

TEST_F(WindowTest, standsWhereItStoodWhenAnotherRendererDrawsIt) {
  drawnBy(std::string{answers} + closes);
  open(30s, 1ms);
  ASSERT_TRUE(waitForHeard(2));
  ASSERT_TRUE(waitUntil([&] { return !content->isDrawn; }));
  open();
  ASSERT_TRUE(waitForHeard(4));
  EXPECT_EQ(linesOf("heard").at(2), view::encodeBatch(shown));
  EXPECT_EQ(linesOf("heard").at(3), encodeLine(Present{2, "Settings", 480, 500, WindowPlace{12, 34}}));
}

TEST_F(WindowTest, keepsItsRendererWhenItIsOpenedAgainSoon) {
  drawnBy(std::string{answers} + closes);
  open();
  ASSERT_TRUE(waitForHeard(2));
  open();
  ASSERT_TRUE(waitForHeard(3));
  EXPECT_THAT(linesOf("heard").at(2), HasSubstr("present"));
  EXPECT_EQ(linesOf("started").size(), 1);
}

TEST_F(WindowTest, staysOpenWhenItWasClosedJustBeforeItWasOpenedAgain) {
  drawnBy(
      "case $line in *present*) printf '[\"closed\",{\"place\":null}]\\n[\"presented\",{\"number\":%s}]\\n' "
      "$(number);; esac");
  open(30s, 20ms);
  bool isLater = false;
  ASSERT_TRUE(waitForHeard(2));
  actor.postAfter(100ms, [&] { isLater = true; });
  ASSERT_TRUE(waitUntil([&] { return isLater; }));
  EXPECT_TRUE(content->isDrawn);
}

// The window on a clock that stands still, open and drawn.
class OpenWindowTest : public WindowTest {
 protected:
  void openDrawnBy(const std::string& manners) {
    drawnBy(std::string{answers} + manners);
    makeStanding();
    window->makeKeyAndOrderFront();
    ASSERT_TRUE(waitUntil([&] { return !content->events.empty(); }));
  }

  void makeStanding() {
    makeOn(standing, {program(), 10s, 5min, [this] { return std::chrono::steady_clock::time_point{standing.now()}; }});
  }

  std::size_t pings() const {
    const auto heard = linesOf("heard");
    return static_cast<std::size_t>(
        std::count_if(heard.begin(), heard.end(), [](const auto& line) { return line.starts_with("[\"ping\""); }));
  }

  EventLog log;
  FakeMainActor standing{log};
};

// Said after each answer, so that a test knows of it.
constexpr const char* pressesAfterIt =
    "case $line in *present*) echo '{\"number\":1,\"target\":1,\"pressed\":true}';; esac\n";
constexpr const char* answersPings =
    "case $line in *ping*) printf '[\"pong\",{\"number\":%s}]\\n{\"number\":2,\"target\":1,\"pressed\":true}\\n' "
    "$(number);; esac\n";

TEST_F(OpenWindowTest, isGivenUpWhenItHasNotAnsweredInTimeAfterAPress) {
  openDrawnBy(pressesAfterIt);
  standing.advance(1h);
  EXPECT_THAT(told, IsEmpty()) << "nobody has asked";
  presses.send();
  ASSERT_TRUE(waitLooking([&] { return pings() == 1; }));
  standing.advance(9'999ms);
  EXPECT_THAT(told, IsEmpty());
  presses.send();  // which puts nothing off
  standing.advance(1ms);
  EXPECT_THAT(told, ElementsAre(HasSubstr("The settings window did not answer. Open it again.")));
  EXPECT_FALSE(content->isDrawn);
  EXPECT_TRUE(waitForEnd(0));
}

TEST_F(OpenWindowTest, isNotGivenUpWhenItAnswers) {
  openDrawnBy(std::string{pressesAfterIt} + answersPings);
  for (std::size_t press = 1; press <= 3; ++press) {
    presses.send();
    presses.send();
    ASSERT_TRUE(waitUntil([&] { return content->events.size() == 1 + press; }));
    EXPECT_EQ(pings(), press) << "one question at a time";
    standing.advance(10s);
  }
  EXPECT_THAT(told, IsEmpty());
  EXPECT_TRUE(content->isDrawn);
  standing.runToEnd();
  EXPECT_TRUE(standing.isIdle()) << "nothing wakes the program while nobody presses";
}

TEST_F(OpenWindowTest, isNotGivenUpWhenItAnswersTheLaterQuestionFirst) {
  drawnBy(
      "case $line in *'\"number\":2,'*) printf '[\"presented\",{\"number\":2}]\\n[\"presented\",{\"number\":1}]\\n';; "
      "esac\n" +
      std::string{pressesAfterIt});
  makeStanding();
  window->makeKeyAndOrderFront();
  window->makeKeyAndOrderFront();
  ASSERT_TRUE(waitUntil([&] { return content->events.size() == 2; }));
  standing.advance(10s);
  EXPECT_THAT(told, IsEmpty());
}

TEST_F(OpenWindowTest, isAskedNothingOnceItIsClosed) {
  openDrawnBy("case $line in *present*) echo '[\"closed\",{\"place\":null}]';; esac\n" + std::string{pressesAfterIt});
  presses.send();
  standing.advance(10s);
  EXPECT_THAT(told, IsEmpty());
  EXPECT_EQ(pings(), 0);
}

TEST_F(OpenWindowTest, isGivenUpHoweverOftenItIsOpenedAgain) {
  openDrawnBy(pressesAfterIt);
  const auto frozen = std::stoi(linesOf("started").at(0));
  kill(frozen, SIGSTOP);
  for (int i = 0; i < 5; ++i) {
    window->makeKeyAndOrderFront();
    standing.advance(1'999ms);
    EXPECT_THAT(told, IsEmpty());
  }
  standing.advance(5ms);
  EXPECT_THAT(told, ElementsAre(HasSubstr("The settings window did not answer.")));
}

TEST_F(WindowTest, stopsDrawingWhenItIsGone) {
  drawnBy(answers);
  open();
  ASSERT_TRUE(waitForHeard(2));
  window.reset();
  EXPECT_FALSE(content->isDrawn);
  EXPECT_TRUE(waitForEnd(0));
}

}  // namespace
}  // namespace tavelle::tests
