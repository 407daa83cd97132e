#pragma once

#include "concurrency/Task.h"
#include "platform/Data.h"

#include <optional>
#include <string>
#include <vector>

namespace tavelle {

// A representation's name: a uniform type identifier on macOS, a selection target's atom name on X11.
using PasteboardType = std::string;

// NSPasteboardTypeString, the name under which plain text is asked for and written. Linux: the backend translates it to
// the text targets that X11 applications use.
inline const PasteboardType pasteboardTypeString = "public.utf8-plain-text";

// The general pasteboard (NSPasteboard; the CLIPBOARD selection on X11). Main thread only.
//
// Reading may wait for the program that owns the contents, so reads are tasks: complete at once on macOS, bounded in
// time on Linux. They resume on the main thread. Writing never waits.
class Pasteboard {
 public:
  virtual ~Pasteboard() = default;

  // The types that are there now, in the owner's order. No value where the pasteboard has no type list at all.
  virtual Task<std::optional<std::vector<PasteboardType>>> types() = 0;

  // The bytes of one type, exactly as the owner gave them; no value where it has none or did not answer in time.
  virtual Task<std::optional<Data>> dataForType(PasteboardType type) = 0;

  // The plain text, as valid UTF-8; no value where there is none. Linux: after a copy key was posted and before its
  // result has arrived, the read waits for it, bounded, for as long as the application is still at work.
  virtual Task<std::optional<std::string>> stringForType(PasteboardType type) = 0;

  // Takes the pasteboard over, with nothing on it.
  virtual void clearContents() = 0;

  // Adds one type. False where the pasteboard refuses, as after another program has taken it over.
  virtual bool setData(Data data, const PasteboardType& type) = 0;
  virtual bool setString(std::string string, const PasteboardType& type) = 0;
};

}  // namespace tavelle
