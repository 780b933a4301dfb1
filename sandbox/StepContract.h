#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sandbox/FormContract.h"
#include "sandbox/MultipartContract.h"

namespace kestrova::sandbox {

// Paths of the interface.
inline constexpr std::string_view authenticationsPath = "/api/v1/authentications";
inline constexpr std::string_view stepsPath = "/api/v1/authentications/steps";
inline constexpr std::string_view uploadsPath = "/api/v1/authentications/document_files";
inline constexpr std::string_view assessmentsPath = "/api/v1/authentication_assessments";

// What an upload's file part must be.
struct FileRule {
  std::string_view field;
  std::string_view fileName;
  std::string_view contentType;
};

// What one step must be.
struct StepRule {
  std::string_view step;
  std::string_view path;
  std::vector<std::string_view> keys;  // besides api_key, the authentication's key and step
  std::string_view after;              // the step that must have come before; empty: none
  std::optional<FileRule> file;
};

// nullptr where no step is called that. The assessments count as the step
// "authentication_assessments".
const StepRule* findStep(std::string_view step);
bool isKnownStep(std::string_view step);

// What has come in for one authentication.
struct History {
  std::string apiKey;
  std::string documentType;  // the latest choice; empty before
  std::vector<std::string> steps;

  bool has(std::string_view step) const;
};

inline constexpr std::string_view passport = "PASSPORT";

// Keys absent, duplicated or unknown, and values of a wrong form. Adds to the deviations.
void checkFields(const StepRule& rule, Fields& fields);

// The file part against the step's rule.
void checkFile(const StepRule& rule, const Multipart& form, std::vector<std::string>& deviations);

// A step too early in the run, or for another integrator's key. What requests may overtake each
// other is no deviation, nor is a step that comes again.
void checkOrder(const StepRule& rule, const Fields& fields, const History& history,
                std::vector<std::string>& deviations);

// The name of the key field that carries the authentication's key; empty for "initialize".
std::string_view authenticationField(const StepRule& rule);

// The step that follows in a run; "finished" after the last. Empty for the assessments.
std::string_view nextStep(std::string_view step, std::string_view documentType);

}  // namespace kestrova::sandbox
