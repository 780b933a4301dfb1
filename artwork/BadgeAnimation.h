#pragma once

#include "artwork/Animation.h"

namespace kestrova::artwork {

// A seal draws itself, its check mark follows, marks fly out around it; then all of it rests.
class BadgeAnimation : public Animation {
 public:
  Format format() const override;
  std::size_t frameCount() const override;
  int delay(std::size_t frame) const override;
  void draw(QPainter& painter, std::size_t frame) const override;
};

}  // namespace kestrova::artwork
