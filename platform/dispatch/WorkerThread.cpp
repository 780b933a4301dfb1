#include "platform/dispatch/WorkerThread.h"

#include <csignal>
#include <system_error>
#include <utility>

#include <pthread.h>
#include <unistd.h>

namespace kestrova::platform {

namespace {

class AllSignalsBlocked {
 public:
  AllSignalsBlocked() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  AllSignalsBlocked(const AllSignalsBlocked&) = delete;
  AllSignalsBlocked& operator=(const AllSignalsBlocked&) = delete;
  ~AllSignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

 private:
  sigset_t before_{};
};

}  // namespace

WorkerThread WorkerThread::start(const char* name, DispatchBlock body) {
  const AllSignalsBlocked inherited;
  WorkerThread started;
  started.process_ = getpid();
  try {
    started.thread_ = std::thread(std::move(body));
    pthread_setname_np(started.thread_.native_handle(), name);
  } catch (const std::system_error&) {
    return {};
  }
  return started;
}

void WorkerThread::join() {
  if (!thread_.joinable()) return;
  if (process_ != getpid() || thread_.get_id() == std::this_thread::get_id()) {
    thread_.detach();
  } else {
    thread_.join();
  }
}

}  // namespace kestrova::platform
