#include "sandbox/console/ListPage.h"

#include "sandbox/console/Names.h"

namespace kestrova::sandbox {

namespace {

void appendSearch(Html& html, const SummaryQuery& query) {
  html << "<form class=\"search\" role=\"search\" action=\"/\"><div><label for=\"email\">E-mail"
          "</label><input id=\"email\" name=\"email\" type=\"search\" autocomplete=\"off\""
          " maxlength=\"200\" placeholder=\"Any part of the address\" value=\"";
  html.text(query.email)
      << "\"></div><div><label for=\"step\">Step received</label><select id=\"step\" "
         "name=\"step\"><option value=\"\">Any step</option>";
  for (const auto step : stepsInOrder()) {
    html << "<option value=\"";
    html.text(step) << (step == query.step ? Markup("\" selected>") : Markup("\">"));
    html.text(stepTitle(step)) << "</option>";
  }
  html << "</select></div><button>Search</button>";
  if (!query.email.empty() || !query.step.empty()) html << "<a href=\"/\">Show all</a>";
  html << "</form>";
}

void appendRow(Html& html, const Summary& summary) {
  html << "<li data-key=\"";
  html.text(summary.key) << "\"><a class=\"row\" href=\"/authentications/";
  html.text(percentEncoded(summary.key))
      << "\"><span class=\"who\">" << emailOf(summary) << "</span><span class=\"what\">";
  const auto title = stepTitle(summary.lastStep);
  html.text(title.empty() ? std::string_view(summary.lastStep) : title, 60)
      << "<span class=\"unseen\">, the latest step</span></span><span class=\"detail\">";
  const auto document = documentTitle(summary.document);
  html.text(document.empty() ? std::string_view(summary.document) : document, 30);
  if (!summary.document.empty() && !summary.country.empty()) html << " · ";
  if (!summary.country.empty()) html.text(summary.country, 12);
  html << "</span><span class=\"how\">" << stateOf(summary)
       << "</span><span class=\"when\"><span class=\"unseen\">opened </span>";
  html.text(dateOf(summary.opened)) << " <b>";
  html.text(timeOf(summary.opened).substr(0, 8)) << "</b></span></a></li>";
}

// The address of the query's page; of its first one where `before` is 0.
std::string addressOf(const SummaryQuery& query, std::int64_t before) {
  std::string address;
  const auto add = [&](std::string_view name, const std::string& value) {
    if (value.empty()) return;
    address += address.empty() ? "/?" : "&";
    address.append(name).append("=").append(percentEncoded(value));
  };
  add("email", query.email);
  add("step", query.step);
  if (before > 0) add("before", std::to_string(before));
  return address.empty() ? "/" : address;
}

void appendNothing(Html& html, bool searched) {
  if (searched) {
    html << "<div class=\"empty\"><h2>Nothing fits</h2><p>No authentication has this e-mail and "
            "step. <a href=\"/\">Show all</a></p></div>";
  } else {
    html << "<div class=\"empty\"><h2>Nothing received yet</h2><p>Start a verification in your "
            "application. What it sends appears here by itself.</p></div>";
  }
}

}  // namespace

Html stateOf(const Summary& summary) {
  Html html;
  if (summary.deviations > 0) {
    html << "<span class=\"pill wrong\">" << summary.deviations
         << (summary.deviations == 1 ? Markup(" deviation</span>") : Markup(" deviations</span>"));
  }
  if (summary.faults > 0) {
    html << "<span class=\"pill fault\">" << summary.faults
         << (summary.faults == 1 ? Markup(" fault</span>") : Markup(" faults</span>"));
  }
  html << (summary.finished ? Markup("<span class=\"pill right\">Complete</span>")
                            : Markup("<span class=\"pill\">Under way</span>"));
  return html;
}

Html emailOf(const Summary& summary) {
  Html html;
  if (summary.email.empty()) return html << "<span class=\"none\">No e-mail yet</span>";
  return html.value(summary.email, 200);
}

HttpAnswer listPage(const Frame& frame, const Store& store, const SummaryQuery& query) {
  auto further = query;
  ++further.most;
  auto found = store.summaries(further);
  const bool more = found.size() > query.most;
  if (more) found.pop_back();
  const auto count = store.countSummaries(query);
  const auto strays = store.countStrays();
  const bool searched = !query.email.empty() || !query.step.empty();

  Html html;
  html << "<div class=\"title\"><h1>Authentications</h1><p class=\"count\" data-live=\"count\">";
  html.text(grouped(static_cast<std::uint64_t>(count)))
      << (searched ? Markup(" found") : Markup(" received"))
      << " · times in UTC</p><div class=\"acts\" data-live=\"acts\">";
  if (count > 0 || strays > 0 || searched) {
    html << deletion("delete-all", "Delete all…", "Delete everything?",
                     "Every authentication, request, picture and video of this sandbox is removed "
                     "from the disk. This cannot be undone.",
                     "all", "yes");
  }
  html << "</div></div>";
  appendSearch(html, query);
  html << "<div data-live=\"rows\">";
  if (strays > 0 && !searched) {
    html << "<p class=\"strays\"><a href=\"/strays\">";
    html.text(grouped(static_cast<std::uint64_t>(strays)))
        << (strays == 1 ? Markup(" request") : Markup(" requests"))
        << " of no authentication</a></p>";
  }
  if (found.empty()) {
    appendNothing(html, searched);
  } else {
    html << "<ol class=\"rows\" data-rows>";
    for (const auto& summary : found) appendRow(html, summary);
    html << "</ol>";
  }
  html << "<p class=\"paging\">";
  if (query.before != SummaryQuery{}.before) {
    html << "<a href=\"";
    html.text(addressOf(query, 0)) << "\">Newest</a> ";
  }
  if (more) {
    html << "<a rel=\"next\" href=\"";
    html.text(addressOf(query, found.back().position)) << "\">Older</a>";
  }
  html << "</p></div>";
  return page(frame, Tab::authentications, "Authentications", html);
}

}  // namespace kestrova::sandbox
