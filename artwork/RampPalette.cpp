#include "artwork/RampPalette.h"

#include <algorithm>
#include <stdexcept>

namespace kestrova::artwork {

namespace {

constexpr unsigned kSteps = 15;

Color mixed(Color from, Color to, unsigned step) {
  Color result = 0;
  for (unsigned shift : {16U, 8U, 0U}) {
    const unsigned a = from >> shift & 0xffU;
    const unsigned b = to >> shift & 0xffU;
    result |= (a * (kSteps - step) + b * step + kSteps / 2) / kSteps << shift;
  }
  return result;
}

int distance(Color a, Color b) {
  int sum = 0;
  for (unsigned shift : {16U, 8U, 0U}) {
    const int apart = static_cast<int>(a >> shift & 0xffU) - static_cast<int>(b >> shift & 0xffU);
    sum += apart * apart;
  }
  return sum;
}

}  // namespace

RampPalette::RampPalette(const std::vector<std::pair<Color, Color>>& edges) {
  for (const auto& [from, to] : edges) {
    for (unsigned step = 0; step <= kSteps; ++step) colors_.push_back(mixed(from, to, step));
  }
  std::ranges::sort(colors_);
  colors_.erase(std::unique(colors_.begin(), colors_.end()), colors_.end());
  if (colors_.size() > 256) throw std::runtime_error("an animation has too many kinds of edges");
}

std::uint8_t RampPalette::index(Color color) {
  const auto [at, isNew] = found_.try_emplace(color, 0);
  if (isNew) {
    const auto nearest = std::ranges::min_element(
        colors_, {}, [color](Color each) { return distance(each, color); });
    at->second = static_cast<std::uint8_t>(nearest - colors_.begin());
  }
  return at->second;
}

}  // namespace kestrova::artwork
