#include "sandbox/HttpReader.h"

#include <algorithm>
#include <array>
#include <utility>

#include <boost/asio/buffer.hpp>
#include <boost/beast/http/error.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/string_body.hpp>

#include "sandbox/Text.h"

namespace kestrova::sandbox {

namespace {

namespace http = boost::beast::http;
using Parser = http::request_parser<http::string_body>;

// At most this much of a body is parsed before its handler is asked again.
constexpr std::size_t largestSlice = 16384;

std::string textOf(boost::core::string_view text) {
  return {text.data(), text.size()};
}

void copyHead(const Parser& parser, HttpRequest& request) {
  const auto& message = parser.get();
  request.method = textOf(message.method_string());
  request.target = textOf(message.target());
  for (const auto& field : message) {
    request.headers.emplace_back(textOf(field.name_string()), textOf(field.value()));
  }
}

bool isHost(const std::pair<std::string, std::string>& header) {
  return equalIgnoringCase(header.first, "Host");
}

// The reading of one request. Both steps give true where the request goes on; where it does not,
// the result says why.
class Reading {
 public:
  using CutsShort = std::function<bool(const HttpRequest&, bool complete)>;

  Reading(Connection& connection, std::string& buffer, std::size_t headBytes, std::size_t bodyBytes)
      : connection_(connection), buffer_(buffer), headBytes_(headBytes) {
    parser_.header_limit(static_cast<std::uint32_t>(headBytes));
    parser_.body_limit(bodyBytes);
  }

  bool readHead();
  bool readBody(const CutsShort& cutsShort);

  HttpReader::Result result;

 private:
  // Reads more behind what is buffered; false at the connection's end.
  bool fill();
  // Hands bytes from the front of the buffer to the parser; false where it refuses them.
  bool parse(std::size_t offered, std::size_t& used);
  bool refuse(int status, std::string why);
  bool isCut(const CutsShort& cutsShort, bool complete);

  Connection& connection_;
  std::string& buffer_;
  std::size_t headBytes_;
  Parser parser_;
};

bool Reading::fill() {
  std::array<char, largestSlice> chunk;  // NOLINT: what matters of it is written before it is read
  const auto count = connection_.read(chunk);
  buffer_.append(chunk.data(), count);
  return count > 0;
}

bool Reading::refuse(int status, std::string why) {
  if (result.request.headers.empty()) copyHead(parser_, result.request);
  result.end = HttpReader::End::refused;
  result.status = status;
  result.why = std::move(why);
  return false;
}

bool Reading::parse(std::size_t offered, std::size_t& used) {
  boost::system::error_code error;
  used = parser_.put(boost::asio::buffer(buffer_.data(), offered), error);
  buffer_.erase(0, used);
  if (!error || error == http::error::need_more) return true;
  const int status = error == http::error::header_limit ? 431
                     : error == http::error::body_limit ? 413
                                                        : 400;
  return refuse(status, error.message());
}

bool Reading::readHead() {
  while (!parser_.is_header_done()) {
    if (buffer_.empty() && !fill()) return false;
    result.inside = true;
    const auto before = buffer_;
    std::size_t used = 0;
    const bool goesOn = parse(buffer_.size(), used);
    result.request.head.append(before, 0, used);
    if (!goesOn || (!parser_.is_header_done() && !fill())) return false;
  }
  copyHead(parser_, result.request);
  result.keepAlive = parser_.keep_alive();
  const auto& headers = result.request.headers;
  const auto hosts = std::count_if(headers.begin(), headers.end(), isHost);
  if (hosts > 1 || (hosts == 0 && parser_.get().version() >= 11)) {
    return refuse(400, "expected one Host header");
  }
  const bool waits = equalIgnoringCase(result.request.header("Expect"), "100-continue");
  return !waits || parser_.is_done() || connection_.write("HTTP/1.1 100 Continue\r\n\r\n");
}

bool Reading::isCut(const CutsShort& cutsShort, bool complete) {
  auto& body = parser_.get().body();
  if (!complete && body.size() < parser_.content_length().value_or(0) / 2) return false;
  // The request takes the body over while the caller looks at it.
  std::swap(result.request.body, body);
  const bool cut = cutsShort(result.request, complete);
  if (!cut && !complete) std::swap(result.request.body, body);
  if (cut) result.end = HttpReader::End::cut;
  return cut;
}

bool Reading::readBody(const CutsShort& cutsShort) {
  const auto length = parser_.content_length().value_or(2 * largestSlice);
  auto slice = static_cast<std::size_t>(std::clamp<std::uint64_t>(length / 2, 1, largestSlice));
  while (!parser_.is_done()) {
    if (buffer_.empty() && !fill()) return false;
    const auto offered = std::min(slice, buffer_.size());
    std::size_t used = 0;
    if (!parse(offered, used)) return false;
    if (parser_.is_done()) break;
    if (used > 0) {
      if (isCut(cutsShort, false)) return false;
      continue;
    }
    // The line that frames a chunk is not whole yet.
    if (buffer_.size() > headBytes_) return refuse(400, "a chunk's frame is too long");
    if (offered == buffer_.size() && !fill()) return false;
    slice = std::max(slice, buffer_.size());
  }
  return !isCut(cutsShort, true);
}

}  // namespace

HttpReader::HttpReader(Connection& connection, std::size_t headBytes, std::size_t bodyBytes)
    : connection_(connection), headBytes_(headBytes), bodyBytes_(bodyBytes) {}

HttpReader::Result HttpReader::next(
    const std::function<bool(const HttpRequest&, bool complete)>& cutsShort) {
  Reading reading(connection_, buffer_, headBytes_, bodyBytes_);
  if (reading.readHead() && reading.readBody(cutsShort)) {
    reading.result.end = End::request;
  }
  return std::move(reading.result);
}

}  // namespace kestrova::sandbox
