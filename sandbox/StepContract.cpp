#include "sandbox/StepContract.h"

#include <algorithm>
#include <utility>

#include "sandbox/Text.h"

namespace kestrova::sandbox {

namespace {

constexpr std::string_view assessmentToken = "authentication_assessments[][token]";
constexpr std::string_view assessmentValue = "authentication_assessments[][value]";

const std::vector<StepRule>& rules() {
  static const FileRule video{"video", "video.mov", "video/quicktime"};
  static const FileRule picture{"picture", "picture.png", "image/png"};
  // In the order of a run, so that the rule below another is the step that follows.
  static const std::vector<StepRule> table{
      {"initialize", authenticationsPath, {}, "", {}},
      {"set_nationality", stepsPath, {"country_code"}, "initialize", {}},
      {"signup", stepsPath, {"identifier", "identifier_type"}, "set_nationality", {}},
      {"record_face_video", uploadsPath, {}, "signup", video},
      {"check_face_video", stepsPath, {}, "record_face_video", {}},
      {"choose_authentication_document",
       stepsPath,
       {"authentication_method"},
       "record_face_video",
       {}},
      {"record_authentication_document_video",
       uploadsPath,
       {},
       "choose_authentication_document",
       picture},
      {"check_authentication_document_video",
       stepsPath,
       {},
       "record_authentication_document_video",
       {}},
      {"record_authentication_document_video_back",
       uploadsPath,
       {},
       "record_authentication_document_video",
       picture},
      {"check_authentication_document_video_back",
       stepsPath,
       {},
       "record_authentication_document_video_back",
       {}},
      {"check_authentication_document_video_success",
       stepsPath,
       {},
       "record_authentication_document_video_back",
       {}},
      // Beside the run: sent while the face video is on its way.
      {"authentication_assessments", assessmentsPath, {}, "signup", {}},
  };
  return table;
}

bool isAssessments(const StepRule& rule) {
  return rule.path == assessmentsPath;
}

std::vector<std::string_view> expectedKeys(const StepRule& rule) {
  std::vector<std::string_view> keys = rule.keys;
  keys.emplace_back("api_key");
  if (isAssessments(rule)) {
    keys.emplace_back(assessmentToken);
    keys.emplace_back(assessmentValue);
  } else {
    keys.emplace_back("step");
  }
  if (const auto key = authenticationField(rule); !key.empty()) keys.push_back(key);
  return keys;
}

bool isDecimal(std::string_view text) {
  if (text.starts_with('-')) text.remove_prefix(1);
  const auto point = text.find('.');
  const auto digits = [](std::string_view part) {
    return !part.empty() &&
           std::all_of(part.begin(), part.end(), [](char c) { return c >= '0' && c <= '9'; });
  };
  return point != text.npos && digits(text.substr(0, point)) && digits(text.substr(point + 1));
}

bool isCountryCode(std::string_view text) {
  return text.size() == 2 && std::all_of(text.begin(), text.end(), [](char c) {
           return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
         });
}

// What the value should have been; empty where it is right.
std::string_view expectedValue(std::string_view key, std::string_view value) {
  if (key == "country_code" && !isCountryCode(value)) return "two ASCII letters";
  if (key == "identifier_type" && value != "email") return "\"email\"";
  if (key == "identifier" && value.empty()) return "an e-mail address";
  if (key == "authentication_method" && value != passport && value != "DRIVERS_LICENSE" &&
      value != "NATIONAL_ID_CARD") {
    return "PASSPORT, DRIVERS_LICENSE or NATIONAL_ID_CARD";
  }
  if (key == assessmentToken && value != "LIVENESS_FACTOR") return "\"LIVENESS_FACTOR\"";
  if (key == assessmentValue && !isDecimal(value)) return "a decimal number with a fraction";
  return {};
}

// Each assessment is a token and then its value.
void checkAssessmentOrder(Fields& fields) {
  std::string_view wanted = assessmentToken;
  for (const auto& [key, value] : fields.pairs) {
    if (key != assessmentToken && key != assessmentValue) continue;
    if (key != wanted) {
      fields.deviations.push_back("expected each assessment's token and then its value, came " +
                                  printable(key) + " twice or first");
      return;
    }
    wanted = key == assessmentToken ? assessmentValue : assessmentToken;
  }
  if (wanted == assessmentValue) {
    fields.deviations.emplace_back("the last assessment has a token without a value");
  }
}

bool hasSignature(std::string_view contentType, std::string_view data) {
  if (contentType == "image/png") return data.starts_with("\x89PNG\r\n\x1a\n");
  return data.size() >= 8 && data.substr(4, 4) == "ftyp";
}

}  // namespace

const StepRule* findStep(std::string_view step) {
  const auto found = std::find_if(rules().begin(), rules().end(),
                                  [&](const StepRule& rule) { return rule.step == step; });
  return found == rules().end() ? nullptr : &*found;
}

bool isKnownStep(std::string_view step) {
  return findStep(step) != nullptr;
}

bool History::has(std::string_view step) const {
  return std::find(steps.begin(), steps.end(), step) != steps.end();
}

std::string_view authenticationField(const StepRule& rule) {
  if (rule.path == authenticationsPath) return {};
  return isAssessments(rule) ? "authentication_key" : "key";
}

void checkFields(const StepRule& rule, Fields& fields) {
  const auto expected = expectedKeys(rule);
  for (const auto key : expected) {
    const auto count = std::count_if(fields.pairs.begin(), fields.pairs.end(),
                                     [&](const auto& pair) { return pair.first == key; });
    const bool repeats = key == assessmentToken || key == assessmentValue;
    if (count == 0) fields.deviations.push_back("field " + printable(key) + " is missing");
    if (count > 1 && !repeats) {
      fields.deviations.push_back("field " + printable(key) + " came " + std::to_string(count) +
                                  " times");
    }
  }
  for (const auto& [key, value] : fields.pairs) {
    if (std::find(expected.begin(), expected.end(), key) == expected.end()) {
      fields.deviations.push_back("field " + printable(key) + " is none of this request's");
    } else if (const auto wanted = expectedValue(key, value); !wanted.empty()) {
      fields.deviations.push_back(printable(key) + ": expected " + std::string(wanted) + ", came " +
                                  printable(value));
    }
  }
  if (isAssessments(rule)) checkAssessmentOrder(fields);
}

void checkFile(const StepRule& rule, const Multipart& form, std::vector<std::string>& deviations) {
  const auto compare = [&](std::string_view what, std::string_view wanted, std::string_view came) {
    if (wanted == came) return;
    deviations.push_back("file part: expected " + std::string(what) + " " + printable(wanted) +
                         ", came " + printable(came));
  };
  const Part* file = nullptr;
  for (const auto& part : form.parts) {
    if (!part.fileName) {
      if (file != nullptr) {
        deviations.push_back("field " + printable(part.name) + " came after the file part");
      }
    } else if (file != nullptr) {
      deviations.push_back("a second file part, field " + printable(part.name));
    } else {
      file = &part;
    }
  }
  if (file == nullptr) {
    deviations.emplace_back("the file part is missing");
    return;
  }
  compare("field", rule.file->field, file->name);
  compare("file name", rule.file->fileName, *file->fileName);
  compare("Content-Type", rule.file->contentType, file->contentType.value_or(""));
  if (!hasSignature(rule.file->contentType, file->data)) {
    deviations.push_back("file part: expected the first bytes of " +
                         std::string(rule.file->contentType) + ", came " +
                         printable(file->data.substr(0, 12)));
  }
}

void checkOrder(const StepRule& rule, const Fields& fields, const History& history,
                std::vector<std::string>& deviations) {
  const auto* const apiKey = fields.find("api_key");
  if (apiKey != nullptr && *apiKey != history.apiKey) {
    deviations.push_back("expected the api_key " + printable(history.apiKey) +
                         " of this authentication, came " + printable(*apiKey));
  }
  const bool isPassport = history.documentType == passport;
  auto after = rule.after;
  if (isPassport && rule.step == "check_authentication_document_video_success") {
    after = "record_authentication_document_video";
  }
  if (isPassport && rule.step.ends_with("_back")) {
    deviations.push_back(std::string(rule.step) + " came though a passport has no back");
  }
  if (!after.empty() && !history.has(after)) {
    deviations.push_back(std::string(rule.step) + " came before " + std::string(after));
  }
}

std::string_view nextStep(std::string_view step, std::string_view documentType) {
  const auto* const rule = findStep(step);
  if (rule == nullptr || isAssessments(*rule)) return {};
  if (step == "check_authentication_document_video_success") return "finished";
  if (step == "check_authentication_document_video" && documentType == passport) {
    return "check_authentication_document_video_success";
  }
  return (rule + 1)->step;
}

}  // namespace kestrova::sandbox
