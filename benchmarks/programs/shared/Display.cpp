#include "Display.h"

#include <cstdio>
#include <cstdlib>

namespace tavelle::bench {

Display::Display() : xcb_(xcb_connect(nullptr, nullptr)) {
  if (xcb_connection_has_error(xcb_)) {
    std::fputs("bench: no display\n", stderr);
    std::exit(EXIT_FAILURE);
  }
  root_ = xcb_setup_roots_iterator(xcb_get_setup(xcb_)).data->root;
  window_ = xcb_generate_id(xcb_);
  const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
  xcb_create_window(xcb_, 0, window_, root_, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT,
                    XCB_CW_EVENT_MASK, &events);
}

xcb_atom_t Display::atom(const std::string& name) const {
  const auto cookie = xcb_intern_atom(xcb_, 0, static_cast<std::uint16_t>(name.size()), name.data());
  const XcbReply<xcb_intern_atom_reply_t> reply{xcb_intern_atom_reply(xcb_, cookie, nullptr)};
  return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

std::string Display::nameOf(xcb_atom_t atom) const {
  const XcbReply<xcb_get_atom_name_reply_t> reply{
      xcb_get_atom_name_reply(xcb_, xcb_get_atom_name(xcb_, atom), nullptr)};
  if (!reply) return {};
  return {xcb_get_atom_name_name(reply.get()), static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get()))};
}

void Display::sync() const {
  const XcbReply<xcb_get_input_focus_reply_t> done{xcb_get_input_focus_reply(xcb_, xcb_get_input_focus(xcb_), nullptr)};
}

}  // namespace tavelle::bench
