// The person at the settings window, and the onlooker: clicks and types, and writes down when the screen showed what
// came of it and when the settings were stored. Its argument is the folder of the settings.
//
// Commands on standard input:
//   look                 takes a picture now, and one each time that something was drawn
//   click X Y            presses and lets go of the pointer's first button there
//   key KEYCODE          presses and lets go of a key
//   seen X Y WIDTH HEIGHT   ends the looking: the pictures of that area, compared with the first and with the last
// Lines on standard output: one JSON object each; times are nanoseconds of CLOCK_MONOTONIC.
#include "Folder.h"
#include "Pictures.h"
#include "benchmarks/programs/shared/Clock.h"
#include "benchmarks/programs/shared/CommandLines.h"
#include "benchmarks/programs/shared/Display.h"

#include <poll.h>
#include <unistd.h>
#include <xcb/xtest.h>

#include <array>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace tavelle::bench {
namespace {

class Viewer {
 public:
  explicit Viewer(const std::string& settings) : pictures_(display_), settings_(settings) {
    display_.sync();
    tell("ready");
  }

  void run() {
    bool isOver = false;
    while (!isOver && !xcb_connection_has_error(display_)) {
      while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(display_)}) pictures_.handle(*event);
      if (pictures_.takeIfDrawn()) {
        tell("drawn");
        continue;
      }
      std::array<pollfd, 3> inputs{{{xcb_get_file_descriptor(display_), POLLIN, 0},
                                    {settings_.descriptor(), POLLIN, 0},
                                    {STDIN_FILENO, POLLIN, 0}}};
      poll(inputs.data(), inputs.size(), -1);
      if (inputs[1].revents != 0) settings_.read([] { tell("stored"); });
      if (inputs[2].revents != 0) isOver = !commands_.read([this](std::istringstream& line) { obey(line); });
    }
  }

 private:
  static void tell(const char* event) { std::printf("{\"event\":\"%s\",\"t\":%" PRId64 "}\n", event, now()); }

  void obey(std::istringstream& line) {
    std::string command;
    line >> command;
    if (command == "look") look();
    if (command == "click") click(line);
    if (command == "key") key(line);
    if (command == "seen") seen(line);
  }

  void look() {
    pictures_.begin();
    tell("looking");
  }

  void click(std::istringstream& line) {
    int x = 0;
    int y = 0;
    line >> x >> y;
    xcb_test_fake_input(display_, XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, display_.root(), static_cast<std::int16_t>(x),
                        static_cast<std::int16_t>(y), 0);
    display_.sync();
    stroke(XCB_BUTTON_PRESS, 1);
  }

  void key(std::istringstream& line) {
    int code = 0;
    line >> code;
    stroke(XCB_KEY_PRESS, code);
  }

  // Releases have the code that follows that of presses.
  void stroke(std::uint8_t press, int detail) {
    tell("did");
    for (const auto type : {press, static_cast<std::uint8_t>(press + 1)}) {
      xcb_test_fake_input(display_, type, static_cast<std::uint8_t>(detail), XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0,
                          0);
    }
    display_.flush();
  }

  void seen(std::istringstream& line) {
    Pictures::Area area{};
    line >> area.x >> area.y >> area.width >> area.height;
    std::string list;
    for (const auto& [at, changed, left] : pictures_.end(area)) {
      list += (list.empty() ? "" : ",") + ("{\"t\":" + std::to_string(at)) + ",\"changed\":" + std::to_string(changed) +
              ",\"left\":" + std::to_string(left) + "}";
    }
    std::printf("{\"event\":\"seen\",\"pictures\":[%s]}\n", list.c_str());
  }

  Display display_;
  Pictures pictures_;
  Folder settings_;
  CommandLines commands_;
};

}  // namespace
}  // namespace tavelle::bench

int main(int count, char** arguments) {
  if (count != 2) return EXIT_FAILURE;
  std::setvbuf(stdout, nullptr, _IOLBF, 0);
  tavelle::bench::Viewer{arguments[1]}.run();
}
