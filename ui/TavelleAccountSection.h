#pragma once

#include "account/TavelleAccountManager.h"
#include "concurrency/Task.h"
#include "view/Component.h"
#include "view/State.h"

#include <memory>
#include <string>
#include <vector>

namespace tavelle {

// In place of the connection where the provider is the hosted service: signing in by an e-mailed link, and out.
class TavelleAccountSection : public view::Component {
 public:
  TavelleAccountSection();

  view::Node body() override;

 private:
  std::vector<view::Node> signedOutRows();
  std::vector<view::Node> signedInRows();
  static Task<void> requestLogin(std::weak_ptr<TavelleAccountSection> weak);

  TavelleAccountManager& account_ = TavelleAccountManager::shared();
  view::State<std::string> loginEmail_{*this, ""};
  view::State<bool> loginSent_{*this, false};
};

}  // namespace tavelle
