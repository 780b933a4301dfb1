#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "sandbox/Http.h"
#include "sandbox/Outcome.h"
#include "sandbox/Scenario.h"
#include "sandbox/console/Console.h"

namespace kestrova::sandbox {

// The pages for the developer's own browser and tools:
//   GET  /record, and / for who does not ask for HTML: the listing
//   GET  elsewhere: the console
//   POST /control/scenarios               fault=FAULT, and if wanted step=STEP, times=once|always,
//                                         and status=NUMBER for NUMBER in the fault's name
//   POST /control/scenarios/clear
//   POST /control/authentications/delete  key=KEY, strays=yes or all=yes
// Answers only under a name of this machine, and has nothing for the pages of other sites.
class Control final : public HttpHandler {
 public:
  struct Actions {
    std::function<std::string()> listing;
    std::function<bool(Scenario)> setScenario;
    std::function<void()> clearScenarios;
    // An authentication; where the key is empty the requests of none; without a key everything.
    std::function<std::optional<Failure>(std::optional<std::string> key)> remove;
  };

  Control(Console console, Actions actions);

  // The port under which browsers find these pages. Before the first answer.
  void setPort(std::uint16_t port) { port_ = std::to_string(port); }

  HttpAnswer answer(const HttpRequest& request) override;

 private:
  bool isOwnHost(std::string_view host) const;
  // Whether another site's page is behind the request.
  bool isForeign(const HttpRequest& request) const;
  HttpAnswer route(const HttpRequest& request) const;
  HttpAnswer setScenario(const HttpRequest& request) const;
  HttpAnswer remove(const HttpRequest& request) const;

  Console console_;
  Actions actions_;
  std::string port_;
};

}  // namespace kestrova::sandbox
