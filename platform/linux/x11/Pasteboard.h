#pragma once

#include "concurrency/MainActor.h"
#include "platform/Pasteboard.h"
#include "platform/linux/x11/ClipboardHandOver.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/CopyWatch.h"
#include "platform/linux/x11/EditingKey.h"
#include "platform/linux/x11/PasteDebt.h"
#include "platform/linux/x11/SelectionOwner.h"
#include "platform/linux/x11/SelectionReader.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>

namespace tavelle::x11 {

// The general pasteboard as the CLIPBOARD selection. A type is a target's name; data that came with a property type or
// format of its own go back with the same. What this program itself put there is read without asking the server.
class X11Pasteboard final : public Pasteboard {
 public:
  using Repeat = std::function<void(const PostedEditingKey& posted)>;

  // `postedKeys` tells of the copy and paste keys that this program sends; `repeat` sends one of them once more.
  X11Pasteboard(Connection& connection, MainActor& actor, PostedEditingKeys& postedKeys, Repeat repeat,
                PasteDebt::Limits debtLimits = PasteDebt::Limits{});

  Task<std::optional<std::vector<PasteboardType>>> types() override;
  Task<std::optional<Data>> dataForType(PasteboardType type) override;
  Task<std::optional<std::string>> stringForType(PasteboardType type) override;
  void clearContents() override;
  bool setData(Data data, const PasteboardType& type) override;
  bool setString(std::string string, const PasteboardType& type) override;

  // Before the program ends: hands what is here to the clipboard manager. See ClipboardHandOver::begin().
  void handOver(std::function<void(bool isSafe)> done) { handOver_.begin(std::move(done)); }

  // Whether the program's end would take contents from the person: it may have to go on serving them until
  // lostOwnership().
  bool ownsContents() const { return owner_.owns() && !owner_.contents()->isEmpty(); }
  Subject<>& lostOwnership() { return owner_.lost(); }

 private:
  struct PropertyFormat {
    xcb_atom_t type;
    std::uint8_t format;
  };

  void noteEditingKey(const PostedEditingKey& posted);
  std::vector<PasteboardType> namesOf(const std::vector<xcb_atom_t>& targets);
  std::optional<Data> ownData(xcb_atom_t target);
  std::optional<std::string> ownText();
  Task<std::optional<std::string>> selectedText();
  Task<std::optional<std::string>> readText();
  bool wasGivenUp() const;
  bool offerText(std::string text);
  PropertyFormat formatFor(xcb_atom_t target, std::size_t size) const;

  Connection& connection_;
  const xcb_atom_t selection_;
  SelectionReader reader_;
  PasteDebt debt_;
  SelectionOwner owner_;
  CopyWatch copyWatch_;
  ClipboardHandOver handOver_;
  const Repeat repeat_;
  std::optional<PostedEditingKey> copied_;        // since the contents were cleared
  std::map<xcb_atom_t, PropertyFormat> formats_;  // of the data read since types() was last asked
  Subscription postedKeys_;
};

}  // namespace tavelle::x11
