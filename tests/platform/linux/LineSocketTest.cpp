#include "platform/linux/LineSocket.h"

#include "tests/platform/linux/MainLoop.h"
#include "view/wire/WireError.h"

#include <gmock/gmock.h>
#include <sys/socket.h>

#include <array>
#include <memory>
#include <vector>

namespace tavelle::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

// A socket of lines, and its other side as bare bytes.
class LineSocketTest : public testing::Test {
 protected:
  LineSocketTest() {
    std::array<int, 2> ends{};
    EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
    peer = FileDescriptor{ends[0]};
    socket = std::make_unique<LineSocket>(FileDescriptor{ends[1]},
                                          LineSocket::Handlers{[this](const std::string& line) {
                                                                 if (line == "bad") throw view::WireError{"bad line"};
                                                                 lines.push_back(line);
                                                               },
                                                               [this](const std::string& why) {
                                                                 losses.push_back(why);
                                                                 if (isDroppedWhenLost) socket.reset();
                                                               }});
  }

  void say(std::string_view bytes) const {
    EXPECT_EQ(send(peer.get(), bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
  }

  // What has come to the other side so far.
  std::string hear() const {
    std::string heard(1024UL * 1024, '\0');
    const auto count = recv(peer.get(), heard.data(), heard.size(), MSG_DONTWAIT);
    heard.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return heard;
  }

  FileDescriptor peer;
  std::vector<std::string> lines;
  std::vector<std::string> losses;
  bool isDroppedWhenLost = false;
  std::unique_ptr<LineSocket> socket;
};

TEST_F(LineSocketTest, takesLinesHoweverTheyArrive) {
  say("one\ntw");
  ASSERT_TRUE(waitUntil([&] { return lines.size() == 1; }));
  say("o\n\n");
  ASSERT_TRUE(waitUntil([&] { return lines.size() == 3; }));
  EXPECT_THAT(lines, ElementsAre("one", "two", ""));
}

TEST_F(LineSocketTest, keepsWhatTheOtherSideDoesNotTakeYet) {
  const std::string line = std::string(3'000'000, 'x') + '\n';
  socket->send(line);
  socket->send("end\n");
  std::string heard;
  ASSERT_TRUE(waitUntil([&] {
    heard += hear();
    return heard.size() >= line.size() + 4;
  }));
  EXPECT_EQ(heard, line + "end\n");
  EXPECT_THAT(losses, IsEmpty());
}

TEST_F(LineSocketTest, givesUpASideThatTakesNothingAnyMore) {
  std::string line;
  line.append(40'000'000, 'x').append("\n");
  socket->send(line);
  socket->send(line);
  EXPECT_THAT(losses, IsEmpty()) << "whoever sends still has the socket";
  socket->send(line);
  ASSERT_TRUE(waitUntil([&] { return !losses.empty(); }));
  EXPECT_THAT(losses, ElementsAre("it takes nothing any more"));
}

TEST_F(LineSocketTest, tellsOnceThatTheOtherSideHasClosed) {
  say("last\n");
  peer = FileDescriptor{};
  ASSERT_TRUE(waitUntil([&] { return !losses.empty(); }));
  EXPECT_THAT(lines, ElementsAre("last"));
  socket->send("into the void\n");
  serveReady();
  EXPECT_THAT(losses, SizeIs(1));
}

TEST_F(LineSocketTest, givesUpASideThatSendsWhatItShouldNot) {
  say("good\nbad\nlate\n");
  ASSERT_TRUE(waitUntil([&] { return !losses.empty(); }));
  EXPECT_THAT(lines, ElementsAre("good"));
  EXPECT_THAT(losses, ElementsAre("bad line"));
}

TEST_F(LineSocketTest, mayBeDroppedWhenItIsLost) {
  isDroppedWhenLost = true;
  say("bad\n");
  ASSERT_TRUE(waitUntil([&] { return !losses.empty(); }));
  EXPECT_FALSE(socket);
}

}  // namespace
}  // namespace tavelle::tests
