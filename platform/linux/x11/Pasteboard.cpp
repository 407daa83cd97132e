#include "platform/linux/x11/Pasteboard.h"

#include "platform/UTF8.h"
#include "platform/linux/x11/PropertyValues.h"
#include "platform/linux/x11/Targets.h"
#include "platform/linux/x11/TextEncoding.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tavelle::x11 {
namespace {

// The text targets that are read, the best one first.
constexpr std::array readTextTargets = {targetUTF8String, targetPlainTextUTF8, targetString};

// For a copy that comes to nothing, as it does in LibreOffice 7.4: where the key arrives while it still deals with the
// news that the clipboard was emptied, it takes the clipboard and gives it up again within a millisecond. That happens
// to one copy in fifteen where the processors are busy; the text is selected still.
constexpr int mostStrokes = 3;

}  // namespace

X11Pasteboard::X11Pasteboard(Connection& connection, MainActor& actor, PostedEditingKeys& postedKeys, Repeat repeat,
                             PasteDebt::Limits debtLimits)
    : connection_(connection),
      selection_(connection.atom("CLIPBOARD")),
      reader_(connection, actor, selection_),
      debt_(connection, actor, debtLimits),
      owner_(connection, actor, selection_, debt_),
      copyWatch_(connection, actor, owner_),
      handOver_(connection, actor, owner_),
      repeat_(std::move(repeat)),
      postedKeys_(postedKeys.subscribe([this](const PostedEditingKey& posted) { noteEditingKey(posted); })) {}

void X11Pasteboard::noteEditingKey(const PostedEditingKey& posted) {
  switch (posted.key) {
    case EditingKey::copy:
      copied_ = posted;
      return copyWatch_.begin(posted.focus);
    case EditingKey::paste:
      if (ownsContents()) debt_.incur(posted.focus, owner_.contents());
      return;
  }
}

Task<std::optional<std::vector<PasteboardType>>> X11Pasteboard::types() {
  formats_.clear();
  if (owner_.owns()) {
    std::vector<xcb_atom_t> targets;
    for (const auto& entry : owner_.contents()->entries()) targets.push_back(entry.target);
    co_return namesOf(targets);
  }
  reader_.startSeries();
  auto reading = reader_.read(connection_.atom("TARGETS"));
  const auto answer = co_await reading;
  if (!answer) co_return std::nullopt;
  co_return namesOf(itemsIn(answer->format, answer->data));
}

// Those that name contents, each once.
std::vector<PasteboardType> X11Pasteboard::namesOf(const std::vector<xcb_atom_t>& targets) {
  std::vector<PasteboardType> types;
  for (auto& name : connection_.atomNames(targets)) {
    const bool isKnown = std::ranges::find(types, name) != types.end();
    if (!name.empty() && !isKnown && !isProtocolTarget(name) && !isBoundToItsOwner(name)) {
      types.push_back(std::move(name));
    }
  }
  return types;
}

Task<std::optional<Data>> X11Pasteboard::dataForType(PasteboardType type) {
  if (type == pasteboardTypeString) {
    auto text = owner_.owns() ? ownText() : std::nullopt;
    if (owner_.owns()) co_return text;
    auto reading = readText();
    auto result = co_await reading;
    co_return result;
  }
  if (isProtocolTarget(type) || isBoundToItsOwner(type)) co_return std::nullopt;
  const auto target = connection_.atom(type);
  if (owner_.owns()) co_return ownData(target);
  auto reading = reader_.read(target);
  auto answer = co_await reading;
  if (!answer) co_return std::nullopt;
  formats_[target] = {answer->type, answer->format};
  co_return std::move(answer->data);
}

std::optional<Data> X11Pasteboard::ownData(xcb_atom_t target) {
  const auto* const value = owner_.contents()->find(target);
  if (!value) return std::nullopt;
  formats_[target] = {value->type, value->format};
  return *value->data;
}

Task<std::optional<std::string>> X11Pasteboard::stringForType(PasteboardType type) {
  if (type != pasteboardTypeString) {
    auto reading = dataForType(std::move(type));
    auto data = co_await reading;
    if (data && !isUTF8(*data)) data.reset();
    co_return data;
  }
  auto selecting = selectedText();
  auto text = co_await selecting;
  co_return text;
}

// What a copy has brought, where one is under way; otherwise what is there.
Task<std::optional<std::string>> X11Pasteboard::selectedText() {
  for (int strokes = 1;; ++strokes) {
    if (copyWatch_.isPending()) {
      auto settling = copyWatch_.settled();
      co_await settling;
    }
    if (owner_.owns()) co_return ownText();
    reader_.startSeries();
    auto reading = readText();
    auto text = co_await reading;
    if (text || strokes == mostStrokes || !wasGivenUp() || !owner_.claim()) co_return text;
    repeat_(*copied_);
  }
}

// Whether what was copied has gone, and with it the program's hold on the clipboard.
bool X11Pasteboard::wasGivenUp() const {
  return copied_ && connection_.ownerOf(selection_) == XCB_WINDOW_NONE;
}

Task<std::optional<std::string>> X11Pasteboard::readText() {
  for (const auto name : readTextTargets) {
    auto reading = reader_.read(connection_.atom(name));
    auto answer = co_await reading;
    if (!answer || answer->type == connection_.atom(typeCompoundText)) continue;
    co_return textIn(answer->type, answer->format, std::move(answer->data));
  }
  co_return std::nullopt;
}

std::optional<std::string> X11Pasteboard::ownText() {
  for (const auto name : readTextTargets) {
    const auto* const value = owner_.contents()->find(connection_.atom(name));
    if (value) return textIn(value->type, value->format, *value->data);
  }
  return std::nullopt;
}

void X11Pasteboard::clearContents() {
  copied_.reset();
  copyWatch_.cancel();
  owner_.claim();
}

bool X11Pasteboard::setData(Data data, const PasteboardType& type) {
  if (!owner_.owns()) return false;
  if (type == pasteboardTypeString) return isUTF8(data) && offerText(std::move(data));
  if (isProtocolTarget(type) || isBoundToItsOwner(type)) return false;
  const auto target = connection_.atom(type);
  const auto format = formatFor(target, data.size());
  copyWatch_.cancel();
  owner_.offer(target, {format.type, format.format, std::make_shared<const Data>(std::move(data))});
  return true;
}

X11Pasteboard::PropertyFormat X11Pasteboard::formatFor(xcb_atom_t target, std::size_t size) const {
  const auto known = formats_.find(target);
  const bool fits = known != formats_.end() && size % (known->second.format / 8) == 0;
  return fits ? known->second : PropertyFormat{target, 8};
}

bool X11Pasteboard::setString(std::string string, const PasteboardType& type) {
  if (!owner_.owns()) return false;
  if (!(type == pasteboardTypeString ? offerText(std::move(string)) : setData(std::move(string), type))) return false;
  owner_.setPassing();
  return true;
}

bool X11Pasteboard::offerText(std::string text) {
  copyWatch_.cancel();
  const bool isASCII = std::ranges::all_of(text, [](char byte) { return static_cast<signed char>(byte) >= 0; });
  const auto utf8 = std::make_shared<const Data>(std::move(text));
  for (const auto name : {targetUTF8String, targetPlainTextUTF8, targetPlainText}) {
    const auto target = connection_.atom(name);
    owner_.offer(target, {target, 8, utf8});
  }
  if (isASCII) {
    owner_.offer(XCB_ATOM_STRING, {XCB_ATOM_STRING, 8, utf8});
  } else if (auto latin1 = latin1FromUTF8(*utf8)) {
    owner_.offer(XCB_ATOM_STRING, {XCB_ATOM_STRING, 8, std::make_shared<const Data>(*std::move(latin1))});
  }
  owner_.offer(connection_.atom(targetText), {connection_.atom(targetUTF8String), 8, utf8});
  return true;
}

}  // namespace tavelle::x11
