#include "platform/dispatch/DispatchQueue.h"

#include <utility>

#include "platform/dispatch/DispatchRuntime.h"
#include "platform/dispatch/PoolQueue.h"

namespace kestrova::platform {

DispatchQueue::DispatchQueue(std::string label)
    : DispatchQueue(std::move(label), std::make_shared<PoolQueue>(DispatchQoS::userInitiated,
                                                                  PoolQueue::Order::serial)) {}

DispatchQueue DispatchQueue::main() {
  return {"main", DispatchRuntime::shared().mainQueue()};
}

DispatchQueue DispatchQueue::global(DispatchQoS qos) {
  return {"global", std::make_shared<PoolQueue>(qos, PoolQueue::Order::concurrent)};
}

}  // namespace kestrova::platform
