#pragma once

#include <cstddef>
#include <memory>

#include "platform/foundation/Data.h"
#include "platform/foundation/JSONValue.h"
#include "platform/foundation/Result.h"
#include "platform/graphics/CGImage.h"

namespace kestrova::platform {

// Keys of an image's properties. Delays are seconds: as stored, 0 included, and no less than 0.1.
// Both are absent from the GIF dictionary of an image that states none.
inline constexpr auto kCGImagePropertyGIFDictionary = "{GIF}";
inline constexpr auto kCGImagePropertyGIFUnclampedDelayTime = "UnclampedDelayTime";
inline constexpr auto kCGImagePropertyGIFDelayTime = "DelayTime";

// The images of a GIF file as they look on its screen: each composed over what its predecessors
// leave, uncovered pixels transparent. A screen without a size ends with the first image. One
// thread at a time; asking in rising order decodes each image once, a step back begins anew.
class CGImageSource {
 public:
  // Walks through the whole file without decoding. Of one that breaks off, the images before the
  // break count. An error for what is no GIF file and where the images, each as large as the screen
  // or itself, exceed CGImage::kMaximumPixels together.
  static Result<CGImageSource> make(std::shared_ptr<const Data> data);
  CGImageSource(CGImageSource&&) noexcept;
  CGImageSource& operator=(CGImageSource&&) noexcept;
  CGImageSource(const CGImageSource&) = delete;
  CGImageSource& operator=(const CGImageSource&) = delete;
  ~CGImageSource();

  std::size_t count() const;
  // An error for a damaged image, over which later ones are composed as if it were not there, and
  // beyond the count.
  Result<std::shared_ptr<const CGImage>> imageAtIndex(std::size_t index);
  // Empty beyond the count.
  JSONDictionary propertiesAtIndex(std::size_t index) const;

 private:
  struct State;
  explicit CGImageSource(std::unique_ptr<State> state);

  std::unique_ptr<State> state_;
};

}  // namespace kestrova::platform
