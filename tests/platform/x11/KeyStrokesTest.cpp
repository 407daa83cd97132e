#include "platform/linux/x11/FocusWindow.h"
#include "tests/platform/x11/EventLoop.h"
#include "tests/platform/x11/KeyBackend.h"
#include "tests/platform/x11/KeyWindow.h"
#include "tests/platform/x11/Person.h"
#include "tests/platform/x11/Program.h"
#include "tests/platform/x11/XServer.h"

#include <gtest/gtest.h>
// xkb.h names a field `explicit`.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>

namespace tavelle::x11::tests {
namespace {

using Strokes = std::vector<std::string>;

constexpr xcb_keycode_t keyReturn = 36;

class KeyStrokes : public testing::Test {
 protected:
  static void SetUpTestSuite() { server.emplace(); }
  static void TearDownTestSuite() { server.reset(); }

  KeyStrokes() : backend(std::make_unique<KeyBackend>()), person(server->display()) {}
  ~KeyStrokes() override {
    lockGroup(0);
    backend.reset();
    Program::outputOf({"setxkbmap", "us", "-variant", "", "-option", ""});
  }

  void useLayout(const std::vector<std::string>& arguments) {
    std::vector<std::string> command = {"setxkbmap"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    Program::outputOf(command);
    settle(*backend->connection);
  }

  void lockGroup(std::uint8_t group) {
    xcb_xkb_latch_lock_state(*backend->connection, XCB_XKB_ID_USE_CORE_KBD, 0, 0, 1, group, 0, 0, 0);
    settle(*backend->connection);
  }

  // What the window gets of a copy and a paste.
  Strokes strokesIn(KeyWindow& window) {
    window.forget();
    backend->post(EditingKey::copy);
    backend->post(EditingKey::paste);
    waitUntil([&] { return window.strokes().size() >= 2; });
    EXPECT_TRUE(waitUntil([&] { return window.keysDown().none(); }));
    return window.strokes();
  }

  static std::optional<XServer> server;

  std::unique_ptr<KeyBackend> backend;
  Person person;
};

std::optional<XServer> KeyStrokes::server;

const Strokes controlCAndV = {"Control+c", "Control+v"};

TEST_F(KeyStrokes, areTheKeysThatGiveTheLettersInEachLayout) {
  KeyWindow window;
  for (const std::vector<std::string>& layout : std::vector<std::vector<std::string>>{{"us"},
                                                                                      {"de"},
                                                                                      {"fr"},
                                                                                      {"us", "-variant", "dvorak"},
                                                                                      {"fr", "-variant", "bepo"},
                                                                                      {"de", "-variant", "neo"}}) {
    useLayout(layout);
    EXPECT_EQ(strokesIn(window), controlCAndV) << layout.back();
  }
}

TEST_F(KeyStrokes, areOtherKeysInAnotherLayout) {
  KeyWindow window;
  useLayout({"us", "-variant", "dvorak"});
  strokesIn(window);
  const auto keys = window.keys();
  // On that board C is where others have I, and V where others have the full stop.
  EXPECT_EQ(keys, (Strokes{"+37", "+31", "-31", "-37", "+37", "+60", "-60", "-37"}));
}

TEST_F(KeyStrokes, areThoseOfThePersonsOtherLayoutWhereTheActiveOneHasNoLatinLetters) {
  KeyWindow window;
  useLayout({"us,ru", "-variant", ","});
  EXPECT_EQ(strokesIn(window), controlCAndV);
  lockGroup(1);
  EXPECT_EQ(strokesIn(window), controlCAndV);
  EXPECT_EQ(window.keys(), (Strokes{"+37", "+54", "-54", "-37", "+37", "+55", "-55", "-37"}));
  useLayout({"ru,us", "-variant", ",dvorak"});
  lockGroup(0);
  EXPECT_EQ(strokesIn(window), controlCAndV);
  EXPECT_EQ(window.keys().at(1), "+31");
}

TEST_F(KeyStrokes, comeFromALentKeyWhereNoLayoutHasTheLetters) {
  KeyWindow window;
  for (const char* const layout : {"ru", "gr", "il"}) {
    useLayout({layout});
    EXPECT_EQ(strokesIn(window), controlCAndV) << layout;
  }
}

TEST_F(KeyStrokes, giveALentKeyBackAtTheLatestWithTheProgram) {
  KeyWindow window;
  useLayout({"ru"});
  const auto before = Program::outputOf({"xmodmap", "-pke"});
  EXPECT_EQ(strokesIn(window), controlCAndV);
  EXPECT_NE(Program::outputOf({"xmodmap", "-pke"}), before);
  backend.reset();
  backend = std::make_unique<KeyBackend>();
  EXPECT_EQ(Program::outputOf({"xmodmap", "-pke"}), before);
  EXPECT_EQ(strokesIn(window), controlCAndV);
}

TEST_F(KeyStrokes, leaveAKeyThatAnotherKeymapNeedsSince) {
  KeyWindow window;
  useLayout({"ru"});
  EXPECT_EQ(strokesIn(window), controlCAndV);
  useLayout({"us"});
  const auto before = Program::outputOf({"xmodmap", "-pke"});
  EXPECT_EQ(strokesIn(window), controlCAndV);
  backend.reset();
  backend = std::make_unique<KeyBackend>();
  EXPECT_EQ(Program::outputOf({"xmodmap", "-pke"}), before);
}

TEST_F(KeyStrokes, workWithCapsLockOn) {
  KeyWindow window;
  person.tap(keyCapsLock);
  EXPECT_EQ(strokesIn(window), controlCAndV);
  EXPECT_EQ(window.modifiers(), XCB_MOD_MASK_LOCK);
  useLayout({"ru"});
  EXPECT_EQ(strokesIn(window), controlCAndV);
  person.tap(keyCapsLock);
  EXPECT_EQ(window.modifiers(), 0);
}

TEST_F(KeyStrokes, tellWhichWindowGotThem) {
  KeyWindow window;
  strokesIn(window);
  ASSERT_EQ(backend->notices.size(), 2u);
  EXPECT_EQ(backend->notices[0].key, EditingKey::copy);
  EXPECT_EQ(backend->notices[0].focus, window.window());
  EXPECT_EQ(backend->notices[1].key, EditingKey::paste);
  EXPECT_EQ(backend->notices[1].focus, window.window());
}

TEST_F(KeyStrokes, areRepeatedForTheWindowThatGotThem) {
  KeyWindow window;
  backend->post(EditingKey::copy);
  const auto posted = backend->notices.at(0);
  backend->quartzEvents.repeat(posted);
  EXPECT_TRUE(waitUntil([&] { return window.strokes() == Strokes(2, "Control+c"); }));
  EXPECT_EQ(backend->notices.size(), 2u);
  KeyWindow other;
  backend->quartzEvents.repeat(posted);
  backend->post(EditingKey::paste);
  EXPECT_TRUE(waitUntil([&] { return !other.strokes().empty(); }));
  EXPECT_EQ(other.strokes(), Strokes{"Control+v"});
  EXPECT_EQ(window.strokes().size(), 2u);
}

TEST_F(KeyStrokes, areNotRepeatedWhereThePointerSaysWhoGetsThem) {
  const auto root = backend->connection->root();
  for (const xcb_window_t focus :
       {xcb_window_t{XCB_INPUT_FOCUS_POINTER_ROOT}, xcb_window_t{XCB_INPUT_FOCUS_NONE}, root}) {
    xcb_set_input_focus(*backend->connection, XCB_INPUT_FOCUS_NONE, focus, XCB_CURRENT_TIME);
    backend->notices.clear();
    backend->post(EditingKey::copy);
    ASSERT_EQ(backend->notices.size(), 1u);
    backend->quartzEvents.repeat(backend->notices[0]);
    EXPECT_EQ(backend->notices.size(), 1u);
  }
}

TEST_F(KeyStrokes, tellNoWindowWhereTheServerNamesNone) {
  const auto root = backend->connection->root();
  for (const xcb_window_t focus :
       {xcb_window_t{XCB_INPUT_FOCUS_POINTER_ROOT}, xcb_window_t{XCB_INPUT_FOCUS_NONE}, root}) {
    xcb_set_input_focus(*backend->connection, XCB_INPUT_FOCUS_NONE, focus, XCB_CURRENT_TIME);
    backend->notices.clear();
    backend->post(EditingKey::copy);
    ASSERT_EQ(backend->notices.size(), 1u);
    EXPECT_EQ(backend->notices[0].focus, xcb_window_t{XCB_WINDOW_NONE});
  }
}

TEST_F(KeyStrokes, haveShiftInATerminal) {
  KeyWindow window{"Gnome-terminal"};
  EXPECT_EQ(strokesIn(window), (Strokes{"Shift+Control+c", "Shift+Control+v"}));
  EXPECT_EQ(window.keys(),
            (Strokes{"+37", "+50", "+54", "-54", "-50", "-37", "+37", "+50", "+55", "-55", "-50", "-37"}));
  EXPECT_EQ(backend->notices.size(), 2u);
}

TEST_F(KeyStrokes, areNotSentWhereTheyWouldInterruptAProgram) {
  KeyWindow window{"XTerm"};
  backend->post(EditingKey::copy);
  backend->post(EditingKey::paste);
  person.tap(keyQ);
  ASSERT_TRUE(waitUntil([&] { return !window.strokes().empty(); }));
  EXPECT_EQ(window.keys(), (Strokes{"+24", "-24"}));
  EXPECT_TRUE(backend->notices.empty());
}

TEST_F(KeyStrokes, goByTheApplicationAroundTheWindowWithTheFocus) {
  KeyWindow window{"XTerm"};
  auto& connection = *backend->connection;
  const auto child = xcb_generate_id(connection);
  xcb_create_window(connection, XCB_COPY_FROM_PARENT, child, window.window(), 0, 0, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
  EXPECT_EQ(editingKeysOf(connection, child), EditingKeys::none);
  EXPECT_EQ(editingKeysOf(connection, connection.window()), EditingKeys::control);
  EXPECT_EQ(editingKeysOf(connection, XCB_WINDOW_NONE), EditingKeys::control);
  EXPECT_EQ(editingKeysOf(connection, 0x1FFFFFF), EditingKeys::control) << "a window that is gone";
}

TEST_F(KeyStrokes, goByTheWindowUnderThePointerWhereTheKeysFollowIt) {
  KeyWindow window{"XTerm"};
  auto& connection = *backend->connection;
  xcb_set_input_focus(connection, XCB_INPUT_FOCUS_NONE, XCB_INPUT_FOCUS_POINTER_ROOT, XCB_CURRENT_TIME);
  xcb_warp_pointer(connection, XCB_WINDOW_NONE, window.window(), 0, 0, 0, 0, 10, 10);
  EXPECT_EQ(windowOfKeys(connection, XCB_INPUT_FOCUS_POINTER_ROOT), window.window());
  backend->post(EditingKey::copy);
  EXPECT_TRUE(backend->notices.empty());
}

TEST_F(KeyStrokes, areNotSentWhereNoKeyIsControl) {
  KeyWindow window;
  Program::outputOf({"xmodmap", "-e", "clear control"});
  settle(*backend->connection);
  backend->post(EditingKey::copy);
  person.tap(keyQ);
  EXPECT_TRUE(waitUntil([&] { return !window.strokes().empty(); }));
  EXPECT_EQ(window.strokes(), Strokes{"q"});
  EXPECT_TRUE(backend->notices.empty());
}

TEST_F(KeyStrokes, ofOtherKindsAreThePhysicalKeysWithTheirModifiers) {
  KeyWindow window;
  auto& events = backend->quartzEvents;
  const auto source = events.createEventSource(EventSourceStateID::hidSystemState);
  const auto down = events.createKeyboardEvent(source.get(), 12, true);
  const auto up = events.createKeyboardEvent(source.get(), 12, false);
  events.post(EventTapLocation::hidEventTap, *down);
  events.post(EventTapLocation::hidEventTap, *up);
  constexpr std::uint64_t shiftAndCommand = 0x20000 | eventFlagMaskCommand;
  events.setFlags(*down, shiftAndCommand);
  events.setFlags(*up, shiftAndCommand);
  events.post(EventTapLocation::hidEventTap, *down);
  events.post(EventTapLocation::hidEventTap, *up);
  ASSERT_TRUE(waitUntil([&] { return window.keys().size() == 8; }));
  EXPECT_EQ(window.strokes(), (Strokes{"q", "Shift+Control+q"}));
  EXPECT_TRUE(window.keysDown().none());
  EXPECT_TRUE(backend->notices.empty());
}

TEST_F(KeyStrokes, areMadeOnlyOfKeysThatExist) {
  auto& events = backend->quartzEvents;
  const auto source = events.createEventSource(EventSourceStateID::hidSystemState);
  ASSERT_TRUE(source);
  EXPECT_TRUE(events.createKeyboardEvent(source.get(), kVK_ANSI_C, true));
  EXPECT_FALSE(events.createKeyboardEvent(source.get(), 0x34, true));
}

TEST_F(KeyStrokes, areSentOnceTheirKeyIsLetGo) {
  KeyWindow window;
  auto& events = backend->quartzEvents;
  const auto source = events.createEventSource(EventSourceStateID::hidSystemState);
  const auto down = events.createKeyboardEvent(source.get(), kVK_ANSI_C, true);
  const auto up = events.createKeyboardEvent(source.get(), kVK_ANSI_C, false);
  events.setFlags(*down, eventFlagMaskCommand);
  events.setFlags(*up, eventFlagMaskCommand);
  events.post(EventTapLocation::hidEventTap, *up);
  EXPECT_TRUE(backend->notices.empty());
  events.post(EventTapLocation::hidEventTap, *down);
  EXPECT_TRUE(backend->notices.empty());
  events.post(EventTapLocation::hidEventTap, *up);
  EXPECT_EQ(backend->notices.size(), 1u);
  ASSERT_TRUE(waitUntil([&] { return window.strokes() == Strokes{"Control+c"}; }));
}

// A real terminal with a program in it that writes down each interrupt and each line that it reads.
class KeyStrokesInXterm : public KeyStrokes {
 protected:
  KeyStrokesInXterm() {
    std::string name = testing::TempDir() + "xterm-XXXXXX";
    if (!mkdtemp(name.data())) ADD_FAILURE() << "no folder for the test";
    folder_ = name;
    log_ = folder_ / "log";
    const std::string script = "trap 'echo interrupted >> " + log_.string() + "' INT; echo ready >> " + log_.string() +
                               "; while :; do read line && echo \"read $line\" >> " + log_.string() + "; done";
    xterm_.emplace(std::vector<std::string>{"xterm", "-e", "sh", "-c", script});
    EXPECT_TRUE(waitUntil([this] { return lines() == "ready\n"; }));
    EXPECT_TRUE(waitUntil([this] { return focusXterm(); }));
  }
  ~KeyStrokesInXterm() override {
    xterm_.reset();
    std::filesystem::remove_all(folder_);
  }

  std::string lines() const {
    std::ifstream log{log_};
    return {std::istreambuf_iterator<char>{log}, {}};
  }

 private:
  bool focusXterm() {
    auto& connection = *backend->connection;
    const XcbReply<xcb_query_tree_reply_t> tree{
        xcb_query_tree_reply(connection, xcb_query_tree(connection, connection.root()), nullptr)};
    for (int i = 0; tree && i < tree->children_len; ++i) {
      const auto window = xcb_query_tree_children(tree.get())[i];
      if (editingKeysOf(connection, window) != EditingKeys::none) continue;
      const auto cookie = xcb_set_input_focus_checked(connection, XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
      const XcbReply<xcb_generic_error_t> error{xcb_request_check(connection, cookie)};
      return !error;  // a window that is not mapped yet cannot have it
    }
    return false;
  }

  std::filesystem::path folder_;
  std::filesystem::path log_;
  std::optional<Program> xterm_;
};

TEST_F(KeyStrokesInXterm, interruptNothing) {
  backend->post(EditingKey::copy);
  backend->post(EditingKey::paste);
  person.tap(keyQ);
  person.tap(keyReturn);
  ASSERT_TRUE(waitUntil([this] { return lines().ends_with("read q\n"); })) << lines();
  EXPECT_EQ(lines(), "ready\nread q\n");
  EXPECT_TRUE(backend->notices.empty());
}

TEST_F(KeyStrokesInXterm, wouldInterruptTheProgramIfTheyWereSent) {
  person.press(keyControl);
  person.tap(keyC);
  ASSERT_TRUE(waitUntil([this] { return lines() == "ready\ninterrupted\n"; })) << lines();
  person.press(keyShift);
  person.tap(keyC);
  person.release(keyShift);
  person.release(keyControl);
  ASSERT_TRUE(waitUntil([this] { return lines() == "ready\ninterrupted\ninterrupted\n"; })) << lines();
  person.tap(keyQ);
  person.tap(keyReturn);
  ASSERT_TRUE(waitUntil([this] { return lines().ends_with("read q\n"); })) << lines();
  EXPECT_EQ(lines(), "ready\ninterrupted\ninterrupted\nread q\n");
}

}  // namespace
}  // namespace tavelle::x11::tests
