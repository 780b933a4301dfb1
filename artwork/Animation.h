#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "artwork/Colors.h"

class QPainter;

namespace kestrova::artwork {

// A picture that moves: what AnimatedFile needs to know to store it.
class Animation {
 public:
  struct Format {
    int width;   // pixels
    int height;  // pixels
    Color ground;
    // Pairs of colours that meet at an edge; the palette holds a ramp between each two.
    std::vector<std::pair<Color, Color>> edges;
  };

  Animation() = default;
  Animation(const Animation&) = delete;
  Animation& operator=(const Animation&) = delete;
  virtual ~Animation() = default;

  virtual Format format() const = 0;
  virtual std::size_t frameCount() const = 0;
  // Hundredths of a second as stored, of which the SDK plays three tenths; at least 10.
  virtual int delay(std::size_t frame) const = 0;
  // `painter` is anti-aliased, works in pixels and stands on the ground.
  virtual void draw(QPainter& painter, std::size_t frame) const = 0;
};

}  // namespace kestrova::artwork
