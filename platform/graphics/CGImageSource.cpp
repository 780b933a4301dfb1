#include "platform/graphics/CGImageSource.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "platform/graphics/GIFReader.h"
#include "platform/graphics/GraphicsError.h"

namespace kestrova::platform {

namespace {

// Which row of the picture the n-th stored row is.
class RowOrder {
 public:
  RowOrder(std::size_t height, bool isInterlaced) : height_(height), isInterlaced_(isInterlaced) {}

  std::size_t next() {
    const auto row = row_;
    row_ += isInterlaced_ ? kSteps[pass_] : 1;
    while (isInterlaced_ && row_ >= height_ && pass_ + 1 < std::size(kSteps)) {
      row_ = kStarts[++pass_];
    }
    return row;
  }

 private:
  static constexpr std::size_t kStarts[] = {0, 4, 2, 1};
  static constexpr std::size_t kSteps[] = {8, 8, 4, 2};

  std::size_t height_;
  bool isInterlaced_;
  std::size_t row_ = 0;
  std::size_t pass_ = 0;
};

NSError damaged(const char* what) {
  return graphicsError(GraphicsErrorCode::damaged, what);
}

}  // namespace

struct CGImageSource::State {
  using Image = std::shared_ptr<const CGImage>;

  Result<Image> decodeNext();
  Result<Image> compose(const GIFReader::Frame& frame);
  void drawRows(const GIFReader::Frame& frame, const GIFReader::Palette& palette,
                const CGImage& under, CGImage& canvas) const;

  std::shared_ptr<const Data> data;
  std::size_t screenWidth = 0;
  std::size_t screenHeight = 0;
  std::vector<GIFReader::Frame> frames;

  // The walk in which images are decoded: the frame to come, and what it is composed over.
  std::optional<GIFReader> reader;
  std::size_t position = 0;
  Image base;
  // Of the base, to be cleared first: the frame that is disposed of.
  std::optional<GIFReader::Frame> cleared;
  // Of the current frame's colours.
  std::vector<std::uint8_t> indices;
};

namespace {

// The part of a frame's row or column that lies on the screen.
std::size_t visible(std::size_t start, std::size_t length, std::size_t screen) {
  return start < screen ? std::min(length, screen - start) : 0;
}

void clear(const GIFReader::Frame& frame, CGImage& canvas) {
  const auto width = visible(frame.left, frame.width, canvas.width());
  const auto height = visible(frame.top, frame.height, canvas.height());
  for (std::size_t y = 0; width > 0 && y < height; ++y) {
    std::ranges::fill(canvas.row(frame.top + y).subspan(frame.left, width), 0U);
  }
}

// All pixels but those that the frame covers.
void copyAround(const GIFReader::Frame& frame, const CGImage& from, CGImage& to) {
  const auto width = visible(frame.left, frame.width, to.width());
  const auto height = visible(frame.top, frame.height, to.height());
  const auto left = std::min(frame.left, to.width());
  for (std::size_t y = 0; y < to.height(); ++y) {
    const bool isCovered = y >= frame.top && y - frame.top < height;
    const auto row = from.row(y);
    std::ranges::copy(row.first(isCovered ? left : row.size()), to.row(y).begin());
    if (isCovered) {
      std::ranges::copy(row.subspan(left + width), to.row(y).subspan(left + width).begin());
    }
  }
}

}  // namespace

void CGImageSource::State::drawRows(const GIFReader::Frame& frame,
                                    const GIFReader::Palette& palette, const CGImage& under,
                                    CGImage& canvas) const {
  const auto width = visible(frame.left, frame.width, canvas.width());
  const auto height = visible(frame.top, frame.height, canvas.height());
  RowOrder order(frame.height, frame.isInterlaced);
  for (std::size_t i = 0; i < frame.height; ++i) {
    const auto y = order.next();
    if (y >= height || width == 0) continue;
    const auto* const colors = &indices[i * frame.width];
    const auto* const below = under.row(frame.top + y).data() + frame.left;
    auto* const row = canvas.row(frame.top + y).data() + frame.left;
    for (std::size_t x = 0; x < width; ++x) {
      const auto color = palette[colors[x]];
      // Without a branch, which nothing could predict: what lies below where there is no alpha.
      row[x] = color | (below[x] & ((color >> 31U) - 1));
    }
  }
}

Result<CGImageSource::State::Image> CGImageSource::State::compose(const GIFReader::Frame& frame) {
  if (!frame.isReadable) {
    reader->skipColors();
    return damaged("an image of an unknown code size in a GIF file");
  }
  indices.resize(frame.width * frame.height);
  GIFReader::Palette palette{};
  if (!reader->readColors(indices) || !reader->palette(palette)) {
    return damaged("a damaged image in a GIF file");
  }
  if (frame.transparentColor) palette.at(*frame.transparentColor) = 0;
  auto canvas = CGImage::make(screenWidth, screenHeight);
  if (!canvas) return damaged("a GIF file without a screen");
  const auto* under = canvas.get();
  if (!base) {
    std::ranges::fill(canvas->pixels(), 0U);
  } else if (cleared) {
    std::ranges::copy(base->pixels(), canvas->pixels().begin());
    clear(*cleared, *canvas);
  } else {
    // Each pixel is written once.
    copyAround(frame, *base, *canvas);
    under = base.get();
  }
  drawRows(frame, palette, *under, *canvas);
  Image image = std::move(canvas);
  if (frame.disposal != GIFReader::Disposal::previous) {
    base = image;
    cleared.reset();
    if (frame.disposal == GIFReader::Disposal::background) cleared = frame;
  }
  return image;
}

Result<CGImageSource::State::Image> CGImageSource::State::decodeNext() {
  ++position;
  const auto frame = reader->nextFrame();
  if (!frame) return damaged("a GIF file that breaks off");
  return compose(*frame);
}

CGImageSource::CGImageSource(std::unique_ptr<State> state) : state_(std::move(state)) {}
CGImageSource::CGImageSource(CGImageSource&&) noexcept = default;
CGImageSource& CGImageSource::operator=(CGImageSource&&) noexcept = default;
CGImageSource::~CGImageSource() = default;

Result<CGImageSource> CGImageSource::make(std::shared_ptr<const Data> data) {
  auto reader = GIFReader::open(data->view());
  if (!reader) return reader.error();
  auto state = std::make_unique<State>();
  state->screenWidth = reader.value().screenWidth();
  state->screenHeight = reader.value().screenHeight();
  std::size_t pixels = 0;
  while (const auto frame = reader.value().nextFrame()) {
    if (state->screenWidth == 0) state->screenWidth = frame->left + frame->width;
    if (state->screenHeight == 0) state->screenHeight = frame->top + frame->height;
    pixels += std::max(state->screenWidth * state->screenHeight, frame->width * frame->height);
    if (pixels > CGImage::kMaximumPixels) {
      return graphicsError(GraphicsErrorCode::tooLarge, "a GIF file of too many pixels");
    }
    if (!reader.value().skipColors()) break;
    state->frames.push_back(*frame);
  }
  state->data = std::move(data);
  return CGImageSource(std::move(state));
}

std::size_t CGImageSource::count() const {
  return state_->frames.size();
}

Result<std::shared_ptr<const CGImage>> CGImageSource::imageAtIndex(std::size_t index) {
  if (index >= count()) return damaged("no image of that index in the GIF file");
  if (!state_->reader || index < state_->position) {
    auto reader = GIFReader::open(state_->data->view());
    if (!reader) return reader.error();
    state_->reader = std::move(reader).value();
    state_->position = 0;
    state_->base = nullptr;
    state_->cleared.reset();
  }
  // The images before it count for what they leave behind, a damaged one for nothing.
  while (state_->position < index) (void)state_->decodeNext();
  return state_->decodeNext();
}

JSONDictionary CGImageSource::propertiesAtIndex(std::size_t index) const {
  if (index >= count()) return {};
  JSONDictionary gif;
  if (const auto delay = state_->frames[index].delay) {
    constexpr double kMinimum = 0.1;
    const double seconds = *delay / 100.0;
    gif[kCGImagePropertyGIFUnclampedDelayTime] = seconds;
    gif[kCGImagePropertyGIFDelayTime] = std::max(seconds, kMinimum);
  }
  return {{kCGImagePropertyGIFDictionary, std::move(gif)}};
}

}  // namespace kestrova::platform
