#include "sandbox/ScenarioSet.h"

#include <algorithm>
#include <utility>

namespace kestrova::sandbox {

void ScenarioSet::add(Scenario scenario) {
  const std::lock_guard lock(mutex_);
  scenarios_.push_back(std::move(scenario));
  ++changes_;
}

void ScenarioSet::clear() {
  const std::lock_guard lock(mutex_);
  scenarios_.clear();
  ++changes_;
}

std::optional<Scenario> ScenarioSet::take(std::string_view step) {
  return takeFirst(step, false);
}

std::optional<Scenario> ScenarioSet::takeCut(std::string_view step) {
  return takeFirst(step, true);
}

std::optional<Scenario> ScenarioSet::takeFirst(std::string_view step, bool cut) {
  const std::lock_guard lock(mutex_);
  const auto found =
      std::find_if(scenarios_.begin(), scenarios_.end(), [&](const Scenario& scenario) {
        return !concernsListener(scenario.fault) &&
               (scenario.step.empty() || scenario.step == step);
      });
  if (found == scenarios_.end() || (found->fault == Fault::cut) != cut) return std::nullopt;
  Scenario taken = *found;
  if (taken.once) {
    scenarios_.erase(found);
    ++changes_;
  }
  return taken;
}

bool ScenarioSet::mayCut() const {
  const std::lock_guard lock(mutex_);
  return std::any_of(scenarios_.begin(), scenarios_.end(),
                     [](const Scenario& scenario) { return scenario.fault == Fault::cut; });
}

std::optional<Fault> ScenarioSet::certificateFault() const {
  const std::lock_guard lock(mutex_);
  const auto found =
      std::find_if(scenarios_.rbegin(), scenarios_.rend(), [](const Scenario& scenario) {
        return concernsListener(scenario.fault) && scenario.fault != Fault::refuse;
      });
  if (found == scenarios_.rend()) return std::nullopt;
  return found->fault;
}

bool ScenarioSet::refuses() const {
  const std::lock_guard lock(mutex_);
  return std::any_of(scenarios_.begin(), scenarios_.end(),
                     [](const Scenario& scenario) { return scenario.fault == Fault::refuse; });
}

std::vector<Scenario> ScenarioSet::all() const {
  const std::lock_guard lock(mutex_);
  return scenarios_;
}

std::uint64_t ScenarioSet::changes() const {
  const std::lock_guard lock(mutex_);
  return changes_;
}

std::vector<std::string> ScenarioSet::names() const {
  const std::lock_guard lock(mutex_);
  std::vector<std::string> names;
  for (const auto& scenario : scenarios_) {
    names.push_back(faultName(scenario) + (scenario.step.empty() ? "" : "@" + scenario.step) +
                    (scenario.once ? ":once" : ""));
  }
  return names;
}

}  // namespace kestrova::sandbox
