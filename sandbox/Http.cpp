#include "sandbox/Http.h"

#include <algorithm>

#include "sandbox/Text.h"

namespace kestrova::sandbox {

namespace {

std::string_view reasonPhrase(int status) {
  switch (status) {
    case 200:
      return "OK";
    case 204:
      return "No Content";
    case 206:
      return "Partial Content";
    case 303:
      return "See Other";
    case 400:
      return "Bad Request";
    case 403:
      return "Forbidden";
    case 404:
      return "Not Found";
    case 405:
      return "Method Not Allowed";
    case 413:
      return "Content Too Large";
    case 416:
      return "Range Not Satisfiable";
    case 431:
      return "Request Header Fields Too Large";
    case 500:
      return "Internal Server Error";
    default:
      return "Status";
  }
}

}  // namespace

std::string_view HttpRequest::header(std::string_view name) const {
  const auto found = std::find_if(headers.begin(), headers.end(), [&](const auto& candidate) {
    return equalIgnoringCase(candidate.first, name);
  });
  return found == headers.end() ? std::string_view() : std::string_view(found->second);
}

std::string_view HttpRequest::path() const {
  return std::string_view(target).substr(0, target.find('?'));
}

std::string serialized(const HttpAnswer& answer, bool keepAlive) {
  std::string out = "HTTP/1.1 " + std::to_string(answer.status) + ' ';
  out.append(reasonPhrase(answer.status)).append("\r\n");
  if (answer.status != 204) {
    out += "Content-Type: " + answer.contentType +
           "\r\nContent-Length: " + std::to_string(answer.body.size()) + "\r\n";
  }
  out += "Cache-Control: no-store\r\nX-Content-Type-Options: nosniff\r\n";
  for (const auto& [name, value] : answer.headers) {
    out.append(name).append(": ").append(value).append("\r\n");
  }
  if (!keepAlive) out += "Connection: close\r\n";
  out += "\r\n";
  if (answer.status != 204) out += answer.body;
  return out;
}

HttpAnswer errorAnswer(int status, std::string_view message) {
  return {status, "application/json", "{\"error\":" + jsonString(message) + "}", Delivery::whole};
}

}  // namespace kestrova::sandbox
