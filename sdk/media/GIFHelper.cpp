#include "sdk/media/GIFHelper.h"

#include <algorithm>
#include <memory>
#include <numeric>
#include <string>
#include <utility>

#include "platform/foundation/FileManager.h"
#include "platform/foundation/JSONValue.h"
#include "platform/foundation/Print.h"
#include "sdk/core/Kestrova.h"

namespace kestrova {

namespace {

constexpr double kShortestDelay = 0.1;
constexpr double kUnitsOfASecond = 300;
constexpr double kUnitsOfAPlayedSecond = 1000;
constexpr std::int64_t kMaximumEntries = 1'000'000;

const double* number(const JSONDictionary& dictionary, const char* key) {
  const auto found = dictionary.find(key);
  return found == dictionary.end() ? nullptr : found->second.real();
}

}  // namespace

std::optional<UIImage> UIImageExtensions::gifImageWithName(std::string_view name) {
  const auto bundle = Kestrova::bundle();
  const auto path = bundle ? bundle->path(name, "gif") : std::nullopt;
  if (!path) {
    print("The image named " + quoted(name) + " does not exist");
    return std::nullopt;
  }
  auto data = FileManager::contents(*path);
  if (!data) {
    print("The image named " + quoted(name) + " cannot be read");
    return std::nullopt;
  }
  return gifImageWithData(std::move(data).value());
}

std::optional<UIImage> UIImageExtensions::gifImageWithData(Data data) {
  auto source = CGImageSource::make(std::make_shared<const Data>(std::move(data)));
  if (!source) {
    print("image doesn't exist");
    return std::nullopt;
  }
  return animatedImageWithSource(source.value());
}

std::optional<UIImage> UIImageExtensions::animatedImageWithSource(CGImageSource& source) {
  std::vector<UIImage> images;
  std::vector<std::int64_t> units;
  for (std::size_t i = 0; i < source.count(); ++i) {
    auto image = source.imageAtIndex(i);
    if (!image) continue;
    images.emplace_back(std::move(image).value());
    units.push_back(static_cast<std::int64_t>(delayForImageAtIndex(i, source) * kUnitsOfASecond));
  }
  const auto total = std::accumulate(units.begin(), units.end(), std::int64_t{0});
  const auto divisor = gcdForArray(units);
  if (total / divisor > kMaximumEntries) {
    print("An animation takes too many entries");
    return std::nullopt;
  }
  std::vector<UIImage> frames;
  frames.reserve(static_cast<std::size_t>(total / divisor));
  for (std::size_t i = 0; i < images.size(); ++i) {
    frames.insert(frames.end(), static_cast<std::size_t>(units[i] / divisor), images[i]);
  }
  return UIImage::animatedImage(std::move(frames),
                                static_cast<double>(total) / kUnitsOfAPlayedSecond);
}

double UIImageExtensions::delayForImageAtIndex(std::size_t index, const CGImageSource& source) {
  const auto properties = source.propertiesAtIndex(index);
  const auto found = properties.find(kCGImagePropertyGIFDictionary);
  const auto* const gif = found == properties.end() ? nullptr : found->second.dictionary();
  if (!gif) return kShortestDelay;
  const auto* delay = number(*gif, kCGImagePropertyGIFUnclampedDelayTime);
  if (delay && *delay == 0) delay = number(*gif, kCGImagePropertyGIFDelayTime);
  return delay && *delay >= kShortestDelay ? *delay : kShortestDelay;
}

std::int64_t UIImageExtensions::gcdForPair(std::optional<std::int64_t> a,
                                           std::optional<std::int64_t> b) {
  if (!a || !b) return b.value_or(a.value_or(0));
  std::int64_t larger = std::max(*a, *b);
  std::int64_t smaller = std::min(*a, *b);
  // Dividing the smallest integer by -1 is undefined; everything is a multiple of -1.
  while (smaller != 0 && smaller != -1 && larger % smaller != 0) {
    larger = std::exchange(smaller, larger % smaller);
  }
  return smaller != 0 ? smaller : larger;
}

std::int64_t UIImageExtensions::gcdForArray(const std::vector<std::int64_t>& array) {
  if (array.empty()) return 1;
  return std::accumulate(
      array.begin(), array.end(), array.front(),
      [](std::int64_t divisor, std::int64_t value) { return gcdForPair(value, divisor); });
}

}  // namespace kestrova
