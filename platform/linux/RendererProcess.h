#pragma once

#include "platform/linux/GObjectPtr.h"
#include "platform/linux/LineSocket.h"

#include <gio/gio.h>

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

namespace tavelle {

// The program that draws a window, and the socket that joins it to this process, which it inherits as descriptor 3. It
// keeps nothing that is not kept here as well, and is ended with this object, whatever it is doing.
class RendererProcess {
 public:
  class CannotStart : public std::runtime_error {
   public:
    using std::runtime_error::runtime_error;
  };

  // Throws CannotStart.
  RendererProcess(const std::filesystem::path& program, LineSocket::Handlers handlers);
  ~RendererProcess();
  RendererProcess(const RendererProcess&) = delete;
  RendererProcess& operator=(const RendererProcess&) = delete;

  void send(const std::string& line) { socket_->send(line); }

 private:
  GObjectPtr<GSubprocess> process_;
  std::unique_ptr<LineSocket> socket_;
};

}  // namespace tavelle
