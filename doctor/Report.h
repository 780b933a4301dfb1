#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "doctor/Finding.h"

namespace kestrova::doctor {

// The gravest of all; ok of none.
Severity worst(const Findings& findings);

// A finding as lines for people, control characters replaced; with colours for a terminal.
std::string textReport(const Finding& finding, bool hasColours);
// The last line; of some checks only, it does not speak for the machine.
std::string summary(const Findings& findings, bool ofAllChecks);

// {"status": "ok", "findings": [{"check", "severity", "found", "advice"}]}
std::string jsonReport(const Findings& findings);
// What jsonReport wrote; none for anything else.
std::optional<Findings> parsedReport(std::string_view text);

}  // namespace kestrova::doctor
