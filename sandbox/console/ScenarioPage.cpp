#include "sandbox/console/ScenarioPage.h"

#include "sandbox/console/Names.h"

namespace kestrova::sandbox {

namespace {

// The choice that the scenario is one of, for people.
std::string_view titleOf(const Scenario& scenario) {
  auto name = faultName(scenario);
  if (scenario.fault == Fault::statusObject) name = "status-NUMBER-object";
  if (scenario.fault == Fault::statusText) name = "status-NUMBER-text";
  for (const auto& group : faultGroups()) {
    for (const auto& choice : group.faults) {
      if (choice.name == name) return choice.title;
    }
  }
  return {};
}

void appendPlaying(Html& html, const std::vector<Scenario>& playing) {
  html << "<section class=\"playing\" aria-labelledby=\"playing\" data-live=\"playing\">"
          "<h2 id=\"playing\">Playing now</h2>";
  if (playing.empty()) {
    html << "<p class=\"none\">None. The sandbox answers as the service would.</p></section>";
    return;
  }
  html << "<ol>";
  for (const auto& scenario : playing) {
    html << "<li><b>";
    html.text(titleOf(scenario)) << "</b> <code>";
    html.text(faultName(scenario)) << "</code><span>";
    if (concernsListener(scenario.fault)) {
      html << "Every connection";
    } else if (scenario.step.empty()) {
      html << "Every step";
    } else {
      html.text(stepTitle(scenario.step));
    }
    html << (scenario.once ? Markup(", once") : Markup(", always")) << "</span></li>";
  }
  html << "</ol><p class=\"none\">Of several that fit a request, the first one plays.</p>"
          "<form method=\"post\" action=\"/control/scenarios/clear\"><button>Clear all</button>"
          "</form></section>";
}

void appendChoice(Html& html, const FaultGroup& group, const FaultChoice& choice,
                  const ScenarioForm& form) {
  const bool chosen = choice.name == form.fault;
  html << "<div class=\"choice\"><input type=\"radio\" name=\"fault\" required id=\"fault-";
  html.text(choice.name) << "\" value=\"";
  html.text(choice.name) << "\" aria-describedby=\"effect-";
  html.text(choice.name) << (group.wholeListener ? Markup("\" data-whole") : Markup("\""))
                         << (chosen ? Markup(" checked>") : Markup(">")) << "<label for=\"fault-";
  html.text(choice.name) << "\">";
  html.text(choice.title) << "</label><p id=\"effect-";
  html.text(choice.name) << "\">";
  html.text(choice.effect) << "</p></div>";
}

}  // namespace

HttpAnswer scenarioPage(const Frame& frame, const std::vector<Scenario>& playing,
                        const ScenarioForm& form) {
  Html html;
  html << "<div class=\"title\"><h1>Scenarios</h1><p class=\"count\">What your application meets "
          "when the service fails it</p></div><div class=\"scenarios\">";
  appendPlaying(html, playing);
  html << "<form class=\"panel\" method=\"post\" action=\"/control/scenarios\" "
          "aria-labelledby=\"add\"><h2 id=\"add\">Play a fault</h2>";
  if (!form.wrong.empty()) {
    html << "<p class=\"alert\" role=\"alert\">";
    html.value(form.wrong) << "</p>";
  }
  for (const auto& group : faultGroups()) {
    html << "<fieldset><legend>";
    html.text(group.title) << "</legend><div class=\"choices\">";
    for (const auto& choice : group.faults) appendChoice(html, group, choice, form);
    html << "</div></fieldset>";
  }
  html << "<fieldset class=\"narrow\" id=\"narrow\"><legend>When</legend>"
          "<div class=\"inputs\"><div><label for=\"status\">Status of an error</label>"
          "<input id=\"status\" name=\"status\" inputmode=\"numeric\" pattern=\"[2-5][0-9][0-9]\" "
          "maxlength=\"3\" title=\"A number from 200 to 599\" value=\"";
  html.text(form.status.empty() ? std::string_view("503") : form.status, 10)
      << "\"></div><div><label for=\"step\">Step</label><select id=\"step\" name=\"step\">"
         "<option value=\"\">Every step</option>";
  for (const auto step : stepsInOrder()) {
    html << "<option value=\"";
    html.text(step) << (step == form.step ? Markup("\" selected>") : Markup("\">"));
    html.text(stepTitle(step)) << "</option>";
  }
  html << "</select></div><div role=\"radiogroup\" aria-labelledby=\"often\">"
          "<span id=\"often\">How often</span><span class=\"pair\">"
          "<input type=\"radio\" name=\"times\" value=\"always\" id=\"always\""
       << (form.once ? Markup(">") : Markup(" checked>"))
       << "<label for=\"always\">Always</label>"
          "<input type=\"radio\" name=\"times\" value=\"once\" id=\"once\""
       << (form.once ? Markup(" checked>") : Markup(">"))
       << "<label for=\"once\">Once</label></span></div></div></fieldset>"
          "<p class=\"none\" id=\"whole\" hidden>A fault of the network meets every connection "
          "until it is cleared.</p><button class=\"primary\">Play this fault</button></form></div>";
  return page(frame, Tab::scenarios, "Scenarios", html);
}

}  // namespace kestrova::sandbox
