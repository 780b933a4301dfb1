#include "tests/walk/FlowModel.h"

#include <algorithm>
#include <array>
#include <span>

namespace kestrova::walk {

namespace {

using enum Place;
using enum Event;

constexpr std::array<std::string_view, 10> kNames{
    "Host",           "Nationality",   "E-mail",          "Selfie",  "Document type",
    "Document front", "Document back", "Congratulations", "Warning", "The screen below"};

}  // namespace

std::string_view nameOf(Place place) {
  return kNames.at(std::size_t(place));
}

const std::vector<Rule>& flowModel() {
  // clang-format off
  static const std::vector<Rule> rules{
      {host, primary, {nationality}, {"initialize"}, {}},
      {host, answer, {}, {}, {}},
      {host, lateAnswer, {}, {}, {}},

      {nationality, primary, {}, {"set_nationality"}, {}},
      {nationality, answer, {email}, {}, "any JSON object: to e-mail"},
      {nationality, lateAnswer, {}, {}, "logged, moves nothing"},
      {nationality, silence, {}, {}, "stays, \"Next\" works"},
      {nationality, missingKey, {warning}, {}, "to the warning"},
      {nationality, repeat, {}, {"set_nationality"}, "another request; the first answer moves on"},
      {nationality, leave, {host}, {}, {}},

      {email, primary, {}, {"signup"}, {}},
      {email, answer, {selfie}, {}, "any JSON object: to the selfie, spinner hidden"},
      {email, lateAnswer, {}, {}, "logged, moves nothing"},
      {email, silence, {}, {}, "stays under its spinner, which says what to do: after 15 s, at once where it failed"},
      {email, missingKey, {warning}, {}, "to the warning, without spinner when it comes back"},
      {email, repeat, {}, {}, "out of reach under the spinner's veil"},
      {email, goBack, {below}, {}, {}},
      {email, leave, {host}, {}, {}},

      {selfie, primary, {}, {}, {}},
      {selfie, pictures, {}, {"record_face_video", "authentication_assessments"}, {}},
      {selfie, answer, {document}, {"check_face_video"}, "any JSON object: overlay hidden, to the document type"},
      {selfie, lateAnswer, {}, {"check_face_video"}, "logged; the check is sent, moves nothing"},
      {selfie, silence, {}, {}, "stays under its overlay, which says what to do: after 15 s, at once where it failed"},
      {selfie, missingKey, {warning}, {}, "to the warning"},
      {selfie, repeat, {}, {}, "out of reach under the overlay; one engine at a time"},
      {selfie, goBack, {below}, {}, {}},
      {selfie, leave, {host}, {}, {}},

      {document, primary, {frontSide}, {"choose_authentication_document"}, {}},
      {document, answer, {}, {}, "stored; the screen has moved on"},
      {document, lateAnswer, {}, {}, "logged and stored, also when the flow is gone"},
      {document, silence, {}, {}, "nothing, the screen has moved on"},
      {document, missingKey, {warning}, {}, "to the warning; its own segue is dropped with a line"},
      {document, repeat, {}, {}, "pushed once"},
      {document, goBack, {below}, {}, {}},
      {document, leave, {host}, {}, {}},

      {frontSide, primary, {}, {}, {}},
      {frontSide, pictures, {}, {"record_authentication_document_video"}, {}},
      {frontSide, answer, {backSide, congratulations}, {"check_authentication_document_video"}, "any JSON object: the check is sent; to the back, of a passport to congratulations"},
      {frontSide, lateAnswer, {}, {"check_authentication_document_video"}, "logged; the check is sent, moves nothing"},
      {frontSide, silence, {}, {}, "stays under its overlay, which says what to do: after 15 s, at once where it failed"},
      {frontSide, missingKey, {warning}, {}, "to the warning"},
      {frontSide, repeat, {}, {}, "out of reach under the overlay; one camera at a time"},
      {frontSide, goBack, {below}, {}, {}},
      {frontSide, leave, {host}, {}, {}},

      {backSide, primary, {}, {}, {}},
      {backSide, pictures, {}, {"record_authentication_document_video_back"}, {}},
      {backSide, answer, {congratulations}, {"check_authentication_document_video_back"}, "any JSON object: to congratulations; the check is sent"},
      {backSide, lateAnswer, {}, {"check_authentication_document_video_back"}, "logged; the check is sent, moves nothing"},
      {backSide, silence, {}, {}, "stays under its overlay, which says what to do: after 15 s, at once where it failed"},
      {backSide, missingKey, {warning}, {}, "to the warning"},
      {backSide, repeat, {}, {}, "out of reach under the overlay; one camera at a time"},
      {backSide, leave, {host}, {}, {}},

      {congratulations, arrival, {}, {"check_authentication_document_video_success"}, {}},
      {congratulations, answer, {}, {}, "logged"},
      {congratulations, lateAnswer, {}, {}, "logged"},
      {congratulations, silence, {}, {}, "nothing"},
      {congratulations, missingKey, {}, {}, "a line, no request"},
      {congratulations, leave, {host}, {}, {}},

      {warning, primary, {below}, {}, {}},
      {warning, leave, {host}, {}, {}},
  };
  // clang-format on
  return rules;
}

const Rule* ruleFor(Place at, Event event) {
  const auto found = std::ranges::find_if(
      flowModel(), [&](const Rule& rule) { return rule.at == at && rule.event == event; });
  return found == flowModel().end() ? nullptr : &*found;
}

std::string flowTable() {
  constexpr std::array kScreens{nationality, email,    selfie,          document,
                                frontSide,   backSide, congratulations, warning};
  constexpr std::array kColumns{answer, lateAnswer, silence, missingKey, repeat};
  const auto cell = [](std::string_view text) {
    return (text.empty() ? "–" : std::string(text)) + " |";
  };
  std::string text =
      "| Screen | answer | late answer | silence | missing key | repeat tap |\n"
      "|---|---|---|---|---|---|\n";
  for (const auto place : kScreens) {
    text.append("| ").append(cell(nameOf(place)));
    for (const auto event : kColumns) {
      const auto* const rule = ruleFor(place, event);
      text.append(" ").append(cell(rule ? rule->text : ""));
    }
    text += "\n";
  }
  text += "\n| Screen | sends | leads to | Back leads to |\n|---|---|---|---|\n";
  for (const auto place : kScreens) {
    std::string sent;
    std::string led;
    for (const auto& rule : flowModel()) {
      if (rule.at != place || rule.event == goBack || rule.event == leave) continue;
      for (const auto step : rule.requests) {
        const auto quoted = "`" + std::string(step) + "`";
        if (sent.find(quoted) == std::string::npos) sent += (sent.empty() ? "" : ", ") + quoted;
      }
      for (const auto next : rule.next) {
        led += (led.empty() ? "" : ", ") + std::string(nameOf(next));
      }
    }
    text.append("| ").append(cell(nameOf(place))).append(" ").append(cell(sent));
    text.append(" ").append(cell(led)).append(" ");
    text.append(cell(ruleFor(place, goBack) ? nameOf(below) : "")).append("\n");
  }
  return text;
}

}  // namespace kestrova::walk
