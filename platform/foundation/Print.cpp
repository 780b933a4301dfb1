#include "platform/foundation/Print.h"

#include <csignal>
#include <cstdio>
#include <ctime>
#include <string>

namespace kestrova::platform {

namespace {

// While it lives, a write of this thread to a pipe that nobody reads any more is an error, and not
// the end of the host. How the host takes that signal elsewhere stays its own affair.
class UnreadPipes {
 public:
  UnreadPipes() {
    sigemptyset(&signal_);
    sigaddset(&signal_, SIGPIPE);
    sigset_t pending;
    sigpending(&pending);
    wasPending_ = sigismember(&pending, SIGPIPE) == 1;
    pthread_sigmask(SIG_BLOCK, &signal_, &before_);
  }
  ~UnreadPipes() {
    const std::timespec none{};
    if (!wasPending_) sigtimedwait(&signal_, nullptr, &none);
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  }
  UnreadPipes(const UnreadPipes&) = delete;
  UnreadPipes& operator=(const UnreadPipes&) = delete;

 private:
  sigset_t signal_{};
  sigset_t before_{};
  bool wasPending_ = false;
};

}  // namespace

void print(std::string_view line) {
  std::string whole(line);
  whole += '\n';
  const UnreadPipes unread;
  // One call of the stream that the host's own output goes through: the line stays in one piece,
  // and in its place among the host's.
  static_cast<void>(std::fwrite(whole.data(), 1, whole.size(), stdout));
  static_cast<void>(std::fflush(stdout));
}

}  // namespace kestrova::platform
