// The person and the onlooker of the bench, one X client: presses the hotkeys on the physical keyboard, owns the
// clipboard before each run, and writes down when the clipboard's owner changes and when keys reach the X server.
//
// Commands on standard input:
//   press KEYCODE HOLD LAG    Control+Alt and the key; it is held so many microseconds, the modifiers that much longer
//   own FILE                  takes the clipboard; a line of the file is TYPE, a tab and the file of its bytes
//   compare                   reads the clipboard back and compares it with what was owned last
//   live KEYCODE MILLISECONDS tells when another client has taken Control+Alt and the key, or that none has so long
//   keys                      counts the keys that are down, and lets go of them
// Lines on standard output: one JSON object each; times are nanoseconds of CLOCK_MONOTONIC.
#include "Clipboard.h"
#include "Keyboard.h"
#include "benchmarks/programs/shared/Clock.h"
#include "benchmarks/programs/shared/CommandLines.h"
#include "benchmarks/programs/shared/Display.h"

#include <poll.h>
#include <unistd.h>
#include <xcb/xfixes.h>
#include <xcb/xinput.h>

#include <array>
#include <cinttypes>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

namespace tavelle::bench {
namespace {

constexpr std::uint16_t controlAlt = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1;

std::string contentsOf(const std::string& file) {
  std::ifstream stream{file, std::ios::binary};
  return {std::istreambuf_iterator<char>{stream}, {}};
}

class Observer {
 public:
  Observer() : keyboard_(display_), clipboard_(display_) {
    watchOwner();
    watchKeys();
    display_.sync();
    std::puts("{\"event\":\"ready\"}");
  }

  void run() {
    while (!isOver_ && !xcb_connection_has_error(display_)) {
      if (keyboard_.releaseDue()) tell("released");
      handleEvents();
      std::array<pollfd, 2> inputs{{{xcb_get_file_descriptor(display_), POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}}};
      poll(inputs.data(), inputs.size(), keyboard_.untilNextRelease().value_or(-1));
      if (inputs[1].revents == 0) continue;
      isOver_ = !commands_.read([this](std::istringstream& line) { obey(line); });
    }
  }

 private:
  static void tell(const char* event, std::int64_t at = now()) {
    std::printf("{\"event\":\"%s\",\"t\":%" PRId64 "}\n", event, at);
  }

  void watchOwner() {
    const XcbReply<xcb_xfixes_query_version_reply_t> version{
        xcb_xfixes_query_version_reply(display_, xcb_xfixes_query_version(display_, 5, 0), nullptr)};
    ownerEvent_ = xcb_get_extension_data(display_, &xcb_xfixes_id)->first_event;
    xcb_xfixes_select_selection_input(display_, display_.window(), display_.atom("CLIPBOARD"),
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER);
  }

  void watchKeys() {
    inputOpcode_ = xcb_get_extension_data(display_, &xcb_input_id)->major_opcode;
    struct {
      xcb_input_event_mask_t head{XCB_INPUT_DEVICE_ALL_MASTER, 1};
      std::uint32_t mask = XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE;
    } wanted;
    xcb_input_xi_select_events(display_, display_.root(), 1, &wanted.head);
  }

  void handleEvents() {
    while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(display_)}) handle(*event);
  }

  void handle(const xcb_generic_event_t& event) {
    const int type = event.response_type & 0x7f;
    if (type == ownerEvent_) {
      const auto& change = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event);
      std::printf("{\"event\":\"owner\",\"t\":%" PRId64 ",\"own\":%s}\n", now(),
                  change.owner == display_.window() ? "true" : "false");
    } else if (type == XCB_GE_GENERIC) {
      tellKey(reinterpret_cast<const xcb_input_raw_key_press_event_t&>(event));
    } else {
      clipboard_.handle(event);
    }
  }

  void tellKey(const xcb_input_raw_key_press_event_t& key) const {
    if (key.extension != inputOpcode_) return;
    std::printf("{\"event\":\"raw\",\"t\":%" PRId64 ",\"down\":%s,\"keycode\":%" PRIu32 ",\"physical\":%s}\n", now(),
                key.event_type == XCB_INPUT_RAW_KEY_PRESS ? "true" : "false", key.detail,
                key.sourceid == keyboard_.device() ? "true" : "false");
  }

  void obey(std::istringstream& line) {
    std::string command;
    line >> command;
    if (command == "press") press(line);
    if (command == "own") own(line);
    if (command == "compare") compare();
    if (command == "live") waitUntilLive(line);
    if (command == "keys") countKeys();
  }

  void press(std::istringstream& line) {
    int key = 0;
    std::int64_t hold = 0;
    std::int64_t lag = 0;
    line >> key >> hold >> lag;
    tell("pressed", keyboard_.press(static_cast<std::uint8_t>(key), hold, lag));
  }

  void own(std::istringstream& line) {
    std::string list;
    line >> list;
    std::istringstream entries{contentsOf(list)};
    Clipboard::Contents contents;
    std::string type;
    std::string file;
    while (std::getline(entries, type, '\t') && std::getline(entries, file))
      contents.emplace_back(type, contentsOf(file));
    clipboard_.own(std::move(contents));
    tell("owned");
  }

  void compare() {
    const auto start = now();
    const auto loss = clipboard_.compare([this](const xcb_generic_event_t& event) { handle(event); });
    std::printf("{\"event\":\"compared\",\"t\":%" PRId64 ",\"took\":%" PRId64
                ",\"size\":%zu,\"lostTypes\":%d,\"lostBytes\":%zu}\n",
                now(), now() - start, clipboard_.size(), loss.types, loss.bytes);
  }

  void waitUntilLive(std::istringstream& line) {
    int key = 0;
    std::int64_t patience = 0;
    line >> key >> patience;
    const auto end = now() + patience * 1'000'000;
    bool isLive = false;
    while (!isLive && now() < end) {
      isLive = isTaken(static_cast<std::uint8_t>(key));
      if (!isLive) poll(nullptr, 0, 1);
    }
    std::printf("{\"event\":\"live\",\"t\":%" PRId64 ",\"live\":%s}\n", now(), isLive ? "true" : "false");
  }

  // The server serves nobody else meanwhile, so that this attempt can never be what refuses another's.
  bool isTaken(std::uint8_t key) const {
    xcb_grab_server(display_);
    const auto attempt =
        xcb_grab_key_checked(display_, 0, display_.root(), controlAlt, key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    xcb_ungrab_key(display_, key, display_.root(), controlAlt);
    xcb_ungrab_server(display_);
    const XcbReply<xcb_generic_error_t> refusal{xcb_request_check(display_, attempt)};
    return refusal != nullptr;
  }

  void countKeys() {
    std::printf("{\"event\":\"keys\",\"down\":%d}\n", keyboard_.keysDown());
    keyboard_.releaseEverything();
  }

  Display display_;
  Keyboard keyboard_;
  Clipboard clipboard_;
  int ownerEvent_ = 0;
  int inputOpcode_ = 0;
  CommandLines commands_;
  bool isOver_ = false;
};

}  // namespace
}  // namespace tavelle::bench

int main() {
  std::setvbuf(stdout, nullptr, _IOLBF, 0);
  tavelle::bench::Observer{}.run();
}
