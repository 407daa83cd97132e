#include "platform/linux/x11/FocusWindow.h"

#include "platform/linux/x11/PropertyValues.h"

#include <string_view>

namespace tavelle::x11 {
namespace {

constexpr int depthLimit = 64;             // windows nest this deep in no application
constexpr std::uint32_t classLimit = 256;  // in units of four bytes

}  // namespace

xcb_window_t windowOfKeys(Connection& connection, xcb_window_t focus) {
  if (focus != XCB_INPUT_FOCUS_POINTER_ROOT && focus != connection.root()) return focus;
  auto window = connection.root();
  for (int depth = 0; depth < depthLimit; ++depth) {
    const XcbReply<xcb_query_pointer_reply_t> pointer{
        xcb_query_pointer_reply(connection, xcb_query_pointer(connection, window), nullptr)};
    if (!pointer || pointer->child == XCB_WINDOW_NONE) break;
    window = pointer->child;
  }
  return window;
}

EditingKeys editingKeysOf(Connection& connection, xcb_window_t window) {
  for (int depth = 0; window != XCB_WINDOW_NONE && depth < depthLimit; ++depth) {
    const auto classCookie = xcb_get_property(connection, 0, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 0, classLimit);
    const auto treeCookie = xcb_query_tree(connection, window);
    const XcbReply<xcb_get_property_reply_t> property{xcb_get_property_reply(connection, classCookie, nullptr)};
    const XcbReply<xcb_query_tree_reply_t> tree{xcb_query_tree_reply(connection, treeCookie, nullptr)};
    if (property && property->type == XCB_ATOM_STRING && property->format == 8) {
      const auto both = windowClassIn(bytesOf(*property));
      return editingKeysOf(both.instanceName, both.className);
    }
    if (!tree || window == tree->root) break;
    window = tree->parent;
  }
  return EditingKeys::control;
}

}  // namespace tavelle::x11
