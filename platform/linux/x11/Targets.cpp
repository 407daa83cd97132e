#include "platform/linux/x11/Targets.h"

#include <algorithm>
#include <array>

namespace tavelle::x11 {
namespace {

constexpr std::array<std::string_view, 9> protocolTargets = {
    "TARGETS",          "MULTIPLE",        "TIMESTAMP", "SAVE_TARGETS", "DELETE",
    "INSERT_SELECTION", "INSERT_PROPERTY", "INCR",      "ATOM_PAIR",
};

constexpr std::array<std::string_view, 7> ownerBoundTargets = {
    // Pointers: to a text buffer, to a tree model.
    "GTK_TEXT_BUFFER_CONTENTS",
    "GTK_TREE_MODEL_ROW",
    // Server resources, which end with the owner's connection.
    "BITMAP",
    "COLORMAP",
    "DRAWABLE",
    "PIXMAP",
    "WINDOW",
};

}  // namespace

bool isProtocolTarget(std::string_view name) {
  return std::ranges::find(protocolTargets, name) != protocolTargets.end();
}

bool isBoundToItsOwner(std::string_view name) {
  return std::ranges::find(ownerBoundTargets, name) != ownerBoundTargets.end();
}

}  // namespace tavelle::x11
