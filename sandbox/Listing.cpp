#include "sandbox/Listing.h"

#include <string_view>
#include <unordered_map>
#include <vector>

#include "sandbox/Text.h"

namespace kestrova::sandbox {

namespace {

void append(std::string& out, const Request& request) {
  out += "  " + request.received + "  ";
  out += request.step.empty()        ? printable(request.method) + ' ' + printable(request.target)
         : isKnownStep(request.step) ? request.step
                                     : printable(request.step);
  out += request.status != 0 ? "  " + std::to_string(request.status) : "  unanswered";
  if (!request.fault.empty()) out += "  fault " + request.fault;
  out += '\n';
  for (const auto& [name, value] : request.parameters) {
    out += "    " + printable(name) + " = " + printable(value) + '\n';
  }
  if (request.upload) {
    const auto& file = *request.upload;
    out += "    file: field " + printable(file.field) + ", name " + printable(file.fileName) +
           ", type " + printable(file.contentType) + ", " + std::to_string(file.size) +
           " bytes, sha256 " + file.sha256 + '\n';
  }
  for (const auto& deviation : request.deviations) out += "    deviation: " + deviation + '\n';
}

}  // namespace

std::string listing(const Store& store, const ScenarioSet& scenarios) {
  std::string out = "Kestrova sandbox\n\nfaults that play:";
  const auto names = scenarios.names();
  if (names.empty()) out += " none";
  for (const auto& name : names) out += ' ' + name;
  out += "\n";

  // The authentications after the requests: whose opening is in one is in the other.
  const auto requests = store.requests();
  std::unordered_map<std::string_view, std::vector<const Request*>> requestsOf;
  for (const auto& request : requests) requestsOf[request.authentication].push_back(&request);
  for (const auto& authentication : store.authentications()) {
    out += "\nauthentication " + authentication.key + "\n  opened " + authentication.opened +
           ", api_key " + printable(authentication.apiKey) + '\n';
    for (const auto* const request : requestsOf[authentication.key]) append(out, *request);
  }
  if (const auto& strays = requestsOf[""]; !strays.empty()) {
    out += "\nrequests of no authentication\n";
    for (const auto* const request : strays) append(out, *request);
  }
  return out;
}

}  // namespace kestrova::sandbox
