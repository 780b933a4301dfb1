#include "sandbox/Scenario.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "sandbox/ScenarioSet.h"
#include "sandbox/StepContract.h"
#include "sandbox/Text.h"

namespace kestrova::sandbox {

namespace {

struct Named {
  Fault fault;
  std::string_view name;
};

constexpr std::array<Named, 13> plainFaults{{
    {Fault::malformedJson, "malformed-json"},
    {Fault::topLevelArray, "top-level-array"},
    {Fault::emptyBody, "empty-body"},
    {Fault::noContent, "no-content"},
    {Fault::noNextStep, "no-next-step"},
    {Fault::slowBytes, "slow-bytes"},
    {Fault::stall, "stall"},
    {Fault::neverAnswers, "never-answers"},
    {Fault::cut, "cut"},
    {Fault::unknownAuthority, "unknown-authority"},
    {Fault::expiredCertificate, "expired-certificate"},
    {Fault::wrongHost, "wrong-host"},
    {Fault::refuse, "refuse"},
}};

bool hasStatus(Fault fault) {
  return fault == Fault::statusObject || fault == Fault::statusText;
}

// Reads status-NUMBER-object and status-NUMBER-text.
bool readStatusFault(std::string_view name, Scenario& scenario) {
  constexpr std::string_view prefix = "status-";
  if (!name.starts_with(prefix)) return false;
  name.remove_prefix(prefix.size());
  const auto [end, error] =
      std::from_chars(name.data(), name.data() + name.size(), scenario.status);
  const std::string_view kind(end, static_cast<std::size_t>(name.data() + name.size() - end));
  if (error != std::errc{} || (kind != "-object" && kind != "-text")) return false;
  scenario.fault = kind == "-object" ? Fault::statusObject : Fault::statusText;
  return true;
}

bool readFault(std::string_view name, Scenario& scenario) {
  if (readStatusFault(name, scenario)) return true;
  const auto* const found =
      std::find_if(plainFaults.begin(), plainFaults.end(),
                   [&](const Named& candidate) { return candidate.name == name; });
  if (found == plainFaults.end()) return false;
  scenario.fault = found->fault;
  return true;
}

}  // namespace

bool concernsListener(Fault fault) {
  return fault >= Fault::unknownAuthority;
}

std::optional<std::string> whyUnplayable(const Scenario& scenario) {
  const int status = scenario.status;
  if (hasStatus(scenario.fault) &&
      (status < 200 || status > 599 || status == 204 || status == 205 || status == 304)) {
    return "a status is a number from 200 to 599, but not 204, 205 or 304";
  }
  if (concernsListener(scenario.fault) && (!scenario.step.empty() || scenario.once)) {
    return faultName(scenario) + " is for the whole listener: neither a step nor once";
  }
  if (!scenario.step.empty() && !isKnownStep(scenario.step)) {
    return "no step is called " + printable(scenario.step);
  }
  return std::nullopt;
}

Outcome<Scenario> parseScenario(std::string_view text) {
  Scenario scenario;
  constexpr std::string_view onceSuffix = ":once";
  if (text.ends_with(onceSuffix)) {
    scenario.once = true;
    text.remove_suffix(onceSuffix.size());
  }
  if (const auto at = text.find('@'); at != text.npos) {
    scenario.step = text.substr(at + 1);
    text = text.substr(0, at);
    if (scenario.step.empty()) return Failure{"a step is missing after @"};
  }
  if (!readFault(text, scenario)) return Failure{"no fault is called " + printable(text)};
  if (auto fault = whyUnplayable(scenario)) return Failure{*std::move(fault)};
  return scenario;
}

std::string faultName(const Scenario& scenario) {
  if (hasStatus(scenario.fault)) {
    return "status-" + std::to_string(scenario.status) +
           (scenario.fault == Fault::statusObject ? "-object" : "-text");
  }
  return std::string(
      std::find_if(plainFaults.begin(), plainFaults.end(), [&](const Named& candidate) {
        return candidate.fault == scenario.fault;
      })->name);
}

std::vector<std::string> faultNames() {
  std::vector<std::string> names{"status-NUMBER-object", "status-NUMBER-text"};
  for (const auto& fault : plainFaults) names.emplace_back(fault.name);
  return names;
}

}  // namespace kestrova::sandbox
