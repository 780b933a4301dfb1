#pragma once

#include <string>
#include <vector>

namespace kestrova::doctor {

enum class Severity { ok, note, warning, failure };

// One thing that a check has found out.
struct Finding {
  // The check's name, the same in every version.
  std::string check;
  Severity severity = Severity::ok;
  // Foreign bytes (names of devices, of certificates) included: the report makes them harmless.
  std::string found;
  // What to do; empty where all is well.
  std::string advice;
};

using Findings = std::vector<Finding>;

}  // namespace kestrova::doctor
