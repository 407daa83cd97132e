#pragma once

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/GSourcePtr.h"
#include "view/wire/LineBuffer.h"

#include <cstddef>
#include <functional>
#include <string>

namespace tavelle {

// One end of a stream socket that carries lines both ways, on the main loop. It never waits: what the other side does
// not take yet is kept, up to a limit.
class LineSocket {
 public:
  struct Handlers {
    // Each line without its newline. May throw view::WireError: then the other side is lost.
    std::function<void(const std::string& line)> onLine;
    // Once, when the other side has closed, sends what it should not, or takes nothing any more. May drop the socket.
    std::function<void(const std::string& why)> onLost;
  };

  LineSocket(FileDescriptor socket, Handlers handlers);

  // `line` ends with a newline. Nobody hears it once the other side is lost.
  void send(const std::string& line);

 private:
  void read();
  void write();
  void lose(const std::string& why);

  FileDescriptor socket_;
  Handlers handlers_;
  view::LineBuffer incoming_;
  std::string outgoing_;
  std::size_t sent_ = 0;  // of outgoing_
  GSourcePtr readable_;
  GSourcePtr writable_;  // only while something is kept
  GSourcePtr overflow_;
};

}  // namespace tavelle
