#include "doctor/Report.h"

#include <algorithm>
#include <array>

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

namespace kestrova::doctor {

namespace {

constexpr std::array kNames{"ok", "note", "warning", "failure"};
constexpr std::array kColours{"\x1b[32m", "\x1b[36m", "\x1b[33m", "\x1b[31m"};

const char* nameOf(Severity severity) {
  return kNames.at(static_cast<std::size_t>(severity));
}

// A terminal obeys control characters; names of devices and certificates may hold any.
std::string harmless(std::string_view text) {
  std::string made;
  const auto decoded = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
  for (const char32_t character : decoded.toUcs4()) {
    made += QChar::isPrint(character) ? QString::fromUcs4(&character, 1).toStdString() : "?";
  }
  return made;
}

std::string padded(std::string text, std::size_t width) {
  text.resize(std::max(text.size() + 1, width), ' ');
  return text;
}

constexpr std::size_t kStatusWidth = 9;
constexpr std::size_t kCheckWidth = 11;

}  // namespace

Severity worst(const Findings& findings) {
  auto found = Severity::ok;
  for (const auto& finding : findings) found = std::max(found, finding.severity);
  return found;
}

std::string textReport(const Finding& finding, bool hasColours) {
  std::string text = padded(nameOf(finding.severity), kStatusWidth);
  if (hasColours) {
    text = kColours.at(static_cast<std::size_t>(finding.severity)) + text + "\x1b[0m";
  }
  text += padded(finding.check, kCheckWidth) + harmless(finding.found) + '\n';
  if (!finding.advice.empty()) {
    text += std::string(kStatusWidth + kCheckWidth, ' ') + harmless(finding.advice) + '\n';
  }
  return text;
}

std::string summary(const Findings& findings, bool ofAllChecks) {
  const auto count = [&](Severity severity) {
    return std::to_string(std::count_if(findings.begin(), findings.end(), [&](const auto& finding) {
      return finding.severity == severity;
    }));
  };
  const auto say = [&](const char* ofMachine, const char* ofChecks) {
    return std::string(ofAllChecks ? ofMachine : ofChecks);
  };
  switch (worst(findings)) {
    case Severity::failure:
      return say("A verification will not work here", "What was looked at does not work") +
             ": failures " + count(Severity::failure) + ", warnings " + count(Severity::warning) +
             ".\n";
    case Severity::warning:
      return say("A verification may work here", "What was looked at may work") + ": warnings " +
             count(Severity::warning) + ".\n";
    default:
      return say("A verification will work here.\n", "What was looked at is in order.\n");
  }
}

std::string jsonReport(const Findings& findings) {
  QJsonArray list;
  for (const auto& finding : findings) {
    list.append(QJsonObject{{"check", QString::fromStdString(finding.check)},
                            {"severity", nameOf(finding.severity)},
                            {"found", QString::fromStdString(finding.found)},
                            {"advice", QString::fromStdString(finding.advice)}});
  }
  const QJsonObject report{{"status", nameOf(worst(findings))}, {"findings", list}};
  return QJsonDocument(report).toJson().toStdString();
}

std::optional<Findings> parsedReport(std::string_view text) {
  const auto bytes = QByteArray(text.data(), static_cast<qsizetype>(text.size()));
  const auto list = QJsonDocument::fromJson(bytes).object().value("findings");
  if (!list.isArray()) return std::nullopt;
  Findings findings;
  for (const auto& entry : list.toArray()) {
    const auto object = entry.toObject();
    const auto severity = object.value("severity").toString().toStdString();
    const auto* const name = std::find(kNames.begin(), kNames.end(), severity);
    if (name == kNames.end()) return std::nullopt;
    findings.push_back({object.value("check").toString().toStdString(),
                        static_cast<Severity>(name - kNames.begin()),
                        object.value("found").toString().toStdString(),
                        object.value("advice").toString().toStdString()});
  }
  return findings;
}

}  // namespace kestrova::doctor
