#include "platform/fake/Pasteboard.h"

#include "platform/UTF8.h"

#include <algorithm>

namespace tavelle {

Task<std::optional<std::vector<PasteboardType>>> FakePasteboard::types() {
  log_.add("saved");
  if (!hasTypeList) co_return std::nullopt;
  std::vector<PasteboardType> types;
  for (const auto& [type, data] : contents) types.push_back(type);
  types.insert(types.end(), unreadable.begin(), unreadable.end());
  co_return types;
}

Task<std::optional<Data>> FakePasteboard::dataForType(PasteboardType type) {
  const auto found = std::ranges::find(contents, type, &Contents::value_type::first);
  co_return found == contents.end() ? std::nullopt : std::optional{found->second};
}

Task<std::optional<std::string>> FakePasteboard::stringForType(PasteboardType type) {
  log_.add("read");
  auto text = co_await dataForType(std::move(type));
  if (text && !isUTF8(*text)) text.reset();
  co_return text;
}

void FakePasteboard::clearContents() {
  log_.add("cleared");
  take({});
  isOurs_ = true;
}

void FakePasteboard::take(Contents theirs) {
  contents = std::move(theirs);
  unreadable.clear();
  isOurs_ = false;
}

bool FakePasteboard::setData(Data data, const PasteboardType& type) {
  log_.add("set " + type);
  return put(std::move(data), type);
}

bool FakePasteboard::setString(std::string string, const PasteboardType& type) {
  log_.add("wrote '" + string + "'");
  return put(std::move(string), type);
}

bool FakePasteboard::put(Data data, const PasteboardType& type) {
  if (refusesWrites || !isOurs_) return false;
  const auto found = std::ranges::find(contents, type, &Contents::value_type::first);
  if (found != contents.end()) {
    found->second = std::move(data);
  } else {
    contents.emplace_back(type, std::move(data));
  }
  return true;
}

}  // namespace tavelle
