#pragma once

#include <deque>
#include <list>
#include <memory>
#include <mutex>
#include <vector>

#include <sys/types.h>

#include "platform/dispatch/WorkerThread.h"
#include "platform/network/CurlSockets.h"
#include "platform/network/CurlTransfer.h"
#include "platform/network/HTTPTransport.h"

using CURLM = void;

namespace kestrova::platform {

struct CurlMultiDeleter {
  void operator()(CURLM* handle) const;
};

// HTTPTransport over libcurl's multi interface. One I/O thread owns every transfer; other threads
// only leave requests in `arrived_` and wake it.
class CurlTransport final : public HTTPTransport {
 public:
  explicit CurlTransport(HTTPTransportConfiguration configuration);
  CurlTransport(const CurlTransport&) = delete;
  CurlTransport& operator=(const CurlTransport&) = delete;
  ~CurlTransport() override;

  void send(HTTPRequest request, Completion completion) override;

 private:
  using Transfers = std::list<std::unique_ptr<CurlTransfer>>;

  void abandon();
  void run();
  bool takeArrived();
  void startWaiting();
  void finishEnded();
  void failIdle();
  void waitForWork();
  void retire(Transfers::iterator transfer);

  const HTTPTransportConfiguration configuration_;
  const pid_t process_;
  // Declared before the handles, so that it outlives them: they close its sockets.
  CurlSockets sockets_;
  std::unique_ptr<CURLM, CurlMultiDeleter> multi_;

  std::mutex mutex_;
  std::deque<std::unique_ptr<CurlTransfer>> arrived_;
  bool stopping_ = false;
  WorkerThread thread_;

  // The I/O thread's.
  std::deque<std::unique_ptr<CurlTransfer>> waiting_;
  Transfers active_;
  std::vector<CurlEasy> idleHandles_;
};

}  // namespace kestrova::platform
