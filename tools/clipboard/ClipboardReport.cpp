#include "tools/clipboard/ClipboardReport.h"

#include "platform/linux/x11/Targets.h"

#include <chrono>
#include <cstring>
#include <iomanip>
#include <sstream>
#include <string>
#include <vector>

namespace tavelle::x11 {

ClipboardReport::ClipboardReport(Connection& connection, MainActor& actor, std::ostream& out)
    : connection_(connection), reader_(connection, actor, connection.atom("CLIPBOARD")), out_(out) {}

Task<int> ClipboardReport::write() {
  writeOwner();
  auto reading = reader_.read(connection_.atom("TARGETS"));
  const auto answer = co_await reading;
  if (!answer || answer->format != 32) {
    out_ << "no list of targets: no owner, or one that refuses or does not answer\n";
    co_return 1;
  }
  std::vector<xcb_atom_t> targets(answer->data.size() / sizeof(xcb_atom_t));
  std::memcpy(targets.data(), answer->data.data(), targets.size() * sizeof(xcb_atom_t));
  writeRow("target", "type", "format", "bytes", "time");
  for (const auto target : targets) {
    reader_.startSeries();  // a target without an answer says nothing about the next
    auto writing = writeTarget(target);
    co_await writing;
  }
  co_return 0;
}

Task<void> ClipboardReport::writeTarget(xcb_atom_t target) {
  const auto name = connection_.atomName(target);
  if (isProtocolTarget(name)) {
    writeRow(name, "-", "-", "-", "not asked: of the protocol");
    co_return;
  }
  if (isBoundToItsOwner(name)) {
    writeRow(name, "-", "-", "-", "not asked: of use to its owner only");
    co_return;
  }
  const auto begin = std::chrono::steady_clock::now();
  auto reading = reader_.read(target);
  const auto answer = co_await reading;
  const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - begin;
  std::ostringstream time;
  time << std::fixed << std::setprecision(1) << taken.count() << " ms";
  auto how = time.str();
  if (!answer) {
    writeRow(name, "-", "-", "-", how + ", no answer");
    co_return;
  }
  if (answer->isIncremental) how += ", in pieces (INCR)";
  writeRow(name, connection_.atomName(answer->type), std::to_string(answer->format),
           std::to_string(answer->data.size()), how);
}

void ClipboardReport::writeOwner() {
  const auto cookie = xcb_get_selection_owner(connection_, connection_.atom("CLIPBOARD"));
  const XcbReply<xcb_get_selection_owner_reply_t> owner{xcb_get_selection_owner_reply(connection_, cookie, nullptr)};
  out_ << "owner: ";
  if (owner && owner->owner != XCB_WINDOW_NONE) {
    out_ << "window 0x" << std::hex << owner->owner << std::dec << '\n';
  } else {
    out_ << "none\n";
  }
}

void ClipboardReport::writeRow(const std::string& target, const std::string& type, const std::string& format,
                               const std::string& size, const std::string& how) {
  out_ << std::left << std::setw(40) << target << ' ' << std::setw(24) << type << std::right << std::setw(7) << format
       << std::setw(12) << size << "  " << how << '\n';
}

}  // namespace tavelle::x11
