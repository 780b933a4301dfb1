#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kestrova::sandbox {

// A step's name for people; empty where no step is called that.
std::string_view stepTitle(std::string_view step);

// A document type's name for people; empty where no type is called that.
std::string_view documentTitle(std::string_view type);

// The steps in the order of a run.
std::vector<std::string_view> stepsInOrder();

// A fault that can be chosen.
struct FaultChoice {
  std::string_view name;  // as faultNames() has it
  std::string_view title;
  std::string_view effect;
};

struct FaultGroup {
  std::string_view title;
  bool wholeListener = false;  // takes neither a step nor once
  std::vector<FaultChoice> faults;
};

// Every fault of the sandbox.
const std::vector<FaultGroup>& faultGroups();

// "2026-01-31T12:00:00.000Z" as "2026-01-31" and "12:00:00.000".
std::string_view dateOf(std::string_view received);
std::string_view timeOf(std::string_view received);
// From one to the other as "+0.320 s"; empty where one is no time.
std::string elapsed(std::string_view from, std::string_view to);

}  // namespace kestrova::sandbox
