#include "llm/LLMService.h"
#include "tests/platform/linux/MainLoop.h"
#include "tests/wire/WiredPlatform.h"

#include <iostream>
#include <optional>
#include <utility>

namespace tavelle::tests {
namespace {

Task<void> send(JSON given, std::optional<JSON>* outcome) {
  const auto text = [&given](const char* name) { return given.at(name).get<std::string>(); };
  try {
    const auto answer = co_await LLMService::shared().reword(
        text("text"), given.at("provider").get<LLMProvider>(), text("model"), text("baseURL"), text("apiKey"),
        text("systemPrompt"), given.at("temperature").get<double>());
    *outcome = JSON{{"answer", answer}};
  } catch (const LocalizedError& error) {
    *outcome = JSON{{"error", error.errorDescription()}};
  }
}

}  // namespace
}  // namespace tavelle::tests

// One request as Tavelle sends it: the arguments of LLMService::reword are a JSON object on standard input; the answer,
// or the error's description, is another on standard output.
int main() {
  using namespace tavelle;

  tests::WiredPlatform platform;
  const Platform::Use use{platform};
  std::optional<JSON> outcome;
  platform.mainActor().start(tests::send(JSON::parse(std::cin), &outcome));
  if (!tests::waitUntil([&outcome] { return outcome.has_value(); })) return 1;
  std::cout << *outcome << '\n';
  return 0;
}
