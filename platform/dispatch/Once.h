#pragma once

#include <mutex>
#include <utility>

namespace kestrova::platform {

// Runs a block the first time it is called in the process and never again. Concurrent callers wait
// for the first; a block that throws leaves the next caller to try. Any thread.
class Once {
 public:
  template <typename Block>
  void operator()(Block&& block) {
    std::call_once(flag_, std::forward<Block>(block));
  }

 private:
  std::once_flag flag_;
};

}  // namespace kestrova::platform
