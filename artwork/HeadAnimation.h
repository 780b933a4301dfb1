#pragma once

#include "artwork/Animation.h"

namespace kestrova::artwork {

// A head that turns slowly to the left and to the right, an arrow pointing the way.
class HeadAnimation : public Animation {
 public:
  Format format() const override;
  std::size_t frameCount() const override;
  int delay(std::size_t frame) const override;
  void draw(QPainter& painter, std::size_t frame) const override;
};

}  // namespace kestrova::artwork
