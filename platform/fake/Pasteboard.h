#pragma once

#include "platform/Pasteboard.h"
#include "platform/fake/EventLog.h"

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tavelle {

// A pasteboard in memory. The test puts contents there as another program would, and makes it refuse.
class FakePasteboard : public Pasteboard {
 public:
  using Contents = std::vector<std::pair<PasteboardType, Data>>;

  explicit FakePasteboard(EventLog& log) : log_(log) {}

  Task<std::optional<std::vector<PasteboardType>>> types() override;
  Task<std::optional<Data>> dataForType(PasteboardType type) override;
  Task<std::optional<std::string>> stringForType(PasteboardType type) override;
  void clearContents() override;
  bool setData(Data data, const PasteboardType& type) override;
  bool setString(std::string string, const PasteboardType& type) override;

  // Another program takes it over, and nothing can be written until it is cleared.
  void take(Contents theirs);

  // What is there, in order. Changing it is another program's doing and is not logged.
  Contents contents;

  // Types that are listed and have no data.
  std::vector<PasteboardType> unreadable;

  bool hasTypeList = true;
  bool refusesWrites = false;

 private:
  bool put(Data data, const PasteboardType& type);

  EventLog& log_;
  bool isOurs_ = false;
};

}  // namespace tavelle
