#pragma once

#include "concurrency/MainActor.h"
#include "concurrency/Task.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/SelectionReader.h"

#include <ostream>

namespace tavelle::x11 {

// Writes what the CLIPBOARD selection offers, in the owner's order: target, the property type and format it came with,
// its size, whether in pieces, and how long it took. Never the contents, so that the report can go into a bug report as
// it is.
class ClipboardReport {
 public:
  ClipboardReport(Connection& connection, MainActor& actor, std::ostream& out);

  // Gives the exit status: 0 where the owner told its targets.
  Task<int> write();

 private:
  Task<void> writeTarget(xcb_atom_t target);
  void writeOwner();
  void writeRow(const std::string& target, const std::string& type, const std::string& format, const std::string& size,
                const std::string& how);

  Connection& connection_;
  SelectionReader reader_;
  std::ostream& out_;
};

}  // namespace tavelle::x11
