#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kestrova::walk {

// A screen of the flow. `below` stands for the screen under the current one, `host` for the end of
// the flow.
enum class Place {
  host,
  nationality,
  email,
  selfie,
  document,
  frontSide,
  backSide,
  congratulations,
  warning,
  below
};

enum class Event {
  arrival,     // the screen has come
  primary,     // its main button, or Return in its field, with both keys there
  missingKey,  // the same without one of the keys
  repeat,      // the same while a request of this visit is unanswered
  pictures,    // the liveness engine gave pictures, or a photograph was accepted
  answer,      // a JSON object, for the visit that asked
  lateAnswer,  // a JSON object, after the screen was left
  silence,     // no answer, or none that is a JSON object
  goBack,      // the chevron or Alt+Left
  leave,       // Close, Finish, Escape, or the end of the host's window
};

// What an event may cause on a screen, at most once for each time it happens. What no rule allows
// is a fault.
struct Rule {
  Place at;
  Event event;
  std::vector<Place> next;
  // Steps as they go over the wire.
  std::vector<std::string_view> requests;
  // For docs/flow.md.
  std::string_view text;
};

const std::vector<Rule>& flowModel();
// Null where nothing may happen.
const Rule* ruleFor(Place at, Event event);
std::string_view nameOf(Place place);

// The tables of docs/flow.md that follow from the model, in Markdown.
std::string flowTable();

}  // namespace kestrova::walk
