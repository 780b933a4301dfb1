#pragma once

#include "artwork/Animation.h"
#include "artwork/Card.h"

namespace kestrova::artwork {

// A hand straightens a tilted document with glare on it inside a frame, whose four corners then
// light up one after the other.
class CardAnimation : public Animation {
 public:
  explicit CardAnimation(DocumentSide side) : side_(side) {}

  Format format() const override;
  std::size_t frameCount() const override;
  int delay(std::size_t frame) const override;
  void draw(QPainter& painter, std::size_t frame) const override;

 private:
  DocumentSide side_;
};

}  // namespace kestrova::artwork
