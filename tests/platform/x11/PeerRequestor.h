#pragma once

#include "platform/FatalError.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/SelectionReader.h"
#include "tests/platform/x11/TaskResult.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tavelle::x11::tests {

// Another program that asks for what is on the clipboard: a client of its own, served by the test's main loop.
class PeerRequestor {
 public:
  explicit PeerRequestor(MainActor& actor)
      : actor_(actor), own_(opened()), connection_(own_.get()), reader_(*own_, actor, own_->atom("CLIPBOARD")) {}
  // The program whose connection this is asks.
  PeerRequestor(MainActor& actor, Connection& connection)
      : actor_(actor), connection_(&connection), reader_(connection, actor, connection.atom("CLIPBOARD")) {}

  Connection& connection() { return *connection_; }
  xcb_window_t window() const { return connection_->window(); }

  std::optional<SelectionAnswer> ask(const std::string& target) { return begin(target).result(); }
  Running<std::optional<SelectionAnswer>> begin(const std::string& target) {
    reader_.startSeries();
    return {actor_, reader_.read(connection_->atom(target))};
  }

  // Without waiting for the answer here.
  void fetch(const std::string& target, std::function<void(Data)> received) {
    actor_.start(receive(reader_.read(connection_->atom(target)), std::move(received)));
  }

  std::optional<Data> data(const std::string& target) {
    auto answer = ask(target);
    return answer ? std::optional{std::move(answer->data)} : std::nullopt;
  }

  std::vector<std::string> targets() {
    const auto answer = ask("TARGETS");
    if (!answer) return {};
    std::vector<xcb_atom_t> atoms(answer->data.size() / sizeof(xcb_atom_t));
    std::copy_n(answer->data.data(), answer->data.size(), reinterpret_cast<char*>(atoms.data()));
    return connection_->atomNames(atoms);
  }

 private:
  static std::unique_ptr<Connection> opened() {
    auto connection = Connection::open();
    if (!connection) fatalError("no X server for the test");
    return connection;
  }

  static Task<void> receive(Task<std::optional<SelectionAnswer>> reading, std::function<void(Data)> received) {
    auto answer = co_await reading;
    received(answer ? std::move(answer->data) : Data{});
  }

  MainActor& actor_;
  std::unique_ptr<Connection> own_;
  Connection* connection_;
  SelectionReader reader_;
};

}  // namespace tavelle::x11::tests
