#pragma once

#include <string>
#include <vector>

#include "sandbox/Scenario.h"
#include "sandbox/console/Page.h"

namespace kestrova::sandbox {

// What was filled in; shown again beside what is wrong with it.
struct ScenarioForm {
  std::string fault;
  std::string status;
  std::string step;
  bool once = false;
  std::string wrong;  // empty: nothing
};

// The faults that play and the form that adds one.
HttpAnswer scenarioPage(const Frame& frame, const std::vector<Scenario>& playing,
                        const ScenarioForm& form);

}  // namespace kestrova::sandbox
