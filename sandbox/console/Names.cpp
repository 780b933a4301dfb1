#include "sandbox/console/Names.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <optional>
#include <system_error>
#include <utility>

namespace kestrova::sandbox {

namespace {

using std::chrono::milliseconds;

constexpr std::array<std::pair<std::string_view, std::string_view>, 12> steps{
    {{"initialize", "Opened"},
     {"set_nationality", "Nationality"},
     {"signup", "E-mail"},
     {"record_face_video", "Selfie video"},
     {"authentication_assessments", "Liveness assessment"},
     {"check_face_video", "Selfie check"},
     {"choose_authentication_document", "Document type"},
     {"record_authentication_document_video", "Front picture"},
     {"check_authentication_document_video", "Front check"},
     {"record_authentication_document_video_back", "Back picture"},
     {"check_authentication_document_video_back", "Back check"},
     {"check_authentication_document_video_success", "Success check"}}};

// The whole of the text as a number.
std::optional<unsigned> readNumber(std::string_view text) {
  unsigned number = 0;
  const auto* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc{} || stop != end) return std::nullopt;
  return number;
}

std::optional<milliseconds> readTime(std::string_view text) {
  constexpr std::string_view shape = "2026-01-31T12:00:00.000Z";
  if (text.size() != shape.size()) return std::nullopt;
  constexpr std::array<std::pair<std::size_t, std::size_t>, 7> places{
      {{0, 4}, {5, 2}, {8, 2}, {11, 2}, {14, 2}, {17, 2}, {20, 3}}};
  std::array<unsigned, places.size()> parts{};
  for (std::size_t i = 0; i < places.size(); ++i) {
    const auto number = readNumber(text.substr(places.at(i).first, places.at(i).second));
    if (!number) return std::nullopt;
    parts.at(i) = *number;
  }
  const auto& [year, month, day, hour, minute, second, milli] = parts;
  const std::chrono::sys_days date =
      std::chrono::year(static_cast<int>(year)) / std::chrono::month(month) / std::chrono::day(day);
  return date.time_since_epoch() + std::chrono::hours(hour) + std::chrono::minutes(minute) +
         std::chrono::seconds(second) + milliseconds(milli);
}

}  // namespace

std::string_view stepTitle(std::string_view step) {
  const auto* const found = std::find_if(steps.begin(), steps.end(),
                                         [&](const auto& known) { return known.first == step; });
  return found == steps.end() ? std::string_view() : found->second;
}

std::string_view documentTitle(std::string_view type) {
  if (type == "PASSPORT") return "Passport";
  if (type == "DRIVERS_LICENSE") return "Driver's licence";
  if (type == "NATIONAL_ID_CARD") return "ID card";
  return {};
}

std::vector<std::string_view> stepsInOrder() {
  std::vector<std::string_view> names;
  names.reserve(steps.size());
  for (const auto& [name, title] : steps) names.push_back(name);
  return names;
}

const std::vector<FaultGroup>& faultGroups() {
  static const std::vector<FaultGroup> groups{
      {"The answer",
       false,
       {{"status-NUMBER-object", "Error with an object", "Another status, with a JSON object."},
        {"status-NUMBER-text", "Error with text", "Another status, with plain text."},
        {"malformed-json", "Broken JSON", "Status 200; the JSON breaks off."},
        {"top-level-array", "Array", "Status 200; the object stands inside an array."},
        {"empty-body", "Empty body", "Status 200 with nothing."},
        {"no-content", "No content", "Status 204."},
        {"no-next-step", "No next step", "The answer without next_step."}}},
      {"The connection",
       false,
       {{"slow-bytes", "Slow answer", "The whole answer, byte by byte."},
        {"stall", "Half an answer", "The head and half of the body, then silence."},
        {"never-answers", "Silence", "The request is taken, nothing comes back."},
        {"cut", "Cut connection", "A reset while the request is on the way."}}},
      {"The network",
       true,
       {{"refuse", "Dead network", "No connection is accepted; open ones end."},
        {"unknown-authority", "Unknown authority", "A certificate of an authority nobody trusts."},
        {"expired-certificate", "Expired certificate", "A certificate that is out of date."},
        {"wrong-host", "Wrong host name", "A certificate for another host."}}},
  };
  return groups;
}

std::string_view dateOf(std::string_view received) {
  return received.substr(0, received.find('T'));
}

std::string_view timeOf(std::string_view received) {
  const auto at = received.find('T');
  if (at == received.npos) return received;
  received.remove_prefix(at + 1);
  return received.substr(0, received.find('Z'));
}

std::string elapsed(std::string_view from, std::string_view to) {
  const auto begin = readTime(from);
  const auto end = readTime(to);
  if (!begin || !end) return {};
  const auto seconds = static_cast<double>((*end - *begin).count()) / 1000;
  std::array<char, 48> out{};
  if (seconds < 100) {
    std::snprintf(out.data(), out.size(), "%+.3f s", seconds);
  } else if (seconds < 6000) {
    std::snprintf(out.data(), out.size(), "%+.1f min", seconds / 60);
  } else {
    std::snprintf(out.data(), out.size(), "%+.1f h", seconds / 3600);
  }
  return out.data();
}

}  // namespace kestrova::sandbox
