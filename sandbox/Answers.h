#pragma once

#include <string>
#include <string_view>

#include "sandbox/Http.h"
#include "sandbox/Scenario.h"

namespace kestrova::sandbox {

// What the backend has to say about a step.
struct StepResult {
  std::string key;            // of the authentication just opened; empty otherwise
  std::string_view nextStep;  // empty for the assessments
};

HttpAnswer ordinaryAnswer(const StepResult& result);

// The answer as the fault leaves it.
HttpAnswer faultyAnswer(const Scenario& scenario, const StepResult& result);

// Whether a client can still read an authentication's key out of the faulty answer.
bool deliversKey(Fault fault);

// The terms and privacy pages.
HttpAnswer termsPage();
HttpAnswer privacyPage();

}  // namespace kestrova::sandbox
