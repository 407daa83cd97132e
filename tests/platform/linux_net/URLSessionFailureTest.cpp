#include "tests/platform/linux_net/TestAuthority.h"
#include "tests/platform/linux_net/URLSessionFixture.h"

#include <chrono>
#include <string>

namespace tavelle::tests {
namespace {

using Code = URLError::Code;
using Clock = std::chrono::steady_clock;
using std::chrono::seconds;

class LinuxURLSessionFailureTest : public URLSessionFixture {
 protected:
  LinuxURLSession impatient_{URLSessionConfiguration{seconds(1)}, process_};

  Load startImpatiently(URLRequest request) { return Load{impatient_, std::move(request), executor_}; }
};

TEST_F(LinuxURLSessionFailureTest, unknownHost) {
  const auto error = failure(chat("http://nonexistent.invalid/v1"));
  EXPECT_EQ(error.code(), Code::cannotFindHost);
  EXPECT_EQ(error.errorDescription(), "A server with the specified hostname could not be found.");
}

TEST_F(LinuxURLSessionFailureTest, addressThatIsNoWebAddress) {
  for (const auto* url : {"/chat/completions", "chat/completions", "ftp://127.0.0.1/x", "file:///etc/hostname",
                          "tavelle://auth", "http:127.0.0.1", "http:/127.0.0.1/", "mailto:a@b.example"}) {
    const auto error = failure(post(url, ""));
    EXPECT_EQ(error.code(), Code::unsupportedURL) << url;
    EXPECT_EQ(error.errorDescription(), "unsupported URL") << url;
  }
}

TEST_F(LinuxURLSessionFailureTest, addressWithoutAHost) {
  for (const auto* url : {"http://", "http:///x", "https://?a=b", "http://#x", "http://:80/"}) {
    EXPECT_EQ(failure(post(url, "")).errorDescription(), "bad URL") << url;
  }
}

TEST_F(LinuxURLSessionFailureTest, unknownAuthority) {
  const TestAuthority authority;
  const StandIn server{{"--tls", authority.certificate(), authority.key()}};
  const auto error = failure(chat(server.baseURL("https")));
  EXPECT_EQ(error.code(), Code::serverCertificateUntrusted);
  EXPECT_EQ(error.errorDescription(),
            "The certificate for this server is invalid. You might be connecting to a server that is pretending to be "
            "“127.0.0.1” which could put your confidential information at risk.");
  EXPECT_EQ(server.requests().size(), 0u);
}

TEST_F(LinuxURLSessionFailureTest, certificateForAnotherHost) {
  const TestAuthority authority;
  const StandIn server{{"--tls", authority.certificate(), authority.key()}};
  LinuxURLSession trusting{URLSessionConfiguration{long_}, process_, authority.certificate()};
  Load loading{trusting, chat("https://localhost:" + std::to_string(server.port()) + "/v1"), executor_};
  const auto error = loading.error();
  EXPECT_EQ(error.code(), Code::serverCertificateUntrusted);
  EXPECT_NE(error.errorDescription().find("“localhost”"), std::string::npos);
}

TEST_F(LinuxURLSessionFailureTest, serverThatDoesNotSpeakTls) {
  const StandIn server;
  const auto error = failure(chat(server.baseURL("https")));
  EXPECT_EQ(error.code(), Code::secureConnectionFailed);
  EXPECT_EQ(error.errorDescription(),
            "An SSL error has occurred and a secure connection to the server cannot be made.");
}

TEST_F(LinuxURLSessionFailureTest, silence) {
  const StandIn server;
  for (const auto* behaviour : {"silence", "silence-after-head", "delay=20"}) {
    const auto start = Clock::now();
    const auto error = startImpatiently(chat(server.baseURLBehaving(behaviour))).error();
    EXPECT_EQ(error.code(), Code::timedOut) << behaviour;
    EXPECT_EQ(error.errorDescription(), "The request timed out.") << behaviour;
    EXPECT_GE(Clock::now() - start, seconds(1)) << behaviour;
    EXPECT_LT(Clock::now() - start, seconds(10)) << behaviour;
  }
}

TEST_F(LinuxURLSessionFailureTest, silenceOfTheRequestsOwnLimitWhereThatIsShorter) {
  const StandIn server;
  auto request = chat(server.baseURLBehaving("silence"));
  request.timeoutInterval = seconds(1);
  EXPECT_EQ(failure(request).code(), Code::timedOut);
}

TEST_F(LinuxURLSessionFailureTest, silenceInTheMiddleOfTheHandshake) {
  const StandIn server{{"--deaf"}};
  EXPECT_EQ(startImpatiently(chat(server.baseURL("https"))).error().code(), Code::timedOut);
}

TEST_F(LinuxURLSessionFailureTest, neverCutsOffAServerThatKeepsSending) {
  const StandIn server;
  LinuxURLSession patient{URLSessionConfiguration{seconds(3)}, process_};
  // Each takes longer than the limit; in the second one single header does.
  for (const auto* behaviour : {"trickle=0.7,body=abcdef", "trickle-all=0.12,body=abcdef"}) {
    const auto start = Clock::now();
    Load loading{patient, chat(server.baseURLBehaving(behaviour)), executor_};
    EXPECT_EQ(loading.result().data, "abcdef") << behaviour;
    EXPECT_GT(Clock::now() - start, seconds(3)) << behaviour;
  }
}

TEST_F(LinuxURLSessionFailureTest, oneSilenceWhileAnotherTransferIsBusy) {
  const StandIn server;
  auto silent = startImpatiently(chat(server.baseURLBehaving("silence")));
  auto busy = startImpatiently(chat(server.baseURLBehaving("trickle=0.2,body=0123456789")));
  EXPECT_EQ(silent.error().code(), Code::timedOut);
  EXPECT_FALSE(busy.isDone());
  EXPECT_EQ(busy.result().data, "0123456789");
}

TEST_F(LinuxURLSessionFailureTest, answerCutShort) {
  const StandIn server;
  for (const auto* behaviour :
       {"truncate", "chunked-cut=16", "close", "truncate,size=5000000", "status=500,body=abcdef,truncate"}) {
    const auto error = failure(chat(server.baseURLBehaving(behaviour)));
    EXPECT_EQ(error.code(), Code::networkConnectionLost) << behaviour;
    EXPECT_EQ(error.errorDescription(), "The network connection was lost.") << behaviour;
  }
}

TEST_F(LinuxURLSessionFailureTest, compressionThatCannotBeRead) {
  const StandIn server;
  const auto error = failure(chat(server.baseURLBehaving("gzip-damaged")));
  EXPECT_EQ(error.code(), Code::cannotDecodeContentData);
  EXPECT_EQ(error.errorDescription(), "cannot decode raw data");
}

TEST_F(LinuxURLSessionFailureTest, redirectionsWithoutEnd) {
  const StandIn server;
  const auto error = failure(chat(server.baseURLBehaving("redirect=307,times=1000")));
  EXPECT_EQ(error.code(), Code::httpTooManyRedirects);
  EXPECT_EQ(error.errorDescription(), "too many HTTP redirects");
  EXPECT_EQ(server.requests().size(), 21u);
}

TEST_F(LinuxURLSessionFailureTest, redirectionToAnythingButTheWeb) {
  const StandIn server;
  for (const auto* target :
       {"file%3A%2F%2F%2Fetc%2Fhostname", "ftp%3A%2F%2F127.0.0.1%2F", "gopher%3A%2F%2F127.0.0.1%2F"}) {
    const auto error = failure(chat(server.baseURLBehaving(std::string{"redirect=302,to="} + target)));
    EXPECT_EQ(error.code(), Code::unsupportedURL) << target;
  }
}

TEST_F(LinuxURLSessionFailureTest, redirectionOfASecureRequestIntoTheOpen) {
  const TestAuthority authority;
  const StandIn secure{{"--tls", authority.certificate(), authority.key()}};
  const StandIn open;
  LinuxURLSession trusting{URLSessionConfiguration{long_}, process_, authority.certificate()};
  const auto behaviour = "redirect=307,to=http%3A%2F%2F127.0.0.1%3A" + std::to_string(open.port()) + "%2Fv1";
  Load loading{trusting, chat(secure.baseURLBehaving(behaviour, "https")), executor_};
  EXPECT_EQ(loading.error().code(), Code::unsupportedURL);
  EXPECT_EQ(secure.requests().size(), 1u);
  EXPECT_EQ(open.requests().size(), 0u);
}

TEST_F(LinuxURLSessionFailureTest, headerWithALineBreak) {
  const StandIn server;
  for (const auto& value :
       {std::string{"sk-secret\n"}, std::string{"sk-secret\r\nHost: elsewhere"}, std::string("sk-secret\0x", 11)}) {
    auto request = chat(server.baseURL());
    request.headers.emplace_back("Authorization", "Bearer " + value);
    const auto error = failure(request);
    EXPECT_EQ(error.errorDescription(), "The header “Authorization” of the request holds a line break.");
  }
  EXPECT_EQ(server.requests().size(), 0u);
}

TEST_F(LinuxURLSessionFailureTest, headerWithANameThatIsNone) {
  for (const auto* name : {"", "a b", "a:", "a\nb", "ä"}) {
    auto request = chat("http://127.0.0.1:1/v1");
    request.headers.emplace_back(name, "value");
    EXPECT_EQ(failure(request).errorDescription(), "A header of the request has no valid name.");
  }
}

TEST_F(LinuxURLSessionFailureTest, wordsThatNeverHoldTheKey) {
  const TestAuthority authority;
  const StandIn server;
  const StandIn secure{{"--tls", authority.certificate(), authority.key()}};
  const std::string key = "?key=AIza-secret";
  for (const std::string& url :
       {"http://127.0.0.1:1/" + key, "http://nonexistent.invalid/" + key, "ftp://127.0.0.1/" + key, "/models" + key,
        secure.baseURL("https") + "/" + key, server.baseURL("https") + "/" + key,
        server.baseURLBehaving("truncate") + "/" + key, server.baseURLBehaving("redirect=302,times=100") + "/" + key}) {
    EXPECT_EQ(failure(post(url, "")).errorDescription().find("secret"), std::string::npos) << url;
  }
}

}  // namespace
}  // namespace tavelle::tests
