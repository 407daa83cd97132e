#include "platform/linux/TransferFrames.h"

#include "platform/linux/FileDescriptor.h"

#include <gtest/gtest.h>
#include <sys/socket.h>

#include <array>
#include <cstring>
#include <string>
#include <thread>

namespace tavelle::tests {
namespace {

class TransferFramesTest : public testing::Test {
 protected:
  TransferFramesTest() {
    std::array<int, 2> ends{};
    EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
    near_ = FileDescriptor{ends[0]};
    far_ = FileDescriptor{ends[1]};
  }

  // What arrives at the far end. Frames may be larger than what a socket holds.
  TransferOrder passed(const TransferOrder& order) {
    std::thread sender{[&] { EXPECT_TRUE(sendOrder(near_.get(), order)); }};
    auto arrived = receiveOrder(far_.get());
    sender.join();
    return arrived.value();
  }
  TransferResult passed(const TransferResult& result) {
    std::thread sender{[&] { EXPECT_TRUE(sendResult(near_.get(), result)); }};
    auto arrived = receiveResult(far_.get());
    sender.join();
    return std::move(arrived).value();
  }

  // A frame of a kind that there is, or not, and the end of the stream.
  void sendBytes(std::string_view bytes) {
    EXPECT_EQ(send(near_.get(), bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
    near_ = {};
  }
  static std::string number(std::uint64_t value) {
    std::string bytes(sizeof value, '\0');
    std::memcpy(bytes.data(), &value, sizeof value);
    return bytes;
  }

  FileDescriptor near_;
  FileDescriptor far_;
};

TEST_F(TransferFramesTest, carryARequestWhole) {
  const URLRequest request{*URL::parse("https://model.example/v1?key=a%20b"),
                           "POST",
                           {{"Authorization", "Bearer é"}, {"x-api-key", ""}},
                           std::string("a\0b", 3) + std::string(3'000'000, 'x'),
                           std::chrono::seconds(7)};
  const auto arrived = std::get<StartTransfer>(passed(StartTransfer{3, request, "/etc/authorities"}));
  EXPECT_EQ(arrived.id, 3u);
  EXPECT_EQ(arrived.request.url.absoluteString(), request.url.absoluteString());
  EXPECT_EQ(arrived.request.method, request.method);
  EXPECT_EQ(arrived.request.headers, request.headers);
  EXPECT_EQ(arrived.request.body, request.body);
  EXPECT_EQ(arrived.request.timeoutInterval, request.timeoutInterval);
  EXPECT_EQ(arrived.authorities, "/etc/authorities");
}

TEST_F(TransferFramesTest, carryACancellation) {
  EXPECT_EQ(std::get<CancelTransfer>(passed(CancelTransfer{1ULL << 40})).id, 1ULL << 40);
}

TEST_F(TransferFramesTest, carryAResponseWithItsStatusOrWithout) {
  const auto data = std::string("\0\xff", 2) + std::string(3'000'000, 'y');
  for (const std::optional<int> status : {std::optional{429}, std::optional<int>{}}) {
    const auto arrived = passed(TransferResult{9, URLResult{data, {status}}});
    EXPECT_EQ(arrived.id, 9u);
    EXPECT_EQ(std::get<URLResult>(arrived.outcome).data, data);
    EXPECT_EQ(std::get<URLResult>(arrived.outcome).response.statusCode, status);
  }
}

TEST_F(TransferFramesTest, carryAnErrorWithItsWords) {
  const auto arrived = passed(TransferResult{9, URLError{URLError::Code::timedOut, "The request “timed” out."}});
  const auto& error = std::get<URLError>(arrived.outcome);
  EXPECT_EQ(error.code(), URLError::Code::timedOut);
  EXPECT_EQ(error.errorDescription(), "The request “timed” out.");
}

TEST_F(TransferFramesTest, carryNothingOnceTheOtherSideHasGone) {
  near_ = {};
  EXPECT_FALSE(receiveOrder(far_.get()));
  EXPECT_FALSE(receiveResult(far_.get()));
  EXPECT_FALSE(sendOrder(far_.get(), CancelTransfer{1}));
}

TEST_F(TransferFramesTest, areNoneWhereTheyAreCutShort) {
  sendBytes(number(16) + number(5) + number(1) + number(1) + "abc");
  EXPECT_FALSE(receiveOrder(far_.get()));
}

TEST_F(TransferFramesTest, areNoneWhereTheyPromiseMoreThanAnyTextIs) {
  sendBytes(number(~0ULL) + number(~0ULL));
  EXPECT_FALSE(receiveResult(far_.get()));
}

TEST_F(TransferFramesTest, areNoneWhereAHeadIsNotWhatItShouldBe) {
  const auto head = [](const std::string& bytes) { return number(bytes.size()) + number(0) + bytes; };
  for (const auto& wrong : {head(""), head("abc"), head(number(77) + number(1)), head(number(1) + number(1) + "more"),
                            head(number(0) + number(1) + number(~0ULL)), head(number(4) + number(1) + number(1))}) {
    std::array<int, 2> ends{};
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
    far_ = FileDescriptor{ends[1]};
    near_ = FileDescriptor{ends[0]};
    sendBytes(wrong + wrong);
    EXPECT_FALSE(receiveOrder(far_.get()));
    EXPECT_FALSE(receiveResult(far_.get()));
  }
}

}  // namespace
}  // namespace tavelle::tests
