#pragma once

#include "platform/linux/x11/XcbReply.h"

#include <xcb/xcb.h>

#include <string>

namespace tavelle::bench {

using x11::XcbReply;

// The connection to the X server and the one window of its own. Ends the process where there is no display.
class Display {
 public:
  Display();
  ~Display() { xcb_disconnect(xcb_); }
  Display(const Display&) = delete;
  Display& operator=(const Display&) = delete;

  operator xcb_connection_t*() const { return xcb_; }
  xcb_window_t root() const { return root_; }
  xcb_window_t window() const { return window_; }

  xcb_atom_t atom(const std::string& name) const;
  std::string nameOf(xcb_atom_t atom) const;
  void flush() const { xcb_flush(xcb_); }
  // Returns once the server has done all that was asked of it.
  void sync() const;

 private:
  xcb_connection_t* xcb_;
  xcb_window_t root_;
  xcb_window_t window_;
};

}  // namespace tavelle::bench
