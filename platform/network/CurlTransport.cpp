#include "platform/network/CurlTransport.h"

#include <algorithm>
#include <utility>

#include <curl/curl.h>
#include <unistd.h>

#include "platform/dispatch/Once.h"

namespace kestrova::platform {

namespace {

constexpr std::size_t kMaximumConnections = 4;

NSError unavailable(const char* reason) {
  return {"Kestrova.HTTPTransport", -1, reason};
}

CURLM* makeMulti() {
  static Once initialised;
  initialised([] { curl_global_init(CURL_GLOBAL_DEFAULT); });
  return curl_multi_init();
}

}  // namespace

void CurlMultiDeleter::operator()(CURLM* handle) const {
  curl_multi_cleanup(handle);
}

CurlTransport::CurlTransport(HTTPTransportConfiguration configuration)
    : HTTPTransport(configuration.temporaryDirectory),
      configuration_(std::move(configuration)),
      process_(getpid()),
      multi_(makeMulti()) {
  if (multi_) {
    curl_multi_setopt(multi_.get(), CURLMOPT_MAX_TOTAL_CONNECTIONS,
                      static_cast<long>(kMaximumConnections));
  }
  // Made first, the queues are there until this object is gone at process end.
  static_cast<void>(DispatchQueue::main());
}

CurlTransport::~CurlTransport() {
  if (getpid() != process_) {
    abandon();
    return;
  }
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  if (thread_) curl_multi_wakeup(multi_.get());
  thread_.join();
  for (const auto& transfer : active_) curl_multi_remove_handle(multi_.get(), transfer->handle());
}

// In a forked child the connections are the parent's: closing them in order would end them there.
void CurlTransport::abandon() {
  for (auto& transfer : active_) static_cast<void>(transfer.release());
  for (auto& handle : idleHandles_) static_cast<void>(handle.release());
  static_cast<void>(multi_.release());
}

void CurlTransport::send(HTTPRequest request, Completion completion) {
  auto transfer = std::make_unique<CurlTransfer>(std::move(request), std::move(completion));
  if (getpid() != process_) {
    transfer->fail(unavailable("The transport belongs to the parent process."));
    return;
  }
  {
    const std::lock_guard lock(mutex_);
    if (!thread_ && multi_) thread_ = WorkerThread::start("kestrova-http", [this] { run(); });
    if (thread_) {
      arrived_.push_back(std::move(transfer));
      curl_multi_wakeup(multi_.get());
      return;
    }
  }
  transfer->fail(unavailable("The system has no thread for the transport."));
}

void CurlTransport::run() {
  while (takeArrived()) {
    startWaiting();
    int running = 0;
    curl_multi_perform(multi_.get(), &running);
    finishEnded();
    failIdle();
    waitForWork();
  }
}

bool CurlTransport::takeArrived() {
  const std::lock_guard lock(mutex_);
  std::move(arrived_.begin(), arrived_.end(), std::back_inserter(waiting_));
  arrived_.clear();
  return !stopping_;
}

// Waits for a free connection here and not in the library, where a request's idle time would count
// while it waits.
void CurlTransport::startWaiting() {
  while (!waiting_.empty() && active_.size() < kMaximumConnections) {
    auto transfer = std::move(waiting_.front());
    waiting_.pop_front();
    CurlEasy handle;
    if (idleHandles_.empty()) {
      handle.reset(curl_easy_init());
    } else {
      handle = std::move(idleHandles_.back());
      idleHandles_.pop_back();
    }
    if (!handle) {
      transfer->fail(unavailable("No memory for a transfer."));
      continue;
    }
    transfer->start(std::move(handle), configuration_, sockets_);
    curl_multi_add_handle(multi_.get(), transfer->handle());
    active_.push_back(std::move(transfer));
  }
}

void CurlTransport::finishEnded() {
  int left = 0;
  while (const CURLMsg* const message = curl_multi_info_read(multi_.get(), &left)) {
    if (message->msg != CURLMSG_DONE) continue;
    const auto code = message->data.result;
    const auto ended = std::ranges::find(active_, message->easy_handle,
                                         [](const auto& transfer) { return transfer->handle(); });
    if (ended == active_.end()) continue;
    (*ended)->finish(code);
    retire(ended);
  }
}

void CurlTransport::failIdle() {
  const auto now = DispatchClock::now();
  for (auto transfer = active_.begin(); transfer != active_.end();) {
    const auto current = transfer++;
    if ((*current)->idleDeadline() > now) continue;
    (*current)->finish(CURLE_OPERATION_TIMEDOUT);
    retire(current);
  }
}

void CurlTransport::retire(Transfers::iterator transfer) {
  curl_multi_remove_handle(multi_.get(), (*transfer)->handle());
  idleHandles_.push_back((*transfer)->takeHandle());
  active_.erase(transfer);
}

void CurlTransport::waitForWork() {
  if (!waiting_.empty() && active_.size() < kMaximumConnections) return;
  auto due = DispatchClock::now() + std::chrono::hours(1);
  for (const auto& transfer : active_) due = std::min(due, transfer->idleDeadline());
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(due - DispatchClock::now());
  curl_multi_poll(multi_.get(), nullptr, 0, static_cast<int>(std::max<long>(left.count(), 0)),
                  nullptr);
}

}  // namespace kestrova::platform
