#include "sandbox/console/EntryView.h"

#include <algorithm>
#include <array>

#include "sandbox/console/DeviationText.h"
#include "sandbox/console/Names.h"
#include "sandbox/console/Upload.h"

namespace kestrova::sandbox {

namespace {

using Form = UploadKind::Form;

void appendStatus(Html& html, const Request& request) {
  if (request.status == 0) {
    html << "<span class=\"pill wrong\">Unanswered</span>";
  } else {
    html << (request.status < 400 ? Markup("<span class=\"pill right\">")
                                  : Markup("<span class=\"pill wrong\">"))
         << std::int64_t{request.status} << "</span>";
  }
}

void appendDeviations(Html& html, const Request& request) {
  if (request.deviations.empty()) return;
  const auto count = static_cast<std::int64_t>(request.deviations.size());
  html << "<table class=\"deviations\"><caption>" << count
       << (count == 1 ? Markup(" deviation") : Markup(" deviations"))
       << " from the contract</caption><thead><tr><th scope=\"col\">Expected</th>"
          "<th scope=\"col\">Came</th></tr></thead><tbody>";
  for (const auto& deviation : request.deviations) {
    const auto sides = readDeviation(deviation);
    if (!sides.where.empty()) {
      html << "<tr class=\"where\"><th colspan=\"2\" scope=\"rowgroup\">";
      html.value(sides.where) << "</th></tr>";
    }
    html << (sides.expected.empty() ? Markup("<tr><td colspan=\"2\">") : Markup("<tr><td>"));
    if (!sides.expected.empty()) html.value(sides.expected) << "</td><td>";
    html.value(sides.came) << "</td></tr>";
  }
  html << "</tbody></table>";
}

// Whether the field is one of those that come with every request and says no more than they do.
bool isUsual(const Field& field) {
  constexpr std::array<std::string_view, 4> names{"api_key", "authentication_key", "key", "step"};
  return field.size <= 64 && std::find(names.begin(), names.end(), field.name) != names.end();
}

void appendField(Html& html, const Field& field) {
  html << "<div><dt>";
  html.value(field.name, 120) << "</dt><dd>";
  if (field.size == 0) {
    html << "<span class=\"none\">empty</span>";
  } else {
    html.value(field.value);
  }
  if (field.size > field.value.size()) {
    html << "\xe2\x80\xa6 <span class=\"none\">cut, ";
    html.text(grouped(field.size)) << " bytes in all</span>";
  }
  html << "</dd></div>";
}

// The usual fields in a line of their own below the others.
void appendFields(Html& html, const Entry& entry) {
  Html fields;
  Html usual;
  for (const auto& field : entry.fields) appendField(isUsual(field) ? usual : fields, field);
  if (!fields.string().empty()) html << "<dl class=\"fields\">" << fields << "</dl>";
  if (!usual.string().empty()) html << "<dl class=\"usual\">" << usual << "</dl>";
  if (entry.furtherFields > 0) {
    html << "<p class=\"none\">and ";
    html.text(grouped(static_cast<std::uint64_t>(entry.furtherFields))) << " further fields</p>";
  }
}

void appendUpload(Html& html, const Entry& entry) {
  const auto& upload = *entry.request.upload;
  const auto kind = uploadKind(upload);
  html << "<figure>";
  if (kind.form == Form::picture) {
    html << "<a class=\"picture\" href=\"/uploads/" << entry.id << "\"><img src=\"/files/"
         << entry.id << "\" alt=\"" << entryTitle(entry) << ", open large\" loading=\"lazy\"";
    if (kind.width > 0 && kind.height > 0) {
      html << " width=\"" << std::int64_t{kind.width} << "\" height=\"" << std::int64_t{kind.height}
           << "\"";
    }
    html << "></a>";
  } else if (kind.form == Form::video) {
    html << "<video controls preload=\"metadata\" src=\"/files/" << entry.id << "\" aria-label=\""
         << entryTitle(entry) << "\"></video>";
  } else {
    html << "<p><a href=\"/files/" << entry.id << "\" download>Download the file</a></p>";
  }
  html << "<figcaption>" << uploadFacts(upload) << "</figcaption></figure>";
}

}  // namespace

Html entryTitle(const Entry& entry) {
  Html html;
  const auto title = stepTitle(entry.request.step);
  if (!title.empty()) return html.text(title);
  html.value(entry.request.method, 40) << " ";
  return html.value(entry.request.target, 200);
}

Html uploadFacts(const Upload& upload) {
  Html html;
  const auto kind = uploadKind(upload);
  html << "<b>";
  if (kind.form == Form::picture && kind.width > 0) {
    html << std::int64_t{kind.width} << " \xc3\x97 " << std::int64_t{kind.height} << " pixels · ";
  }
  html.text(inUnits(upload.size)) << "</b> <span>";
  html.text(grouped(upload.size)) << " bytes · ";
  html.value(upload.fileName, 120) << " · ";
  html.value(upload.contentType, 120) << "</span> <span class=\"digest\">SHA-256 ";
  return html.text(upload.sha256) << "</span>";
}

Html entryView(const Entry& entry, std::string_view begin) {
  const auto& request = entry.request;
  Html html;
  html << "<li id=\"request-" << entry.id << "\" data-key=\"" << entry.id << "\" class=\""
       << (!request.deviations.empty() || request.status >= 400 || request.status == 0
               ? Markup("wrong")
               : Markup("right"))
       << "\"><div class=\"when\"><time datetime=\"";
  html.text(request.received) << "\">";
  html.text(timeOf(request.received)) << "</time>";
  if (const auto since = elapsed(begin, request.received); !since.empty()) {
    html << "<span>";
    html.text(since) << "</span>";
  }
  html << "</div><article><header><h2>" << entryTitle(entry) << "</h2>";
  if (!request.step.empty()) {
    html << "<code>";
    html.value(request.step, 100) << "</code>";
  }
  appendStatus(html, request);
  html << "</header>";
  if (!request.fault.empty()) {
    html << "<p class=\"played\"><span class=\"pill fault\">Fault played</span> <code>";
    html.text(request.fault) << "</code></p>";
  }
  appendDeviations(html, request);
  appendFields(html, entry);
  if (request.upload) appendUpload(html, entry);
  html << "<details><summary>Request head</summary><pre tabindex=\"0\">";
  // Line by line, so that what is no line break of the head shows.
  std::string_view head = request.head;
  while (!head.empty()) {
    const auto end = head.find("\r\n");
    html.value(head.substr(0, end), head.size()) << "\n";
    head.remove_prefix(end == head.npos ? head.size() : end + 2);
  }
  return html << "</pre></details></article></li>";
}

}  // namespace kestrova::sandbox
