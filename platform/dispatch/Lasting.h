#pragma once

#include <cstddef>
#include <new>

namespace kestrova::platform {

// Holds a static object whose memory is never freed, as threads may still use it while the process
// ends. In the place of its destructor its stop() is called.
template <typename Value>
class Lasting {
 public:
  Lasting() : value_(new (memory_) Value) {}
  Lasting(const Lasting&) = delete;
  Lasting& operator=(const Lasting&) = delete;
  ~Lasting() { value_->stop(); }

  Value& operator*() const { return *value_; }

 private:
  alignas(Value) std::byte memory_[sizeof(Value)];
  Value* value_;
};

}  // namespace kestrova::platform
