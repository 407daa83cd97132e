#pragma once

#include <cstdint>

namespace tavelle::view {

// The kinds of node that a renderer draws.
enum class NodeType : std::uint8_t {
  tabView,  // its children are tabs; only the one that is its value has content
  tab,
  form,            // grouped: its children are sections
  section,         // an optional title, and rows
  list,            // rows, of which one can be selected
  row,             // of a list
  stack,           // children side by side or one above the other
  labeledContent,  // a title, and what it is the title of
  text,
  textField,
  secureField,  // masked
  textEditor,   // many lines
  button,
  picker,  // its children are options
  option,
  slider,
  image,
  spacer,      // takes the room that is left
  keyCapture,  // its child, with a KeyCaptureView behind it
};

}  // namespace tavelle::view
