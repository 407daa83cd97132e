#include "tests/support/StandIn.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <thread>

namespace tavelle::tests {
namespace {

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
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  auto all = requests();
  while (all.size() < count && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    all = requests();
  }
  return all;
}

}  // namespace tavelle::tests
