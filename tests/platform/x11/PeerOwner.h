#pragma once

#include "concurrency/MainActor.h"
#include "observation/Subscription.h"
#include "platform/Data.h"
#include "platform/linux/x11/Connection.h"

#include <chrono>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tavelle::x11::tests {

// Another program that owns a selection: a client of its own, whose answers the test writes, good manners and bad. It
// is served by the test's main loop.
class PeerOwner {
 public:
  using Request = xcb_selection_request_event_t;
  using Answer = std::function<void(const Request&)>;

  explicit PeerOwner(const std::string& selection = "CLIPBOARD");
  PeerOwner(const PeerOwner&) = delete;
  PeerOwner& operator=(const PeerOwner&) = delete;

  Connection& connection() { return *connection_; }

  // Takes the selection now.
  void own();
  // Leaves the selection to nobody.
  void giveUp();
  bool owns();
  // Another program has taken it.
  bool wasCleared() const { return wasCleared_; }

  // The names that TARGETS lists, in that order. Without it TARGETS lists what is offered.
  void listTargets(std::vector<std::string> names) { listed_ = std::move(names); }

  // An empty `type` means the target's own.
  void offer(const std::string& target, Data data, const std::string& type = {}, std::uint8_t format = 8);

  // In pieces as the requestor takes them. After `stopAfter` pieces it falls silent; `announced` is the size it
  // promises.
  void offerInPieces(const std::string& target, Data data, std::size_t pieceSize,
                     std::size_t stopAfter = std::numeric_limits<std::size_t>::max(), std::uint32_t announced = 0);

  // Anything else.
  void answer(const std::string& target, Answer answer) { answers_[target] = std::move(answer); }
  void ignore(const std::string& target) {
    answer(target, [](const Request&) {});
  }

  void reply(const Request& request, const Data& data, const std::string& type, std::uint8_t format = 8);
  void refuse(const Request& request);
  void notify(const Request& request, xcb_atom_t property);

  // Ends transfers under way as if they were complete.
  void cutTransfersShort();

  // The names of the targets asked for, in order.
  const std::vector<std::string>& requests() const { return requests_; }
  std::size_t piecesSent() const { return piecesSent_; }

  // Ends the program: its connection is closed without a word.
  void die();

 private:
  struct Transfer {
    xcb_atom_t type;
    std::shared_ptr<const Data> data;
    std::size_t pieceSize;
    std::size_t piecesLeft;
    std::size_t offset = 0;
    Subscription events;
  };

  void handle(const xcb_generic_event_t& event);
  void handleRequest(const Request& request);
  void sendTargets(const Request& request);
  void sendPiece(const xcb_property_notify_event_t& taken);

  std::unique_ptr<Connection> connection_;
  xcb_atom_t selection_;
  std::vector<std::string> listed_;
  std::vector<std::string> offered_;
  std::map<std::string, Answer> answers_;
  std::map<std::pair<xcb_window_t, xcb_atom_t>, Transfer> transfers_;
  std::vector<std::string> requests_;
  std::size_t piecesSent_ = 0;
  bool wasCleared_ = false;
  Subscription events_;
};

}  // namespace tavelle::x11::tests
