#pragma once

#include <memory>

namespace kestrova::platform {

// Drains the main queue in the loop of the toolkit's application object, on the thread that makes
// it. Main thread; ends before the application object does.
class MainLoopPump {
 public:
  MainLoopPump();
  ~MainLoopPump();
  MainLoopPump(const MainLoopPump&) = delete;
  MainLoopPump& operator=(const MainLoopPump&) = delete;

 private:
  class Receiver;
  struct Bell;

  std::unique_ptr<Receiver> receiver_;
  // Shared with the queue, which may ring while this ends.
  std::shared_ptr<Bell> bell_;
};

}  // namespace kestrova::platform
