#include "sandbox/console/TimelinePage.h"

#include "sandbox/console/EntryView.h"
#include "sandbox/console/ListPage.h"
#include "sandbox/console/Names.h"
#include "sandbox/console/Upload.h"

namespace kestrova::sandbox {

namespace {

constexpr std::size_t entriesOfPage = 100;

struct EntriesPage {
  std::vector<Entry> entries;
  // Whether others follow.
  bool more = false;
};

EntriesPage pageOf(const Store& store, EntryQuery query) {
  query.most = entriesOfPage + 1;
  EntriesPage found{store.entries(query)};
  found.more = found.entries.size() > entriesOfPage;
  if (found.more) found.entries.pop_back();
  return found;
}

void appendFact(Html& html, Markup name, std::string_view value, bool code = false) {
  html << "<div><dt>" << name << "</dt><dd>";
  if (value.empty()) {
    html << "<span class=\"none\">\xe2\x80\x94</span>";
  } else {
    if (code) html << "<code>";
    html.value(value, 100);
    if (code) html << "</code>";
  }
  html << "</dd></div>";
}

void appendEntries(Html& html, const std::vector<Entry>& entries, std::string_view begin) {
  html << "<ol class=\"timeline\" data-rows>";
  for (const auto& entry : entries) html << entryView(entry, begin);
  html << "</ol>";
}

constexpr Markup home{"<p class=\"crumbs\"><a href=\"/\">Authentications</a></p>"};

}  // namespace

HttpAnswer timelinePage(const Frame& frame, const Store& store, std::string_view key,
                        std::int64_t after) {
  const auto summary = store.summary(key);
  if (!summary) {
    return notice(frame, "No such authentication",
                  "It was deleted, or this sandbox never opened it.", 404);
  }
  EntryQuery query;
  query.key = key;
  query.after = after;
  const auto [entries, more] = pageOf(store, query);

  Html html;
  html << home << "<div class=\"title\"><h1 data-live=\"email\">" << emailOf(*summary)
       << "</h1><p class=\"states\" data-live=\"state\">" << stateOf(*summary)
       << "</p><div class=\"acts\">"
       << deletion("delete-this", "Delete…", "Delete this authentication?",
                   "Its requests, pictures and video are removed from the disk. This cannot be "
                   "undone.",
                   "key", key)
       << "</div></div><dl class=\"facts\" data-live=\"facts\">";
  appendFact(html, "Liveness", summary->assessment);
  const auto document = documentTitle(summary->document);
  appendFact(html, "Document", document.empty() ? std::string_view(summary->document) : document);
  appendFact(html, "Nationality", summary->country);
  auto opened = std::string(dateOf(summary->opened));
  opened.append(" ").append(timeOf(summary->opened).substr(0, 8)).append(" UTC");
  appendFact(html, "Opened", opened);
  appendFact(html, "API key", summary->apiKey, true);
  appendFact(html, "Key", summary->key, true);
  html << "</dl><div data-live=\"steps\">";
  appendEntries(html, entries, summary->opened);
  if (after > 0 || more) {
    html << "<p class=\"paging\">";
    if (after > 0) html << "<a href=\"?\">First steps</a> ";
    if (more) html << "<a rel=\"next\" href=\"?after=" << entries.back().id << "\">Next steps</a>";
    html << "</p>";
  }
  html << "</div>";
  const auto title = summary->email.empty() ? summary->key : summary->email;
  return page(frame, Tab::authentications, title, html);
}

HttpAnswer straysPage(const Frame& frame, const Store& store, std::int64_t before) {
  EntryQuery query;
  query.before = before;
  const auto [entries, more] = pageOf(store, query);
  Html html;
  html << home << "<div class=\"title\"><h1>Requests of no authentication</h1><p class=\"count\">"
       << "The latest first, times in UTC</p><div class=\"acts\">"
       << deletion("delete-strays", "Delete these…", "Delete the requests of no authentication?",
                   "They and their files are removed from the disk. Authentications stay. This "
                   "cannot be undone.",
                   "strays", "yes")
       << "</div></div><div data-live=\"steps\">";
  if (entries.empty()) {
    html << "<div class=\"empty\"><h2>None</h2><p>Every request belongs to an authentication."
            "</p></div>";
  } else {
    appendEntries(html, entries, {});
  }
  if (more) {
    html << "<p class=\"paging\"><a rel=\"next\" href=\"?before=" << entries.back().id
         << "\">Earlier</a></p>";
  }
  html << "</div>";
  return page(frame, Tab::authentications, "Requests of no authentication", html);
}

HttpAnswer uploadPage(const Frame& frame, const Store& store, const Entry& entry) {
  const auto& upload = *entry.request.upload;
  const auto kind = uploadKind(upload);
  Html html;
  html << "<p class=\"crumbs\"><a href=\"/\">Authentications</a> <a href=\"";
  if (entry.request.authentication.empty()) {
    html << "/strays";
  } else {
    html << "/authentications/";
    html.text(percentEncoded(entry.request.authentication));
  }
  html << "#request-" << entry.id << "\">";
  if (const auto summary = store.summary(entry.request.authentication)) {
    html << emailOf(*summary);
  } else {
    html << "Requests of no authentication";
  }
  html << "</a></p><div class=\"title\"><h1>" << entryTitle(entry)
       << "</h1></div><figure class=\"large\"><figcaption>" << uploadFacts(upload)
       << "</figcaption>";
  if (kind.form == UploadKind::Form::picture) {
    html << "<a href=\"/files/" << entry.id << "\"><img src=\"/files/" << entry.id << "\" alt=\""
         << entryTitle(entry) << ", the file itself\"></a>";
  } else if (kind.form == UploadKind::Form::video) {
    html << "<video controls src=\"/files/" << entry.id << "\" aria-label=\"" << entryTitle(entry)
         << "\"></video>";
  } else {
    html << "<p><a href=\"/files/" << entry.id << "\" download>Download the file</a></p>";
  }
  html << "</figure>";
  return page(frame, Tab::authentications, stepTitle(entry.request.step), html);
}

}  // namespace kestrova::sandbox
