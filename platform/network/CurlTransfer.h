#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include "platform/dispatch/DispatchBlock.h"
#include "platform/network/HTTPTransport.h"

struct curl_slist;
using CURL = void;

namespace kestrova::platform {

class CurlSockets;

struct CurlEasyDeleter {
  void operator()(CURL* handle) const;
};
using CurlEasy = std::unique_ptr<CURL, CurlEasyDeleter>;

struct CurlListDeleter {
  void operator()(curl_slist* list) const;
};
using CurlList = std::unique_ptr<curl_slist, CurlListDeleter>;

// One request under way. Belongs to the I/O thread from its start to its end; stays at its address,
// which the handle's callbacks hold.
class CurlTransfer {
 public:
  CurlTransfer(HTTPRequest request, HTTPTransport::Completion completion);
  CurlTransfer(const CurlTransfer&) = delete;
  CurlTransfer& operator=(const CurlTransfer&) = delete;
  ~CurlTransfer() = default;

  // Sets `handle`, fresh or used before, up for the request. `sockets` outlives the transfer.
  void start(CurlEasy handle, const HTTPTransportConfiguration& configuration,
             CurlSockets& sockets);
  CURL* handle() const { return handle_.get(); }
  CurlEasy takeHandle() { return std::move(handle_); }

  DispatchClock::time_point idleDeadline() const { return lastProgress_ + idleTimeout_; }

  // Hands the answer, or the error of a transfer that ended with the library's `code`, to the
  // completion.
  void finish(int code);
  void fail(NSError error);

 private:
  static std::size_t writeAnswer(char* data, std::size_t size, std::size_t count, void* self);
  static std::size_t noteHeader(char* line, std::size_t size, std::size_t count, void* self);
  static std::size_t readBody(char* buffer, std::size_t size, std::size_t count, void* self);
  static int beforeRequest(void* self, char* remoteAddress, char* localAddress, int remotePort,
                           int localPort);
  static int seekBody(void* self, std::int64_t offset, int origin);
  static int noteProgress(void* self, std::int64_t downloadTotal, std::int64_t downloaded,
                          std::int64_t uploadTotal, std::int64_t uploaded);

  HTTPRequest request_;
  HTTPTransport::Completion completion_;
  CurlList headers_;
  CurlList connectTo_;
  std::string answer_;
  std::string libraryError_;
  std::optional<NSError> ownError_;
  const CurlSockets* sockets_ = nullptr;
  std::size_t maximumAnswer_ = 0;
  std::uint64_t bodyOffset_ = 0;
  std::int64_t moved_ = 0;
  // True once a byte of the request may have left.
  bool isWritten_ = false;
  DispatchClock::duration idleTimeout_{};
  DispatchClock::time_point lastProgress_;
  // Last, so that it ends before what it refers to.
  CurlEasy handle_;
};

}  // namespace kestrova::platform
