#include "app/NotificationHelper.h"

#include "platform/UUID.h"

#include <utility>

namespace tavelle {

void NotificationHelper::send(std::string title, std::string body) const {
  // A fresh identifier each time: no notification replaces an earlier one.
  NotificationRequest request{
      .identifier = UUID::random().uuidString(),
      .content = {.title = std::move(title), .body = std::move(body), .sound = NotificationSound::systemDefault}};
  center_->add(std::move(request), [](bool) {});
}

}  // namespace tavelle
