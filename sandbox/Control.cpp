#include "sandbox/Control.h"

#include <array>
#include <utility>

#include "sandbox/FormContract.h"
#include "sandbox/Text.h"

namespace kestrova::sandbox {

namespace {

HttpAnswer done() {
  return {200, "application/json", R"({"status":"ok"})", Delivery::whole};
}

}  // namespace

Control::Control(Actions actions) : actions_(std::move(actions)) {}

bool Control::isOwnHost(std::string_view host) const {
  constexpr std::array<std::string_view, 3> names{"localhost", "127.0.0.1", "[::1]"};
  for (const auto name : names) {
    if (equalIgnoringCase(host, std::string(name) + ':' + port_)) return true;
  }
  return false;
}

HttpAnswer Control::answer(const HttpRequest& request) {
  if (!isOwnHost(request.header("Host"))) {
    return errorAnswer(403, "this listener answers on localhost:" + port_ + " only");
  }
  if (request.method == "GET" && request.target == "/") {
    return {200, "text/plain; charset=utf-8", actions_.listing(), Delivery::whole};
  }
  if (request.method != "POST" || !request.target.starts_with("/control/scenarios")) {
    return errorAnswer(404, "no such resource");
  }
  constexpr std::string_view scheme = "http://";
  const auto origin = request.header("Origin");
  if (!origin.empty() &&
      (!origin.starts_with(scheme) || !isOwnHost(origin.substr(scheme.size())))) {
    return errorAnswer(403, "pages of other sites have no say here");
  }
  if (request.target == "/control/scenarios") return setScenario(request);
  if (request.target == "/control/scenarios/clear") {
    actions_.clearScenarios();
    return done();
  }
  return errorAnswer(404, "no such resource");
}

HttpAnswer Control::setScenario(const HttpRequest& request) const {
  const auto form = readLooseForm(request.body);
  const auto valueOf = [&](std::string_view key) {
    const auto* const value = form.find(key);
    return value != nullptr ? *value : std::string();
  };
  const auto fault = valueOf("fault");
  const auto step = valueOf("step");
  const auto times = valueOf("times");
  if (fault.empty()) return errorAnswer(400, "the field fault is missing");
  if (fault.find_first_of("@:") != fault.npos || step.find(':') != step.npos) {
    return errorAnswer(400, "fault and step are fields of their own");
  }
  if (!times.empty() && times != "once" && times != "always") {
    return errorAnswer(400, "times is once or always");
  }
  const auto scenario =
      parseScenario(fault + (step.empty() ? "" : '@' + step) + (times == "once" ? ":once" : ""));
  if (!scenario) return errorAnswer(400, scenario.error());
  if (!actions_.setScenario(scenario.value())) {
    return errorAnswer(400, "this scenario cannot be played");
  }
  return done();
}

}  // namespace kestrova::sandbox
