#include "platform/fake/Pasteboard.h"

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
  const Data* const data = find(type);
  co_return data ? std::optional{*data} : std::nullopt;
}

Task<std::optional<std::string>> FakePasteboard::stringForType(PasteboardType type) {
  log_.add("read");
  co_return co_await dataForType(std::move(type));
}

void FakePasteboard::clearContents() {
  log_.add("cleared");
  contents.clear();
  unreadable.clear();
}

bool FakePasteboard::setData(Data data, const PasteboardType& type) {
  log_.add("set " + type);
  if (refusesWrites) return false;
  contents.emplace_back(type, std::move(data));
  return true;
}

bool FakePasteboard::setString(std::string string, const PasteboardType& type) {
  log_.add("wrote '" + string + "'");
  if (refusesWrites) return false;
  contents.emplace_back(type, std::move(string));
  return true;
}

const Data* FakePasteboard::find(const PasteboardType& type) const {
  const auto found =
      std::find_if(contents.begin(), contents.end(), [&type](const auto& entry) { return entry.first == type; });
  return found == contents.end() ? nullptr : &found->second;
}

}  // namespace tavelle
