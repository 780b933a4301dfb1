// A host without a screen: sends every request of a verification, in the order of the flow, and
// ends with status 0 when each was answered.

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/dispatch/RunLoop.h"
#include "sdk/backend/API.h"
#include "sdk/backend/BackendTransport.h"
#include "sdk/core/Kestrova.h"

namespace {

using kestrova::API;
using kestrova::Kestrova;

constexpr auto kUsage =
    "usage: kestrova-wire --face MOVIE --front PICTURE --back PICTURE\n"
    "                     [--document passport|licence|id] [--country CODE] [--email ADDRESS]\n"
    "                     [--port PORT --authority FILE]\n"
    "PORT and FILE: a sandbox elsewhere than at its usual port and store.\n";

constexpr std::chrono::seconds kPatience{60};

using Options = std::map<std::string, std::string, std::less<>>;

std::optional<Options> parse(std::span<char*> arguments) {
  Options options{{"--face", ""},       {"--front", ""},     {"--back", ""},
                  {"--document", "id"}, {"--country", "de"}, {"--email", "ada@example.com"},
                  {"--port", ""},       {"--authority", ""}};
  for (std::size_t i = 0; i < arguments.size(); i += 2) {
    const auto option = options.find(std::string_view(arguments[i]));
    if (option == options.end() || i + 1 == arguments.size()) return std::nullopt;
    option->second = arguments[i + 1];
  }
  return options;
}

std::optional<std::string> documentType(std::string_view name) {
  if (name == "passport") return "PASSPORT";
  if (name == "licence") return "DRIVERS_LICENSE";
  if (name == "id") return "NATIONAL_ID_CARD";
  return std::nullopt;
}

// What the screens will do, one after the other; each step waits for its answer.
class Verification {
 public:
  Verification(Options options, std::string document)
      : options_(std::move(options)), document_(std::move(document)) {}

  bool run() {
    Kestrova::initialize("demo-key");
    Kestrova::startVerification(nullptr);
    if (!wait([] { return Kestrova::authentication_key.has_value(); })) return false;
    key_ = *Kestrova::authentication_key;
    const auto& api = *Kestrova::apiKey;

    std::vector<Step> steps{
        [&](auto done) { API::setNationality(api, key_, options_["--country"], done); },
        [&](auto done) { API::signupWithEmail(api, key_, options_["--email"], done); },
        [&](auto done) { API::recordFaceVideo(options_["--face"], api, key_, done); },
        [&](auto done) {
          const kestrova::JSONDictionary assessment{{"token", "LIVENESS_FACTOR"},
                                                    {"value", "0.99"}};
          API::sendLivenessScore(api, key_, {assessment}, done);
        },
        [&](auto done) { API::checkFaceVideo(api, key_, done); },
        [&](auto done) { API::chooseAuthenticationDocument(api, key_, document_, done); },
        [&](auto done) {
          API::recordAuthenticationDocumentPicFRONT(options_["--front"], api, key_, done);
        },
        [&](auto done) { API::checkAuthenticationDocumentPicFRONT(api, key_, done); },
    };
    if (document_ != "PASSPORT") {
      steps.emplace_back([&](auto done) {
        API::recordAuthenticationDocumentPicBACK(options_["--back"], api, key_, done);
      });
      steps.emplace_back(
          [&](auto done) { API::checkAuthenticationDocumentPicBACK(api, key_, done); });
    }
    steps.emplace_back(
        [&](auto done) { API::checkAuthenticationDocumentSuccess(api, key_, done); });
    return std::ranges::all_of(steps, [](const Step& step) {
      bool answered = false;
      step([&answered](const kestrova::JSONDictionary&) { answered = true; });
      return wait([&answered] { return answered; });
    });
  }

 private:
  using Step = std::function<void(API::StepCompletionHandler)>;

  static bool wait(const std::function<bool()>& condition) {
    return kestrova::RunLoop::runUntil(condition, kestrova::DispatchClock::now() + kPatience);
  }

  Options options_;
  const std::string document_;
  std::string key_;
};

int fail(const std::string& reason) {
  std::cerr << "kestrova-wire: " << reason << '\n';
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  const auto arguments = std::span(argv, static_cast<std::size_t>(argc)).subspan(1);
  auto options = parse(arguments);
  if (!options) return fail(std::string("bad arguments\n") + kUsage);
  const auto document = documentType((*options)["--document"]);
  if (!document) return fail("the document is passport, licence or id");
  for (const char* const file : {"--face", "--front", "--back"}) {
    if (!std::filesystem::is_regular_file((*options)[file])) {
      return fail(std::string(file) + " needs a file: \"" + (*options)[file] + "\"");
    }
  }
  if (const auto& port = (*options)["--port"]; !port.empty()) {
    auto configuration = kestrova::BackendTransport::defaultConfiguration();
    configuration.connectTo = KESTROVA_BACKEND_HOST ":127.0.0.1:" + port;
    configuration.trustedAuthorities = (*options)["--authority"];
    kestrova::BackendTransport::replace(kestrova::HTTPTransport::make(std::move(configuration)));
  }
  if (!Verification(std::move(*options), *document).run()) {
    return fail("the verification was not answered to its end; see the lines above");
  }
}
