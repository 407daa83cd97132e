#include "platform/linux/x11/Desktop.h"

#include <utility>

namespace tavelle::x11 {

std::unique_ptr<Desktop> Desktop::open(MainActor& mainActor) {
  auto connection = Connection::open();
  if (!connection) return nullptr;
  return std::unique_ptr<Desktop>{new Desktop{std::move(connection), mainActor}};
}

Desktop::Desktop(std::unique_ptr<Connection> connection, MainActor& mainActor)
    : connection_(std::move(connection)),
      keyboard_(*connection_),
      grabs_(*connection_, keyboard_),
      heldKeys_(*connection_, keyboard_, grabs_),
      carbonEvents_(*connection_, grabs_, heldKeys_),
      quartzEvents_(*connection_, keyboard_, heldKeys_, postedEditingKeys_),
      pasteboard_(*connection_, mainActor, postedEditingKeys_,
                  [this](const PostedEditingKey& posted) { quartzEvents_.repeat(posted); }),
      accessibility_(*connection_),
      pointerPresses_(*connection_) {}

void Desktop::handOver(std::function<void()> done) {
  pasteboard_.handOver([this, done = std::move(done)](bool isSafe) {
    if (isSafe || !pasteboard_.ownsContents()) return done();
    contentsLost_ = pasteboard_.lostOwnership().subscribe(done);
  });
}

}  // namespace tavelle::x11
