#pragma once

#include "platform/linux/MainActor.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/EditingKey.h"
#include "platform/linux/x11/Pasteboard.h"
#include "tests/platform/x11/EventLoop.h"
#include "tests/platform/x11/PeerOwner.h"
#include "tests/platform/x11/PeerRequestor.h"
#include "tests/platform/x11/Program.h"
#include "tests/platform/x11/TaskResult.h"
#include "tests/platform/x11/XServer.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tavelle::x11::tests {

using namespace std::chrono_literals;

// Bytes that differ from place to place, so that a lost or doubled piece shows.
inline Data bytesOfSize(std::size_t size, unsigned seed = 1) {
  Data data(size, '\0');
  std::uint32_t state = seed;
  for (auto& byte : data) {
    state = state * 1664525u + 1013904223u;
    byte = static_cast<char>(state >> 24);
  }
  return data;
}

// A pasteboard on a private X server, beside programs of the test's choice.
class PasteboardTest : public testing::Test {
 protected:
  using Types = std::vector<PasteboardType>;

  std::optional<Types> types() { return resultOf(actor, pasteboard->types()); }
  std::optional<Data> data(const PasteboardType& type) { return resultOf(actor, pasteboard->dataForType(type)); }
  std::optional<std::string> text() { return resultOf(actor, pasteboard->stringForType(pasteboardTypeString)); }

  std::unique_ptr<X11Pasteboard> makePasteboard(PasteDebt::Limits debtLimits = PasteDebt::Limits{}) {
    return std::make_unique<X11Pasteboard>(
        *connection, actor, postedKeys, [this](const auto& posted) { onRepeat(posted); }, debtLimits);
  }

  // Puts text there, as the answer of a run is put.
  void write(const std::string& text) {
    pasteboard->clearContents();
    ASSERT_TRUE(pasteboard->setString(text, pasteboardTypeString));
  }

  void press(EditingKey key, xcb_window_t focus) { postedKeys.send({key, focus}); }

  // Serves the main loop for so long: the time that some program takes.
  void pass(std::chrono::milliseconds time) {
    bool isOver = false;
    actor.postAfter(time, [&] { isOver = true; });
    waitUntil([&] { return isOver; });
  }

  static std::chrono::milliseconds since(std::chrono::steady_clock::time_point begin) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - begin);
  }
  static std::chrono::steady_clock::time_point now() { return std::chrono::steady_clock::now(); }

  XServer server;
  GLibMainActor actor;
  std::unique_ptr<Connection> connection = Connection::open();
  PostedEditingKeys postedKeys;
  std::function<void(const PostedEditingKey&)> onRepeat = [](const PostedEditingKey&) {};
  std::unique_ptr<X11Pasteboard> pasteboard = makePasteboard();
};

}  // namespace tavelle::x11::tests
