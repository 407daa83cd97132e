#pragma once

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace tavelle::view {

// What can be said of a node, with the type of its value. What is not said is the renderer's own choice.
enum class Attribute : std::uint8_t {
  title,       // string: the words on a button, beside a field, above a section, on a tab, of an option
  text,        // string: what a text shows
  value,       // what the person changes: string (a field's text, the tag selected; empty for none), double (slider)
  tag,         // string: what a row, an option or a tab is called in its parent's value
  label,       // string: the name for assistive technology, and the tooltip, of what shows no title
  mnemonic,    // string: the letter of the title that leads to it together with Alt, where a system has such keys
  symbol,      // string: the system symbol of a button or a tab
  image,       // string: the name of an image in the application's resources
  enabled,     // boolean: takes input
  busy,        // boolean: is at work
  color,       // string: "secondary", "green", "red", "orange"
  font,        // string: "body", "caption", "title"
  bold,        // boolean
  monospaced,  // boolean
  monospacedDigits,  // boolean
  small,             // boolean: the small control size
  axis,              // string: "horizontal" or "vertical"
  spacing,           // double: points between the children of a stack
  width,             // double: points; also of an image, which keeps its aspect ratio
  height,            // double: points
  minimumHeight,     // double: points
  maximumWidth,      // double: points; wider text wraps, centred
  fills,             // boolean: takes all the room there is, content centred
  minimum,           // double: a slider's range
  maximum,           // double
  step,              // double
};

// No value at all stands for an attribute that is not said.
using Value = std::variant<std::monostate, bool, double, std::string>;

// What is said of one node: few entries, kept in the order of the enumeration.
class Attributes {
 public:
  using Entries = std::vector<std::pair<Attribute, Value>>;

  Attributes() = default;
  Attributes(std::initializer_list<Entries::value_type> entries) {
    for (const auto& [attribute, value] : entries) set(attribute, value);
  }

  void set(Attribute attribute, Value value) {
    const auto at = place(attribute);
    if (at != entries_.end() && at->first == attribute) {
      at->second = std::move(value);
    } else {
      entries_.emplace(at, attribute, std::move(value));
    }
  }

  void erase(Attribute attribute) {
    std::erase_if(entries_, [attribute](const auto& entry) { return entry.first == attribute; });
  }

  // Null where nothing is said.
  const Value* find(Attribute attribute) const {
    const auto at = std::find_if(entries_.begin(), entries_.end(),
                                 [attribute](const auto& entry) { return entry.first == attribute; });
    return at == entries_.end() ? nullptr : &at->second;
  }

  // Null also where it is of another type.
  template <typename T>
  const T* get(Attribute attribute) const {
    return std::get_if<T>(find(attribute));
  }

  // What has to be said to turn these into `next`.
  Attributes changesTo(const Attributes& next) const {
    Attributes changes;
    for (const auto& [attribute, value] : entries_) {
      if (!next.find(attribute)) changes.set(attribute, std::monostate{});
    }
    for (const auto& [attribute, value] : next.entries_) {
      const auto* const now = find(attribute);
      if (!now || *now != value) changes.set(attribute, value);
    }
    return changes;
  }

  bool empty() const { return entries_.empty(); }
  auto begin() const { return entries_.begin(); }
  auto end() const { return entries_.end(); }

  bool operator==(const Attributes&) const = default;

 private:
  Entries::iterator place(Attribute attribute) {
    return std::find_if(entries_.begin(), entries_.end(),
                        [attribute](const auto& entry) { return entry.first >= attribute; });
  }

  Entries entries_;
};

}  // namespace tavelle::view
