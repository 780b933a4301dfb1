#include "sandbox/Control.h"

#include <array>
#include <exception>
#include <utility>

#include "sandbox/FormContract.h"
#include "sandbox/Text.h"

namespace kestrova::sandbox {

namespace {

// Nothing but our own files is loaded, nothing inline runs, and no other page shows or reads these.
constexpr std::array<std::pair<const char*, const char*>, 5> protection{
    {{"Content-Security-Policy",
      "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; media-src 'self'; "
      "connect-src 'self'; form-action 'self'; base-uri 'none'; frame-ancestors 'none'"},
     {"Referrer-Policy", "no-referrer"},
     {"X-Frame-Options", "DENY"},
     {"Cross-Origin-Resource-Policy", "same-origin"},
     {"Cross-Origin-Opener-Policy", "same-origin"}}};

bool wantsPage(const HttpRequest& request) {
  return request.header("Accept").find("text/html") != std::string_view::npos;
}

// After a form: a browser goes on to the page, a tool is told.
HttpAnswer done(const HttpRequest& request, std::string_view page) {
  if (!wantsPage(request)) {
    return {200, "application/json", R"({"status":"ok"})", Delivery::whole};
  }
  return {303, "text/plain; charset=utf-8", "", Delivery::whole, {{"Location", std::string(page)}}};
}

}  // namespace

Control::Control(Console console, Actions actions)
    : console_(console), actions_(std::move(actions)) {}

bool Control::isOwnHost(std::string_view host) const {
  constexpr std::array<std::string_view, 3> names{"localhost", "127.0.0.1", "[::1]"};
  for (const auto name : names) {
    if (equalIgnoringCase(host, std::string(name) + ':' + port_)) return true;
  }
  return false;
}

bool Control::isForeign(const HttpRequest& request) const {
  const auto site = request.header("Sec-Fetch-Site");
  const bool otherSite = site == "same-site" || site == "cross-site";
  // Following a link to a page is all that a browser may do from elsewhere.
  const bool link = request.method == "GET" && request.header("Sec-Fetch-Mode") == "navigate";
  if (otherSite && !link) return true;
  const auto origin = request.header("Origin");
  if (origin.empty()) return false;
  // A form of a page that sends no referrer has no origin to tell either, but the site.
  if (origin == "null") return site != "same-origin";
  constexpr std::string_view scheme = "http://";
  return !origin.starts_with(scheme) || !isOwnHost(origin.substr(scheme.size()));
}

HttpAnswer Control::answer(const HttpRequest& request) {
  HttpAnswer answer;
  try {
    answer = route(request);
  } catch (const std::exception& error) {  // the record cannot be read
    answer = errorAnswer(500, error.what());
  }
  for (const auto& [name, value] : protection) answer.headers.emplace_back(name, value);
  return answer;
}

HttpAnswer Control::route(const HttpRequest& request) const {
  if (!isOwnHost(request.header("Host"))) {
    return errorAnswer(403, "this listener answers on localhost:" + port_ + " only");
  }
  if (isForeign(request)) return errorAnswer(403, "pages of other sites have no say here");
  if (request.method == "GET") {
    if (request.target == "/record" || (request.target == "/" && !wantsPage(request))) {
      return {200,
              "text/plain; charset=utf-8",
              actions_.listing(),
              Delivery::whole,
              {{"Vary", "Accept"}}};
    }
    return console_.get(request);
  }
  if (request.method == "POST") {
    if (request.target == "/control/scenarios") return setScenario(request);
    if (request.target == "/control/scenarios/clear") {
      actions_.clearScenarios();
      return done(request, "/scenarios");
    }
    if (request.target == "/control/authentications/delete") return remove(request);
  }
  return errorAnswer(404, "no such resource");
}

HttpAnswer Control::setScenario(const HttpRequest& request) const {
  const auto fields = readLooseForm(request.body);
  const auto valueOf = [&](std::string_view key) {
    const auto* const value = fields.find(key);
    return value != nullptr ? *value : std::string();
  };
  ScenarioForm form{valueOf("fault"), valueOf("status"), valueOf("step"), false, {}};
  const auto times = valueOf("times");
  form.once = times == "once";
  const auto refuse = [&](std::string why) {
    if (!wantsPage(request)) return errorAnswer(400, why);
    form.wrong = std::move(why);
    return console_.refused(form);
  };
  auto fault = form.fault;
  constexpr std::string_view placeholder = "NUMBER";
  if (const auto at = fault.find(placeholder); at != fault.npos && !form.status.empty()) {
    fault.replace(at, placeholder.size(), form.status);
  }
  if (fault.empty()) return refuse("the field fault is missing");
  if (fault.find_first_of("@:") != fault.npos || form.step.find(':') != form.step.npos) {
    return refuse("fault and step are fields of their own");
  }
  if (!times.empty() && times != "once" && times != "always") {
    return refuse("times is once or always");
  }
  const auto scenario = parseScenario(fault + (form.step.empty() ? "" : '@' + form.step) +
                                      (form.once ? ":once" : ""));
  if (!scenario) return refuse(scenario.error());
  if (!actions_.setScenario(scenario.value())) return refuse("this scenario cannot be played");
  return done(request, "/scenarios");
}

HttpAnswer Control::remove(const HttpRequest& request) const {
  const auto fields = readLooseForm(request.body);
  const auto says = [&](std::string_view name) {
    const auto* const value = fields.find(name);
    return value != nullptr && *value == "yes";
  };
  const auto* const key = fields.find("key");
  std::optional<std::string> wanted;
  if (key != nullptr && !key->empty()) {
    wanted = *key;
  } else if (says("strays")) {
    wanted = "";
  } else if (!says("all")) {
    return errorAnswer(400, "expected a key, strays=yes or all=yes");
  }
  if (const auto failure = actions_.remove(wanted)) return errorAnswer(500, failure->text);
  return done(request, "/");
}

}  // namespace kestrova::sandbox
