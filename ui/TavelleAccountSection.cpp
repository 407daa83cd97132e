#include "ui/TavelleAccountSection.h"

#include "platform/Platform.h"
#include "view/Nodes.h"

#include <exception>
#include <utility>

namespace tavelle {

using namespace view;

TavelleAccountSection::TavelleAccountSection() {
  observe(account_.objectWillChange());
}

Node TavelleAccountSection::body() {
  return section("Account", account_.isSignedIn() ? signedInRows() : signedOutRows());
}

std::vector<Node> TavelleAccountSection::signedOutRows() {
  std::vector<Node> rows;
  rows.push_back(textField("Email:", loginEmail_.binding()).mnemonic("E"));
  rows.push_back(button(account_.isLoading() ? "Sending..." : "Send Login Link",
                        [this] {
                          const auto self = std::static_pointer_cast<TavelleAccountSection>(shared_from_this());
                          Platform::current().mainActor().start(requestLogin(self));
                        })
                     .mnemonic("L")
                     .disabled(loginEmail_.get().empty() || account_.isLoading()));
  if (loginSent_.get()) {
    rows.push_back(text("Check your email for a login link.").color(Color::secondary).font(Font::caption));
  }
  return rows;
}

std::vector<Node> TavelleAccountSection::signedInRows() {
  std::vector<Node> rows;
  rows.push_back(horizontalStack(text("Email"), spacer(), text(account_.email().value_or("")).color(Color::secondary)));
  if (const auto& message = account_.errorMessage()) {
    rows.push_back(text(*message).color(Color::red).font(Font::caption));
  }
  rows.push_back(horizontalStack(spacer(), button("Sign Out", [this] { account_.signOut(); }).mnemonic("S")));
  return rows;
}

// The hint comes whatever became of the request: how it failed is the account session's to tell.
Task<void> TavelleAccountSection::requestLogin(std::weak_ptr<TavelleAccountSection> weak) {
  auto self = weak.lock();
  if (!self) co_return;
  std::string email = self->loginEmail_.get();
  self.reset();
  try {
    co_await TavelleAccountManager::shared().requestLogin(std::move(email));
  } catch (const std::exception&) {
    // Nothing is shown of it here.
  }
  self = weak.lock();
  if (self) self->loginSent_.set(true);
}

}  // namespace tavelle
