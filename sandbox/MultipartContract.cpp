#include "sandbox/MultipartContract.h"

#include <algorithm>
#include <utility>

#include "sandbox/Text.h"

namespace kestrova::sandbox {

namespace {

constexpr std::string_view lineEnd = "\r\n";
constexpr std::size_t mostParts = 64;

bool isBoundary(std::string_view text) {
  constexpr std::string_view marks = "'()+_,-./:=? ";
  return !text.empty() && text.size() <= 70 && !text.ends_with(' ') &&
         std::all_of(text.begin(), text.end(), [&](char c) {
           return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
                  marks.find(c) != marks.npos;
         });
}

// Characters that a parameter's value may hold only in quotes.
bool needsQuotes(std::string_view boundary) {
  return boundary.find_first_of("(),/:=? ") != boundary.npos;
}

// The boundary parameter; empty when there is none that could delimit anything.
std::string boundaryOf(std::string_view contentType, std::vector<std::string>& deviations) {
  constexpr std::string_view exactPrefix = "multipart/form-data; boundary=";
  const auto complain = [&] {
    deviations.push_back("Content-Type: expected \"multipart/form-data; boundary=...\", came " +
                         printable(contentType));
  };
  if (contentType.starts_with(exactPrefix)) {
    auto value = contentType.substr(exactPrefix.size());
    if (value.size() > 2 && value.starts_with('"') && value.ends_with('"')) {
      value = value.substr(1, value.size() - 2);
      if (isBoundary(value)) return std::string(value);
    } else if (isBoundary(value) && !needsQuotes(value)) {
      return std::string(value);
    }
  }
  complain();
  // Still understood: another order, case or spacing of the parameters.
  constexpr std::string_view parameter = "boundary=";
  auto value = contentType.substr(std::min(contentType.find(parameter), contentType.size()));
  if (value.empty()) return {};
  value.remove_prefix(parameter.size());
  value = value.substr(0, value.find(';'));
  if (value.size() > 2 && value.starts_with('"') && value.ends_with('"')) {
    value = value.substr(1, value.size() - 2);
  }
  return isBoundary(value) ? std::string(value) : std::string();
}

// The value of name="..." after the disposition's type; nothing when it is absent.
std::optional<std::string> dispositionParameter(std::string_view value, std::string_view name) {
  const auto key = "; " + std::string(name) + "=\"";
  const auto at = value.find(key);
  if (at == value.npos) return std::nullopt;
  value.remove_prefix(at + key.size());
  return std::string(value.substr(0, value.find('"')));
}

void readHead(Part& part) {
  auto rest = part.head;
  while (!rest.empty()) {
    const auto end = std::min(rest.find(lineEnd), rest.size());
    const auto line = rest.substr(0, end);
    rest.remove_prefix(std::min(end + lineEnd.size(), rest.size()));
    const auto colon = std::min(line.find(':'), line.size());
    auto value = line.substr(std::min(colon + 1, line.size()));
    value.remove_prefix(std::min(value.find_first_not_of(" \t"), value.size()));
    if (equalIgnoringCase(line.substr(0, colon), "Content-Disposition")) {
      part.name = dispositionParameter(value, "name").value_or("");
      part.fileName = dispositionParameter(value, "filename");
    } else if (equalIgnoringCase(line.substr(0, colon), "Content-Type")) {
      part.contentType = std::string(value);
    }
  }
}

Multipart notUnderstood(Multipart form, std::string why) {
  form.deviations.push_back("multipart: " + std::move(why));
  form.understood = false;
  form.parts.clear();
  return form;
}

}  // namespace

std::string expectedHead(const Part& part) {
  std::string head = "Content-Disposition: form-data; name=\"" + part.name + '"';
  if (part.fileName) {
    head += "; filename=\"" + *part.fileName +
            "\"\r\nContent-Type: " + part.contentType.value_or("...");
  }
  return head;
}

Multipart readMultipart(std::string_view contentType, std::string_view body) {
  Multipart form;
  const auto boundary = boundaryOf(contentType, form.deviations);
  if (boundary.empty()) return notUnderstood(std::move(form), "no usable boundary");
  const auto dashes = "--" + boundary;
  const auto delimiter = "\r\n" + dashes;

  if (!body.starts_with(dashes)) {
    const auto first = body.find(delimiter);
    if (first == body.npos) {
      return notUnderstood(std::move(form), "the boundary never comes in the body");
    }
    form.deviations.push_back("multipart: expected the boundary at the start, came " +
                              printable(body.substr(0, first)));
    body.remove_prefix(first + lineEnd.size());
  }
  body.remove_prefix(dashes.size());

  while (!body.starts_with("--")) {
    if (form.parts.size() == mostParts) return notUnderstood(std::move(form), "too many parts");
    if (!body.starts_with(lineEnd)) {
      const auto end = body.find(lineEnd);
      form.deviations.push_back("multipart: expected CR LF after the boundary, came " +
                                printable(body.substr(0, std::min<std::size_t>(end, 40))));
      if (end == body.npos) return notUnderstood(std::move(form), "a boundary line without end");
      body.remove_prefix(end);
    }
    body.remove_prefix(lineEnd.size());
    Part part;
    // The empty line may follow at once: a part without a head.
    const bool headless = body.starts_with(lineEnd);
    const auto headEnd = headless ? 0 : body.find("\r\n\r\n");
    if (headEnd == body.npos) {
      return notUnderstood(std::move(form), "a part's head without an empty line after it");
    }
    part.head = body.substr(0, headEnd);
    // The delimiter of an empty part's data begins with the empty line's own CR LF; it must not.
    body.remove_prefix(headless ? lineEnd.size() : headEnd + 2 * lineEnd.size());
    const auto dataEnd = body.find(delimiter);
    if (dataEnd == body.npos) {
      return notUnderstood(std::move(form), "the closing boundary line never comes");
    }
    part.data = body.substr(0, dataEnd);
    body.remove_prefix(dataEnd + delimiter.size());
    readHead(part);
    if (part.head != expectedHead(part)) {
      form.deviations.push_back("multipart: expected a part's head " +
                                printable(expectedHead(part)) + ", came " + printable(part.head));
    }
    form.parts.push_back(std::move(part));
  }
  body.remove_prefix(2);
  if (body != lineEnd) {
    form.deviations.push_back(
        "multipart: expected CR LF and nothing else after the closing boundary, came " +
        printable(body));
  }
  return form;
}

}  // namespace kestrova::sandbox
