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

HttpReader::Result refusal(HttpReader::Result result, int status, std::string why) {
  result.end = HttpReader::End::refused;
  result.status = status;
  result.why = std::move(why);
  return result;
}

HttpReader::Result refusal(HttpReader::Result result, const boost::system::error_code& error) {
  const int status = error == http::error::header_limit ? 431
                     : error == http::error::body_limit ? 413
                                                        : 400;
  return refusal(std::move(result), status, error.message());
}

}  // namespace

HttpReader::HttpReader(Connection& connection, std::size_t headBytes, std::size_t bodyBytes)
    : connection_(connection), headBytes_(headBytes), bodyBytes_(bodyBytes) {}

bool HttpReader::fill() {
  std::array<char, largestSlice> chunk;  // NOLINT: what matters of it is written before it is read
  const auto count = connection_.read(chunk);
  buffer_.append(chunk.data(), count);
  return count > 0;
}

HttpReader::Result HttpReader::next(
    const std::function<bool(const HttpRequest&, bool complete)>& cutsShort) {
  Result result;
  Parser parser;
  parser.header_limit(static_cast<std::uint32_t>(headBytes_));
  parser.body_limit(bodyBytes_);
  auto& body = parser.get().body();
  boost::system::error_code error;

  while (!parser.is_header_done()) {
    if (buffer_.empty() && !fill()) {
      result.inside = !result.request.head.empty();
      return result;
    }
    const auto used = parser.put(boost::asio::buffer(buffer_), error);
    result.request.head.append(buffer_, 0, used);
    buffer_.erase(0, used);
    if (error && error != http::error::need_more) {
      copyHead(parser, result.request);
      return refusal(std::move(result), error);
    }
    if (!parser.is_header_done() && !fill()) {
      result.inside = true;
      return result;
    }
  }
  copyHead(parser, result.request);
  result.inside = true;
  result.keepAlive = parser.keep_alive();
  const auto hosts =
      std::count_if(result.request.headers.begin(), result.request.headers.end(),
                    [](const auto& header) { return equalIgnoringCase(header.first, "Host"); });
  if (hosts > 1 || (hosts == 0 && parser.get().version() >= 11)) {
    return refusal(std::move(result), 400, "expected one Host header");
  }
  if (equalIgnoringCase(result.request.header("Expect"), "100-continue") && !parser.is_done() &&
      !connection_.write("HTTP/1.1 100 Continue\r\n\r\n")) {
    return result;
  }

  const auto half = parser.content_length().value_or(0) / 2;
  std::size_t slice = std::clamp<std::size_t>(half, 1, largestSlice);
  // The request takes the body over while the caller looks at it.
  const auto isCut = [&](bool complete) {
    if (!complete && body.size() < half) return false;
    std::swap(result.request.body, body);
    const bool cut = cutsShort(result.request, complete);
    if (!cut && !complete) std::swap(result.request.body, body);
    return cut;
  };
  while (!parser.is_done()) {
    if (buffer_.empty() && !fill()) return result;
    const auto offered = std::min(slice, buffer_.size());
    const auto used = parser.put(boost::asio::buffer(buffer_.data(), offered), error);
    buffer_.erase(0, used);
    if (error && error != http::error::need_more) return refusal(std::move(result), error);
    if (used == 0 && !parser.is_done()) {
      // The line that frames a chunk is not whole yet.
      if (buffer_.size() > headBytes_) {
        return refusal(std::move(result), 400, "a chunk's frame is too long");
      }
      if (offered == buffer_.size() && !fill()) return result;
      slice = std::max(slice, buffer_.size());
      continue;
    }
    if (!parser.is_done() && isCut(false)) {
      result.end = End::cut;
      return result;
    }
  }
  result.end = isCut(true) ? End::cut : End::request;
  return result;
}

}  // namespace kestrova::sandbox
