#include "platform/network/CurlTransfer.h"

#include <array>
#include <utility>

#include <curl/curl.h>

#include "platform/network/CurlSockets.h"
#include "platform/network/TemporaryFile.h"

namespace kestrova::platform {

namespace {

constexpr auto kErrorDomain = "Kestrova.HTTPTransport";

constexpr std::array kMethodNames{"OPTIONS", "GET",    "HEAD",  "POST",   "PUT",
                                  "PATCH",   "DELETE", "TRACE", "CONNECT"};

void append(CurlList& list, const std::string& line) {
  list.reset(curl_slist_append(list.release(), line.c_str()));
}

// A list of authorities in one file is parsed once and kept; a directory beside it would both
// switch that off and be trusted too.
void setTrust(CURL* handle, const std::filesystem::path& authorities) {
  const char* const systemStore = curl_version_info(CURLVERSION_NOW)->cainfo;
  if (!authorities.empty()) {
    curl_easy_setopt(handle, CURLOPT_CAINFO, authorities.c_str());
  } else if (systemStore) {
    curl_easy_setopt(handle, CURLOPT_CAINFO, systemStore);
  } else {
    return;
  }
  curl_easy_setopt(handle, CURLOPT_CAPATH, nullptr);
}

}  // namespace

void CurlEasyDeleter::operator()(CURL* handle) const {
  curl_easy_cleanup(handle);
}

void CurlListDeleter::operator()(curl_slist* list) const {
  curl_slist_free_all(list);
}

CurlTransfer::CurlTransfer(HTTPRequest request, HTTPTransport::Completion completion)
    : request_(std::move(request)), completion_(std::move(completion)) {}

void CurlTransfer::start(CurlEasy easy, const HTTPTransportConfiguration& configuration,
                         CurlSockets& sockets) {
  handle_ = std::move(easy);
  CURL* const handle = handle_.get();
  sockets_ = &sockets;
  maximumAnswer_ = configuration.maximumAnswer;
  idleTimeout_ = configuration.idleTimeout;
  lastProgress_ = DispatchClock::now();
  libraryError_.assign(CURL_ERROR_SIZE, '\0');

  curl_easy_reset(handle);
  curl_easy_setopt(handle, CURLOPT_PRIVATE, this);
  curl_easy_setopt(handle, CURLOPT_ERRORBUFFER, libraryError_.data());
  curl_easy_setopt(handle, CURLOPT_URL, request_.url.c_str());
  curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, "https");
  curl_easy_setopt(handle, CURLOPT_FOLLOWLOCATION, 0L);
  curl_easy_setopt(handle, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
  curl_easy_setopt(handle, CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
  curl_easy_setopt(handle, CURLOPT_ACCEPT_ENCODING, "gzip");
  curl_easy_setopt(handle, CURLOPT_USERAGENT, configuration.userAgent.c_str());
  curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
  // A name lookup that hangs must hold up neither other requests nor the process's end.
  curl_easy_setopt(handle, CURLOPT_QUICK_EXIT, 1L);
  sockets.serve(handle);
  curl_easy_setopt(handle, CURLOPT_CONNECTTIMEOUT_MS,
                   static_cast<long>(configuration.idleTimeout.count()));
  setTrust(handle, configuration.trustedAuthorities);
  if (!configuration.honoursProxy) curl_easy_setopt(handle, CURLOPT_PROXY, "");
  if (!configuration.connectTo.empty()) {
    append(connectTo_, configuration.connectTo);
    curl_easy_setopt(handle, CURLOPT_CONNECT_TO, connectTo_.get());
  }

  for (const auto& [name, value] : request_.headers) {
    append(headers_, std::string(name).append(": ").append(value));
  }
  // Waiting for a server's leave to send costs a second where it never gives one.
  append(headers_, "Expect:");
  curl_easy_setopt(handle, CURLOPT_HTTPHEADER, headers_.get());

  if (request_.method == HTTPMethod::get) {
    curl_easy_setopt(handle, CURLOPT_HTTPGET, 1L);
  } else {
    curl_easy_setopt(handle, CURLOPT_POST, 1L);
    curl_easy_setopt(handle, CURLOPT_CUSTOMREQUEST,
                     kMethodNames.at(static_cast<std::size_t>(request_.method)));
    if (request_.method == HTTPMethod::head) curl_easy_setopt(handle, CURLOPT_NOBODY, 1L);
  }
  if (request_.bodyFile) {
    curl_easy_setopt(handle, CURLOPT_POSTFIELDSIZE_LARGE,
                     static_cast<curl_off_t>(request_.bodyFile->size()));
    curl_easy_setopt(handle, CURLOPT_READFUNCTION, &readBody);
    curl_easy_setopt(handle, CURLOPT_READDATA, this);
    curl_easy_setopt(handle, CURLOPT_SEEKFUNCTION, &seekBody);
    curl_easy_setopt(handle, CURLOPT_SEEKDATA, this);
  } else if (request_.method != HTTPMethod::get) {
    curl_easy_setopt(handle, CURLOPT_POSTFIELDS, request_.body.data());
    curl_easy_setopt(handle, CURLOPT_POSTFIELDSIZE_LARGE,
                     static_cast<curl_off_t>(request_.body.size()));
  }

  curl_easy_setopt(handle, CURLOPT_PREREQFUNCTION, &beforeRequest);
  curl_easy_setopt(handle, CURLOPT_PREREQDATA, this);
  curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, &writeAnswer);
  curl_easy_setopt(handle, CURLOPT_WRITEDATA, this);
  curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, &noteHeader);
  curl_easy_setopt(handle, CURLOPT_HEADERDATA, this);
  curl_easy_setopt(handle, CURLOPT_NOPROGRESS, 0L);
  curl_easy_setopt(handle, CURLOPT_XFERINFOFUNCTION, &noteProgress);
  curl_easy_setopt(handle, CURLOPT_XFERINFODATA, this);
}

// libcurl calls this each time it is about to write the request to a connection. When a kept
// connection ends before the response, libcurl would send the request again on another one,
// although the server may have received it.
int CurlTransfer::beforeRequest(void* self, char* /*remoteAddress*/, char* /*localAddress*/,
                                int /*remotePort*/, int localPort) {
  auto& transfer = *static_cast<CurlTransfer*>(self);
  if (transfer.isWritten_) return CURL_PREREQFUNC_ABORT;
  long newConnections = 0;
  curl_easy_getinfo(transfer.handle(), CURLINFO_NUM_CONNECTS, &newConnections);
  // libcurl 7.88 reuses a connection that the server has closed if TLS's closing message is still
  // unread. Once it is shut down, no byte can leave on it, and libcurl goes on to another one.
  const bool isKept = newConnections == 0;
  transfer.isWritten_ = !isKept || !transfer.sockets_->shutDownIfReadable(localPort);
  return CURL_PREREQFUNC_OK;
}

std::size_t CurlTransfer::writeAnswer(char* data, std::size_t size, std::size_t count, void* self) {
  auto& transfer = *static_cast<CurlTransfer*>(self);
  if (transfer.answer_.size() + size * count > transfer.maximumAnswer_) {
    transfer.ownError_ = {kErrorDomain, CURLE_FILESIZE_EXCEEDED, "The answer is too long."};
    return CURL_WRITEFUNC_ERROR;
  }
  transfer.answer_.append(data, size * count);
  return size * count;
}

// The progress report counts the body alone.
std::size_t CurlTransfer::noteHeader(char* /*line*/, std::size_t size, std::size_t count,
                                     void* self) {
  static_cast<CurlTransfer*>(self)->lastProgress_ = DispatchClock::now();
  return size * count;
}

std::size_t CurlTransfer::readBody(char* buffer, std::size_t size, std::size_t count, void* self) {
  auto& transfer = *static_cast<CurlTransfer*>(self);
  const auto got = transfer.request_.bodyFile->read(transfer.bodyOffset_, {buffer, size * count});
  if (!got) {
    transfer.ownError_ = got.error();
    return CURL_READFUNC_ABORT;
  }
  transfer.bodyOffset_ += got.value();
  return got.value();
}

int CurlTransfer::seekBody(void* self, std::int64_t offset, int origin) {
  if (origin != SEEK_SET) return CURL_SEEKFUNC_CANTSEEK;
  static_cast<CurlTransfer*>(self)->bodyOffset_ = static_cast<std::uint64_t>(offset);
  return CURL_SEEKFUNC_OK;
}

int CurlTransfer::noteProgress(void* self, std::int64_t /*downloadTotal*/, std::int64_t downloaded,
                               std::int64_t /*uploadTotal*/, std::int64_t uploaded) {
  auto& transfer = *static_cast<CurlTransfer*>(self);
  if (transfer.moved_ != downloaded + uploaded) {
    transfer.moved_ = downloaded + uploaded;
    transfer.lastProgress_ = DispatchClock::now();
  }
  return 0;
}

void CurlTransfer::finish(int code) {
  if (code != CURLE_OK) {
    const std::string detail = libraryError_.c_str();
    fail({kErrorDomain, code,
          detail.empty() ? curl_easy_strerror(static_cast<CURLcode>(code)) : detail});
    return;
  }
  long status = 0;
  curl_easy_getinfo(handle_.get(), CURLINFO_RESPONSE_CODE, &status);
  std::exchange(completion_, {})(HTTPResponse{static_cast<int>(status), std::move(answer_)});
}

void CurlTransfer::fail(NSError error) {
  std::exchange(completion_, {})(ownError_ ? *ownError_ : std::move(error));
}

}  // namespace kestrova::platform
