#pragma once

#include "platform/Data.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace tavelle::x11 {

// One target's value as a property holds it. Items of format 32 are packed, four bytes each. The bytes are shared: a
// transfer under way keeps them whatever becomes of the clipboard.
struct SelectionValue {
  xcb_atom_t type;
  std::uint8_t format;  // bits of an item: 8, 16 or 32
  std::shared_ptr<const Data> data;
};

// What a selection owner has to offer: a value for each target, in the order in which they were added.
class ClipboardContents {
 public:
  struct Entry {
    xcb_atom_t target;
    SelectionValue value;
  };

  // A target that is there already keeps its place and gets the new value.
  void set(xcb_atom_t target, SelectionValue value);

  // Null where there is no such target.
  const SelectionValue* find(xcb_atom_t target) const;

  const std::vector<Entry>& entries() const { return entries_; }
  bool isEmpty() const { return entries_.empty(); }

  // Whether these contents are only passing by, and clipboard histories should leave them alone.
  bool isPassing() const { return isPassing_ || isEmpty(); }
  void setPassing() { isPassing_ = true; }

 private:
  std::vector<Entry> entries_;
  bool isPassing_ = false;
};

}  // namespace tavelle::x11
