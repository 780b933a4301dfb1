#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/dispatch/DispatchQueue.h"
#include "platform/foundation/JSONValue.h"
#include "platform/foundation/Result.h"

namespace kestrova::platform {

class MultipartFormData;
class TemporaryFile;

enum class HTTPMethod { options, get, head, post, put, patch, delete_, trace, connect };

using HTTPHeaders = std::vector<std::pair<std::string, std::string>>;

struct HTTPRequest {
  HTTPMethod method = HTTPMethod::post;
  // https only.
  std::string url;
  HTTPHeaders headers;
  std::string body;
  // Sent in place of `body` where set.
  std::shared_ptr<const TemporaryFile> bodyFile;
};

struct HTTPResponse {
  int statusCode = 0;
  std::string body;
};

struct HTTPTransportConfiguration {
  std::string userAgent;
  // PEM file of the authorities to trust; empty for the system's store.
  std::filesystem::path trustedAuthorities;
  // How long a request may go without a header line or a byte of a body, the connection's set-up
  // included.
  std::chrono::milliseconds idleTimeout = std::chrono::seconds(60);
  // A longer answer (after decompression) is an error. Bytes.
  std::size_t maximumAnswer = std::size_t{16} * 1024 * 1024;
  // Where uploads are encoded; empty for the system's directory of temporary files.
  std::filesystem::path temporaryDirectory;
  // "host:port:address:port": connections meant for the first pair go to the second. For tests.
  std::string connectTo;
  // Whether the proxy that the environment names is used.
  bool honoursProxy = true;
};

// Sends requests to HTTPS servers. Shared by all who send; any thread may call. Whoever drops the
// last reference waits for the transport's thread to end (milliseconds); requests that are under
// way then end without their handler, which is destroyed on that thread.
class HTTPTransport : public std::enable_shared_from_this<HTTPTransport> {
 public:
  using Completion = std::function<void(Result<HTTPResponse>)>;
  using AnswerHandler = std::function<void(Result<JSONValue>)>;

  // HTTP/1.1 over at most four kept-alive connections, TLS 1.2 or newer with a checked certificate,
  // no redirects. Its thread starts with the first request.
  static std::shared_ptr<HTTPTransport> make(HTTPTransportConfiguration configuration);

  HTTPTransport(const HTTPTransport&) = delete;
  HTTPTransport& operator=(const HTTPTransport&) = delete;
  virtual ~HTTPTransport() = default;

  // Sends a request at most once: it fails if its connection ends before the response. A kept
  // connection that the server has closed in the meantime is replaced before anything is written.
  // `completion` is called once, on the transport's own thread, where it must not
  // block; an answer of any status is a response. In a forked child it fails at once; uploads have
  // no thread to encode them there.
  virtual void send(HTTPRequest request, Completion completion) = 0;

  // Sends a request and decodes its answer as JSON, fragments allowed, on the transport's thread.
  // An answer of status 204 or 205 and an empty one cannot be decoded. `handler` is called once, on
  // the main queue.
  void sendForJSON(HTTPRequest request, AnswerHandler handler);

  // Posts a multipart form. On the encoding queue `build` fills the form, which is then written to
  // a private temporary file, gone when the upload ends; the request is streamed from that file.
  // The headers' content type is replaced by the form's. `encodingFailed` or else `handler` (as in
  // sendForJSON) is called once, on the main queue.
  void upload(std::string url, HTTPHeaders headers, std::function<void(MultipartFormData&)> build,
              std::function<void(const NSError&)> encodingFailed, AnswerHandler handler);

 protected:
  explicit HTTPTransport(std::filesystem::path temporaryDirectory)
      : temporaryDirectory_(std::move(temporaryDirectory)) {}

 private:
  const std::filesystem::path temporaryDirectory_;
  const DispatchQueue encodingQueue_{"kestrova.network.encoding"};
};

}  // namespace kestrova::platform
