#include "tests/platform/linux_net/TestAuthority.h"
#include "tests/platform/linux_net/URLSessionFixture.h"
#include "tests/support/Environment.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <set>
#include <vector>

namespace tavelle::tests {
namespace {

using std::chrono::seconds;

class LinuxURLSessionTest : public URLSessionFixture {
 protected:
  static std::string answer(const URLResult& result) {
    return nlohmann::json::parse(result.data).at("choices").at(0).at("message").at("content");
  }
};

TEST_F(LinuxURLSessionTest, sendsTheRequestAsItIs) {
  const StandIn server;
  auto request = post(server.baseURL() + "/../x/chat/completions?a=b%20c", "{\"messages\":[]}");
  request.headers.emplace_back("Authorization", "Bearer key");
  EXPECT_EQ(load(request).response.statusCode, 400);
  const auto requests = server.requests();
  ASSERT_EQ(requests.size(), 1u);
  EXPECT_EQ(requests[0].method, "POST");
  EXPECT_EQ(requests[0].path, "/v1/../x/chat/completions?a=b%20c");
  EXPECT_EQ(requests[0].body, "{\"messages\":[]}");
  EXPECT_EQ(requests[0].header("Content-Type"), "application/json");
  EXPECT_EQ(requests[0].header("Authorization"), "Bearer key");
}

TEST_F(LinuxURLSessionTest, saysWhoItIsAndWhatItCanDecode) {
  const StandIn server;
  load(chat(server.baseURL()));
  const auto request = server.requests().at(0);
  EXPECT_TRUE(request.header("User-Agent").starts_with("Tavelle/")) << request.header("User-Agent");
  EXPECT_NE(request.header("Accept-Encoding").find("gzip"), std::string::npos);
}

TEST_F(LinuxURLSessionTest, doesNotAskForAGoAheadBeforeALargeBody) {
  const StandIn server;
  EXPECT_EQ(load(chat(server.baseURL(), std::string(5'000'000, 'x'))).response.statusCode, 200);
  const auto request = server.requests().at(0);
  EXPECT_FALSE(request.hasHeader("Expect"));
  EXPECT_GT(request.body.size(), 5'000'000u);
}

TEST_F(LinuxURLSessionTest, sendsAGetWithoutABody) {
  const StandIn server;
  const auto result =
      load({*URL::parse("http://127.0.0.1:" + std::to_string(server.port()) + "/"), "GET", {}, {}, long_});
  EXPECT_EQ(result.response.statusCode, 200);
  EXPECT_EQ(server.requests().at(0).method, "GET");
}

TEST_F(LinuxURLSessionTest, sendsAnEmptyBodyAsOne) {
  const StandIn server;
  load(post(server.baseURL() + "/chat/completions", ""));
  EXPECT_EQ(server.requests().at(0).method, "POST");
  EXPECT_EQ(server.requests().at(0).header("Content-Length"), "0");
}

TEST_F(LinuxURLSessionTest, sendsAHeaderWithAnEmptyValue) {
  const StandIn server;
  auto request = chat(server.baseURL());
  request.headers.emplace_back("x-api-key", "");
  request.headers.emplace_back("x-blank", " ");
  load(request);
  EXPECT_TRUE(server.requests().at(0).hasHeader("x-api-key"));
  EXPECT_EQ(server.requests().at(0).header("x-api-key"), "");
  EXPECT_TRUE(server.requests().at(0).hasHeader("x-blank"));
}

TEST_F(LinuxURLSessionTest, waitsForNoBodyWhereTheStatusHasNone) {
  const StandIn server;
  const auto result = load(chat(server.baseURLBehaving("status=204,body=%7B%7D")));
  EXPECT_EQ(result.response.statusCode, 204);
  EXPECT_EQ(result.data, "");
}

TEST_F(LinuxURLSessionTest, givesAnswersOfAnyBytes) {
  const StandIn server;
  EXPECT_EQ(load(chat(server.baseURLBehaving("invalid-utf8"))).data, "\xff\xfe\xc3(");
  EXPECT_NE(answer(load(chat(server.baseURLBehaving("odd-text")))).find(std::string("\0 a NUL", 7)), std::string::npos);
}

TEST_F(LinuxURLSessionTest, decodesCompressedAndChunkedBodies) {
  const StandIn server;
  const auto plain = load(chat(server.baseURL(), "i dont know")).data;
  for (const auto* behaviour : {"gzip", "chunked=7", "gzip,chunked=1", "chunked=3,trickle=0.001"}) {
    EXPECT_EQ(load(chat(server.baseURLBehaving(behaviour), "i dont know")).data, plain) << behaviour;
  }
}

TEST_F(LinuxURLSessionTest, givesAnAnswerOfFiftyMegabytes) {
  const StandIn server;
  for (const auto* behaviour : {"size=52428800", "size=52428800,chunked=100000", "size=52428800,gzip"}) {
    const auto data = load(chat(server.baseURLBehaving(behaviour))).data;
    const auto text = data.find("All work and no play. All work");
    EXPECT_GT(data.size(), 52'428'800u) << behaviour;
    EXPECT_EQ(data.find('"', text) - text, 52'428'800u) << behaviour;
  }
}

TEST_F(LinuxURLSessionTest, turnsAPostIntoAGetWhereThePlatformDoes) {
  for (const int status : {301, 302, 303}) {
    const StandIn server;
    load(chat(server.baseURLBehaving("redirect=" + std::to_string(status))));
    ASSERT_EQ(server.requests().size(), 2u);
    EXPECT_EQ(server.requests()[1].method, "GET") << status;
    EXPECT_EQ(server.requests()[1].body, "") << status;
  }
}

TEST_F(LinuxURLSessionTest, keepsAPostOneAfterATemporaryOrPermanentRedirect) {
  for (const int status : {307, 308}) {
    const StandIn server;
    EXPECT_EQ(answer(load(chat(server.baseURLBehaving("redirect=" + std::to_string(status)), "i dont"))), "I do not.");
    ASSERT_EQ(server.requests().size(), 2u);
    EXPECT_EQ(server.requests()[1].method, "POST") << status;
    EXPECT_EQ(server.requests()[1].body, server.requests()[0].body) << status;
  }
}

TEST_F(LinuxURLSessionTest, followsTwentyRedirectionsInARow) {
  const StandIn server;
  EXPECT_EQ(load(chat(server.baseURLBehaving("redirect=307,times=20"))).response.statusCode, 200);
  EXPECT_EQ(server.requests().size(), 21u);
}

TEST_F(LinuxURLSessionTest, sendsNoHeaderButTheContentTypeToAnotherHost) {
  const StandIn server;
  const StandIn stranger;
  auto request = chat(server.baseURLBehaving("redirect=307,to=http%3A%2F%2F127.0.0.1%3A" +
                                             std::to_string(stranger.port()) + "%2Fv1%2Fchat%2Fcompletions"));
  request.headers.emplace_back("Authorization", "Bearer key");
  request.headers.emplace_back("x-api-key", "key");
  load(request);
  ASSERT_EQ(stranger.requests().size(), 1u);
  EXPECT_TRUE(server.requests().at(0).hasHeader("x-api-key"));
  EXPECT_FALSE(stranger.requests()[0].hasHeader("Authorization"));
  EXPECT_FALSE(stranger.requests()[0].hasHeader("x-api-key"));
  EXPECT_EQ(stranger.requests()[0].header("Content-Type"), "application/json");
}

TEST_F(LinuxURLSessionTest, sendsEveryHeaderAgainToTheSameHost) {
  const StandIn server;
  auto request = chat(server.baseURLBehaving("redirect=307"));
  request.headers.emplace_back("Authorization", "Bearer key");
  request.headers.emplace_back("x-api-key", "key");
  load(request);
  ASSERT_EQ(server.requests().size(), 2u);
  EXPECT_EQ(server.requests()[1].header("Authorization"), "Bearer key");
  EXPECT_EQ(server.requests()[1].header("x-api-key"), "key");
}

TEST_F(LinuxURLSessionTest, keepsNoCookies) {
  const StandIn server;
  load(chat(server.baseURLBehaving("header=Set-Cookie%3Aa%3Db")));
  load(chat(server.baseURL()));
  EXPECT_FALSE(server.requests().at(1).hasHeader("Cookie"));
}

TEST_F(LinuxURLSessionTest, trustsTheAuthoritiesItIsGiven) {
  const TestAuthority authority;
  const StandIn server{{"--tls", authority.certificate(), authority.key()}};
  LinuxURLSession trusting{URLSessionConfiguration{long_}, process_, authority.certificate()};
  Load loading{trusting, chat(server.baseURL("https"), "i dont"), executor_};
  EXPECT_EQ(answer(loading.result()), "I do not.");
}

TEST_F(LinuxURLSessionTest, trustsAFolderOfAuthorities) {
  const TestAuthority authority;
  const StandIn server{{"--tls", authority.certificate(), authority.key()}};
  LinuxURLSession trusting{URLSessionConfiguration{long_}, process_, authority.folder()};
  Load loading{trusting, chat(server.baseURL("https"), "i dont"), executor_};
  EXPECT_EQ(answer(loading.result()), "I do not.");
}

TEST_F(LinuxURLSessionTest, goesThroughTheProxyOfTheEnvironment) {
  const StandIn proxy;
  const Environment environment{{{"http_proxy", "http://127.0.0.1:" + std::to_string(proxy.port())}, {"no_proxy", ""}}};
  EXPECT_EQ(load(chat("http://model.invalid/v1")).response.statusCode, 200);
  EXPECT_EQ(proxy.requests().at(0).path, "http://model.invalid/v1/chat/completions");
  EXPECT_EQ(proxy.requests().at(0).header("Host"), "model.invalid");
}

TEST_F(LinuxURLSessionTest, goesPastTheProxyWhereTheEnvironmentSaysSo) {
  const StandIn proxy;
  const StandIn server;
  const Environment environment{
      {{"http_proxy", "http://127.0.0.1:" + std::to_string(proxy.port())}, {"no_proxy", "example.com,127.0.0.1"}}};
  EXPECT_EQ(load(chat(server.baseURL())).response.statusCode, 200);
  EXPECT_EQ(server.requests().size(), 1u);
  EXPECT_EQ(proxy.requests().size(), 0u);
}

TEST_F(LinuxURLSessionTest, asksNoProxyForThisMachine) {
  const StandIn proxy;
  const StandIn server;
  const Environment environment{{{"http_proxy", "http://127.0.0.1:" + std::to_string(proxy.port())}, {"no_proxy", ""}}};
  EXPECT_EQ(load(chat(server.baseURL())).response.statusCode, 200);
  EXPECT_EQ(load(chat("http://localhost:" + std::to_string(server.port()) + "/v1")).response.statusCode, 200);
  EXPECT_EQ(server.requests().size(), 2u);
  EXPECT_EQ(proxy.requests().size(), 0u);
}

TEST_F(LinuxURLSessionTest, asksTheSecureProxyForATunnelWithoutTheKey) {
  const StandIn proxy;
  const Environment environment{
      {{"https_proxy", "http://127.0.0.1:" + std::to_string(proxy.port())}, {"no_proxy", ""}}};
  auto request = chat("https://model.invalid/v1");
  request.headers.emplace_back("Authorization", "Bearer key");
  EXPECT_EQ(failure(request).errorDescription(),
            "There was a problem communicating with the secure web proxy server (HTTPS).");
  EXPECT_EQ(proxy.requests().at(0).method, "CONNECT");
  EXPECT_EQ(proxy.requests().at(0).path, "model.invalid:443");
  EXPECT_FALSE(proxy.requests().at(0).hasHeader("Authorization"));
}

TEST_F(LinuxURLSessionTest, sendsTwoHundredRequestsOverOneConnection) {
  const StandIn server;
  for (int count = 0; count < 200; ++count) load(chat(server.baseURL()));
  std::set<int> connections;
  for (const auto& request : server.requests()) connections.insert(request.connection);
  EXPECT_EQ(server.requests().size(), 200u);
  EXPECT_EQ(connections.size(), 1u);
}

TEST_F(LinuxURLSessionTest, connectsAnewWhereTheServerHasClosedAnIdleConnection) {
  const StandIn server;
  load(chat(server.baseURLBehaving("close-after")));
  EXPECT_EQ(load(chat(server.baseURL())).response.statusCode, 200);
  EXPECT_NE(server.requests().at(0).connection, server.requests().at(1).connection);
}

TEST_F(LinuxURLSessionTest, holdsUpNoRequestForAnother) {
  const StandIn server;
  const auto silent = start(chat(server.baseURLBehaving("silence")));
  ASSERT_EQ(server.waitForRequests(1).size(), 1u);
  std::vector<Load> loads;
  for (int count = 0; count < 30; ++count) loads.push_back(start(chat(server.baseURL(), std::to_string(count))));
  for (int count = 0; count < 30; ++count)
    EXPECT_EQ(answer(loads[static_cast<std::size_t>(count)].result()), std::to_string(count) + ".");
  EXPECT_FALSE(silent.isDone());
}

TEST_F(LinuxURLSessionTest, endsWhatIsInFlightWithTheSession) {
  const StandIn server;
  auto session = std::make_optional<LinuxURLSession>(URLSessionConfiguration{long_}, process_);
  Load first{*session, chat(server.baseURLBehaving("silence")), executor_};
  Load second{*session, chat(server.baseURLBehaving("trickle=0.01")), executor_};
  ASSERT_EQ(server.waitForRequests(2).size(), 2u);
  session.reset();
  EXPECT_EQ(first.error().code(), URLError::Code::cancelled);
  EXPECT_EQ(second.error().errorDescription(), "cancelled");
}

TEST_F(LinuxURLSessionTest, failsATaskThatIsStartedAfterTheSessionsEnd) {
  auto session = std::make_optional<LinuxURLSession>(URLSessionConfiguration{long_}, process_);
  class Late : public URLSession {
   public:
    explicit Late(Task<URLResult> task) : task_(std::move(task)) {}
    Task<URLResult> dataForRequest(URLRequest, Executor&) override { return std::move(task_); }

   private:
    Task<URLResult> task_;
  } late{session->dataForRequest(chat("http://127.0.0.1/v1"), executor_)};
  session.reset();
  EXPECT_EQ((Load{late, chat("http://127.0.0.1/v1"), executor_}.error().code()), URLError::Code::cancelled);
}

}  // namespace
}  // namespace tavelle::tests
