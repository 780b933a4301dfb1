#include "sandbox/Answers.h"

#include "sandbox/Text.h"

namespace kestrova::sandbox {

namespace {

HttpAnswer page(std::string_view title, std::string_view text) {
  std::string body =
      "<!doctype html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
      "<link rel=\"icon\" href=\"data:,\">\n<title>";
  body.append(title).append(
      "</title>\n<style>\nbody { margin: 0; background: #f4f6fa; color: #1c2430;\n"
      "  font: 1rem/1.6 system-ui, sans-serif; }\n"
      "main { max-width: 38rem; margin: 3rem auto; padding: 2rem; background: #fff;\n"
      "  border-radius: 0.75rem; }\n"
      "h1 { margin-top: 0; color: #0057ff; font-size: 1.6rem; }\n"
      "p.note { color: #5a6473; font-size: 0.9rem; }\n</style>\n</head>\n<body>\n<main>\n<h1>");
  body.append(title).append("</h1>\n").append(text).append(
      "<p class=\"note\">This page is served by the sandbox on your own machine. It stands in for "
      "the page of the service and binds nobody.</p>\n</main>\n</body>\n</html>\n");
  return {200, "text/html; charset=utf-8", std::move(body), Delivery::whole};
}

}  // namespace

HttpAnswer ordinaryAnswer(const StepResult& result) {
  std::string body =
      result.key.empty() ? R"({"status":"ok")" : R"({"key":)" + jsonString(result.key);
  if (!result.nextStep.empty()) body += R"(,"next_step":)" + jsonString(result.nextStep);
  body += '}';
  return {200, "application/json", std::move(body), Delivery::whole};
}

HttpAnswer faultyAnswer(const Scenario& scenario, const StepResult& result) {
  HttpAnswer answer = ordinaryAnswer(result);
  switch (scenario.fault) {
    case Fault::statusObject:
      return errorAnswer(scenario.status, "the sandbox plays " + faultName(scenario));
    case Fault::statusText:
      return {scenario.status, "text/plain; charset=utf-8",
              "The sandbox plays " + faultName(scenario) + ".\n", Delivery::whole};
    case Fault::malformedJson:
      answer.body.pop_back();
      break;
    case Fault::topLevelArray:
      answer.body = '[' + answer.body + ']';
      break;
    case Fault::emptyBody:
      answer.body.clear();
      break;
    case Fault::noContent:
      answer = {204, "", "", Delivery::whole};
      break;
    case Fault::noNextStep:
      answer = ordinaryAnswer({result.key, {}});
      break;
    case Fault::slowBytes:
      answer.delivery = Delivery::byteByByte;
      break;
    case Fault::stall:
      answer.delivery = Delivery::stalled;
      break;
    case Fault::neverAnswers:
      answer.delivery = Delivery::never;
      break;
    // Met before an answer is due, or by the listener.
    case Fault::cut:
    case Fault::unknownAuthority:
    case Fault::expiredCertificate:
    case Fault::wrongHost:
    case Fault::refuse:
      break;
  }
  return answer;
}

bool deliversKey(Fault fault) {
  return fault == Fault::noNextStep || fault == Fault::slowBytes;
}

HttpAnswer termsPage() {
  return page("Terms of use",
              "<p>Verifying your identity takes a few minutes. You choose your nationality, give "
              "an e-mail address, record a short selfie video and photograph an identity "
              "document.</p>\n<p>Use a document of your own that has not expired, and record "
              "yourself, not a picture of someone.</p>\n<p>You can stop at any time by closing the "
              "verification. What was sent until then stays with the service.</p>\n");
}

HttpAnswer privacyPage() {
  return page("Privacy policy",
              "<p>During a verification these data are sent: your nationality, your e-mail "
              "address, a selfie video with the outcome of the liveness check, and pictures of "
              "your identity document.</p>\n<p>They travel encrypted and serve to verify your "
              "identity for the company that asked you to.</p>\n<p>Here they are kept in a folder "
              "of the user who runs the sandbox, readable by that user alone, until the folder is "
              "deleted.</p>\n");
}

}  // namespace kestrova::sandbox
