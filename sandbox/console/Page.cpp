#include "sandbox/console/Page.h"

#include <array>
#include <utility>

#include "sandbox/console/Assets.h"

namespace kestrova::sandbox {

namespace {

Html tabs(const Frame& frame, Tab current) {
  Html html;
  const auto tab = [&](Tab which, Markup start, Markup title) {
    html << start;
    if (which == current) html << " aria-current=\"page\"";
    html << ">" << title;
  };
  tab(Tab::authentications, "<a href=\"/\"", "Authentications</a>");
  tab(Tab::scenarios, "<a href=\"/scenarios\"", "Scenarios");
  if (frame.scenarios > 0) {
    html << " <span class=\"badge\">" << static_cast<std::int64_t>(frame.scenarios)
         << "<span class=\"unseen\"> playing</span></span>";
  }
  return html << "</a>";
}

}  // namespace

HttpAnswer page(const Frame& frame, Tab tab, std::string_view title, const Html& content,
                int status) {
  Html titleText;
  titleText.text(title, 80);
  const auto pages = tabs(frame, tab);
  const std::array<std::pair<std::string_view, std::string_view>, 4> places{
      {{"@title@", titleText.string()},
       {"@revision@", frame.revision},
       {"@pages@", pages.string()},
       {"@content@", content.string()}}};
  auto skeleton = asset("page.html");
  std::string body;
  body.reserve(skeleton.size() + content.string().size() + pages.string().size() + 200);
  for (const auto& [place, text] : places) {
    const auto at = skeleton.find(place);
    body.append(skeleton.substr(0, at)).append(text);
    skeleton.remove_prefix(at + place.size());
  }
  body.append(skeleton);
  return {status, "text/html; charset=utf-8", std::move(body), Delivery::whole};
}

HttpAnswer notice(const Frame& frame, std::string_view title, Markup sentence, int status) {
  Html html;
  html << "<div class=\"empty\" data-live=\"notice\"><h1>";
  html.text(title) << "</h1><p>" << sentence
                   << "</p><p><a href=\"/\">All authentications</a></p></div>";
  return page(frame, Tab::authentications, title, html, status);
}

Html deletion(Markup id, Markup label, Markup question, Markup consequence, Markup field,
              std::string_view value) {
  Html html;
  html << "<button type=\"button\" class=\"quiet\" popovertarget=\"" << id << "\">" << label
       << "</button><div popover id=\"" << id
       << "\" class=\"dialog\" role=\"alertdialog\" aria-labelledby=\"" << id
       << "-question\" aria-describedby=\"" << id << "-consequence\"><h2 id=\"" << id
       << "-question\">" << question << "</h2><p id=\"" << id << "-consequence\">" << consequence
       << "</p><form method=\"post\" action=\"/control/authentications/delete\">"
          "<input type=\"hidden\" name=\""
       << field << "\" value=\"";
  html.text(value) << "\"><button type=\"button\" autofocus popovertarget=\"" << id
                   << "\" popovertargetaction=\"hide\">Keep</button>"
                      "<button class=\"danger\">Delete</button></form></div>";
  return html;
}

}  // namespace kestrova::sandbox
