#include "tests/support/StandIn.h"

#include "platform/linux/FileDescriptor.h"

#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace tavelle::tests {
namespace {

constexpr int longestWait = 10'000;  // milliseconds without any news

std::vector<std::string> command(const std::filesystem::path& log, const std::vector<std::string>& more) {
  std::vector<std::string> all{"/usr/bin/python3", TAVELLE_STAND_IN, "--until-input-closes", "--log", log,
                               "--log-secrets"};
  all.insert(all.end(), more.begin(), more.end());
  return all;
}

// The number that ends the line which the stand-in prints when it listens.
std::uint16_t portIn(const std::string& line) {
  const auto at = line.rfind(' ');
  if (at == std::string::npos) throw std::runtime_error("the stand-in did not start");
  return static_cast<std::uint16_t>(std::stoul(line.substr(at + 1)));
}

bool equalIgnoringCase(std::string_view left, std::string_view right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](char a, char b) { return std::tolower(a) == std::tolower(b); });
}

}  // namespace

bool RecordedRequest::hasHeader(std::string_view name) const {
  return std::any_of(headers.begin(), headers.end(),
                     [name](const auto& each) { return equalIgnoringCase(each.first, name); });
}

std::string RecordedRequest::header(std::string_view name) const {
  for (const auto& [each, value] : headers) {
    if (equalIgnoringCase(each, name)) return value;
  }
  return {};
}

StandIn::StandIn(const std::vector<std::string>& arguments)
    : server_(command(folder_.path() / "log", arguments)), port_(portIn(server_.readLine())) {}

std::string StandIn::root(std::string_view scheme) const {
  return std::string{scheme} + "://127.0.0.1:" + std::to_string(port_);
}

std::string StandIn::baseURL(std::string_view scheme) const {
  return root(scheme) + "/v1";
}

std::string StandIn::baseURLBehaving(std::string_view behaviour, std::string_view scheme) const {
  return baseURL(scheme) + "/_behave/" + std::string{behaviour};
}

std::vector<RecordedRequest> StandIn::requests() const {
  std::vector<RecordedRequest> all;
  std::ifstream log(folder_.path() / "log");
  for (std::string line; std::getline(log, line);) {
    if (log.eof()) break;  // not written to its end yet
    const auto entry = nlohmann::json::parse(line);
    RecordedRequest request{entry.at("connection"), entry.at("method"), entry.at("path"), {}, entry.value("body", "")};
    for (const auto& header : entry.at("headers")) request.headers.emplace_back(header.at(0), header.at(1));
    all.push_back(std::move(request));
  }
  return all;
}

std::vector<RecordedRequest> StandIn::waitForRequests(std::size_t count) const {
  const FileDescriptor changes{inotify_init1(IN_CLOEXEC)};
  inotify_add_watch(changes.get(), folder_.path().c_str(), IN_CREATE | IN_MODIFY);
  auto all = requests();
  pollfd awaited{changes.get(), POLLIN, 0};
  while (all.size() < count && poll(&awaited, 1, longestWait) > 0) {
    std::array<char, 4096> news;
    if (read(changes.get(), news.data(), news.size()) <= 0) break;
    all = requests();
  }
  return all;
}

}  // namespace tavelle::tests
