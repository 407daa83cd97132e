#include "platform/linux/MainActor.h"
#include "platform/linux/x11/Connection.h"
#include "tools/clipboard/ClipboardReport.h"

#include <glib.h>

#include <iostream>
#include <optional>

namespace {

tavelle::Task<void> run(tavelle::x11::ClipboardReport& report, std::optional<int>& status) {
  auto writing = report.write();
  const int result = co_await writing;
  status = result;
}

}  // namespace

int main(int argc, char**) {
  if (argc > 1) {
    std::cerr << "usage: tavelle-clipboard\nTells what the clipboard offers, and never what it holds.\n";
    return 2;
  }
  const auto connection = tavelle::x11::Connection::open();
  if (!connection) {
    std::cerr << "tavelle-clipboard: no X server answers on $DISPLAY\n";
    return 1;
  }
  tavelle::GLibMainActor actor;
  tavelle::x11::ClipboardReport report{*connection, actor, std::cout};
  std::optional<int> status;
  actor.start(run(report, status));
  while (!status) g_main_context_iteration(nullptr, true);
  return *status;
}
