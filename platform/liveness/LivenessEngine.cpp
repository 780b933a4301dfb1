#include "platform/liveness/LivenessEngine.h"

#include <utility>

#include "platform/liveness/DevelopmentEngine.h"

namespace kestrova::platform {

namespace {

std::shared_ptr<LivenessEngine>& chosen() {
  static std::shared_ptr<LivenessEngine> engine;
  return engine;
}

}  // namespace

const std::shared_ptr<LivenessEngine>& LivenessEngine::current() {
  auto& engine = chosen();
  if (!engine) engine = DevelopmentEngine::shared();
  return engine;
}

void LivenessEngine::setCurrent(std::shared_ptr<LivenessEngine> engine) {
  chosen() = std::move(engine);
}

}  // namespace kestrova::platform
