#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "sandbox/Http.h"
#include "sandbox/Scenario.h"

namespace kestrova::sandbox {

// The pages for the developer's own browser and tools:
//   GET  /                         the listing
//   POST /control/scenarios        fault=FAULT, and if wanted step=STEP and times=once|always
//   POST /control/scenarios/clear
// Answers only under a name of this machine, and changes nothing for the pages of other sites.
class Control final : public HttpHandler {
 public:
  struct Actions {
    std::function<std::string()> listing;
    std::function<bool(Scenario)> setScenario;
    std::function<void()> clearScenarios;
  };

  explicit Control(Actions actions);

  // The port under which browsers find these pages. Before the first answer.
  void setPort(std::uint16_t port) { port_ = std::to_string(port); }

  HttpAnswer answer(const HttpRequest& request) override;

 private:
  bool isOwnHost(std::string_view host) const;
  HttpAnswer setScenario(const HttpRequest& request) const;

  Actions actions_;
  std::string port_;
};

}  // namespace kestrova::sandbox
