#include "sdk/core/Kestrova.h"

#include <utility>

#include "platform/dispatch/MainLoop.h"
#include "platform/foundation/Print.h"
#include "platform/uikit/UIApplication.h"
#include "platform/uikit/UIViewController.h"
#include "sdk/backend/API.h"
#include "sdk/flow/Flow.h"
#include "sdk/ui/Extensions.h"

namespace kestrova {

namespace {

// Not a member: a host program may hold its own copy of an exported object.
const char kInThisLibrary = 0;

std::string description(const std::optional<std::string>& text) {
  return text ? "Optional(" + platform::quoted(*text) + ")" : "nil";
}

void storeAuthentication(const JSONDictionary& answer) {
  print("createAuthentication response: " + platform::description(answer));
  const auto* const key = textForKey(answer, "key");
  if (!key) {
    print("Could not initialize authentication");
    return;
  }
  const auto* const next = textForKey(answer, "next_step");
  if (!next) {
    print("next_step not found");
    return;
  }
  Kestrova::authentication_key = *key;
  Kestrova::next_step = *next;
}

void present(const std::shared_ptr<UIViewController>& from) {
  if (!UIApplication::exists()) {
    return print("Kestrova: nothing is presented: the process has no application object");
  }
  if (!from) return print("Kestrova: nothing is presented: the presenting screen is null");
  const auto flow = makeFlow();
  if (!flow) {
    return print("Kestrova: nothing is presented: " + flow.error().localizedDescription);
  }
  from->present(flow.value(), true);
}

}  // namespace

std::optional<std::string> Kestrova::apiKey;
std::optional<std::string> Kestrova::authentication_key;
std::optional<std::string> Kestrova::step;
std::optional<std::string> Kestrova::next_step;
std::optional<std::string> Kestrova::message;
std::optional<std::string> Kestrova::status;
std::optional<std::string> Kestrova::response_code;
std::optional<std::string> Kestrova::email;

void Kestrova::initialize(std::string key) {
  apiKey = std::move(key);
  UIFontExtensions::loadMyFonts();
  // A host's nib may name the button.
  registerFlowClasses();
}

void Kestrova::startVerification(const std::shared_ptr<UIViewController>& from) {
  // Attaches the main queue to the toolkit's thread, in case this is the first call.
  UIApplication::exists();
  if (!isMainThread()) {
    return print(
        "Kestrova: the verification cannot be started: startVerification was called off the main "
        "thread");
  }
  print("Kestrova API key is: " + description(apiKey));
  if (!apiKey) throw KestrovaError(KestrovaErrors::notInitializedApiKey);
  API::createAuthentication(*apiKey, storeAuthentication);
  present(from);
}

std::optional<Bundle> Kestrova::bundle() {
  const auto framework = Bundle::containing(&kInThisLibrary);
  const auto path = framework.path("Kestrova", "bundle");
  return path ? Bundle::at(*path) : std::nullopt;
}

}  // namespace kestrova
