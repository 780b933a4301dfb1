#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrova::sandbox {

struct HttpRequest {
  std::string method;
  std::string target;
  std::string head;  // raw, with the empty line
  std::vector<std::pair<std::string, std::string>> headers;
  std::string body;  // decoded from chunks

  // The first value under the name, in any case of letters; empty when there is none.
  std::string_view header(std::string_view name) const;
  // The target up to its query.
  std::string_view path() const;
};

// How an answer reaches the client.
enum class Delivery {
  whole,
  byteByByte,
  stalled,  // head and half of the body; then nothing until the client leaves
  never,
  cut,     // none: the connection is reset
  closed,  // none: the connection is closed in order
};

struct HttpAnswer {
  int status = 200;
  std::string contentType = "application/json";
  std::string body;
  Delivery delivery = Delivery::whole;
  std::vector<std::pair<std::string, std::string>> headers{};  // further ones
};

// The answer as it goes over the wire. Status 204 goes without a body and its headers.
std::string serialized(const HttpAnswer& answer, bool keepAlive);

HttpAnswer errorAnswer(int status, std::string_view message);

// Answers requests. Called from a thread a connection.
class HttpHandler {
 public:
  HttpHandler() = default;
  HttpHandler(const HttpHandler&) = delete;
  HttpHandler& operator=(const HttpHandler&) = delete;
  HttpHandler(HttpHandler&&) = delete;
  HttpHandler& operator=(HttpHandler&&) = delete;
  virtual ~HttpHandler() = default;

  virtual HttpAnswer answer(const HttpRequest& request) = 0;

  // Asked from when half of a body is in; the last time with `complete`. True resets the
  // connection.
  virtual bool cutsShort(const HttpRequest& /*soFar*/, bool /*complete*/) { return false; }

  // A request that HTTP does not allow or that is above the limits; it is answered with the status.
  virtual void refused(const HttpRequest& /*soFar*/, int /*status*/, std::string_view /*why*/) {}

  // Something else that a log should hold.
  virtual void note(std::string_view /*line*/) {}
};

}  // namespace kestrova::sandbox
