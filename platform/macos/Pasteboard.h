#pragma once

#include "platform/Pasteboard.h"

namespace tavelle {

// NSPasteboard.generalPasteboard. The tasks are complete when they are first awaited.
class MacPasteboard : public Pasteboard {
 public:
  Task<std::optional<std::vector<PasteboardType>>> types() override;
  Task<std::optional<Data>> dataForType(PasteboardType type) override;
  Task<std::optional<std::string>> stringForType(PasteboardType type) override;
  void clearContents() override;
  bool setData(Data data, const PasteboardType& type) override;
  bool setString(std::string string, const PasteboardType& type) override;
};

}  // namespace tavelle
