#include "platform/graphics/PNGWriter.h"

#include <algorithm>
#include <csetjmp>
#include <cstring>
#include <string>
#include <vector>

#include <png.h>
#include <zlib.h>

#include "platform/graphics/GraphicsError.h"
#include "platform/graphics/RowFilter.h"

namespace kestrova::platform {

namespace {

struct Encoder {
  Encoder() {
    png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr,
                                  [](png_structp, png_const_charp) {});
    if (png) info = png_create_info_struct(png);
  }
  Encoder(const Encoder&) = delete;
  Encoder& operator=(const Encoder&) = delete;
  ~Encoder() { png_destroy_write_struct(&png, &info); }

  static void append(png_structp png, png_bytep bytes, std::size_t size) {
    auto& self = *static_cast<Encoder*>(png_get_io_ptr(png));
    // No exception may pass through the library.
    try {
      self.file.insert(self.file.end(), bytes, bytes + size);
    } catch (const std::bad_alloc&) {
      self.isFull = true;
    }
    if (self.isFull) png_error(png, "no memory for the file");
  }

  png_structp png = nullptr;
  png_infop info = nullptr;
  std::vector<std::uint8_t> file;
  bool isFull = false;
};

std::uint8_t channel(std::uint32_t pixel, unsigned shift) {
  return static_cast<std::uint8_t>(pixel >> shift);
}

void writeRGB(std::span<const std::uint32_t> pixels, std::uint8_t* to) {
  for (const auto pixel : pixels) {
    to[0] = channel(pixel, 16);
    to[1] = channel(pixel, 8);
    to[2] = channel(pixel, 0);
    to += 3;
  }
}

void writeRGBA(std::span<const std::uint32_t> pixels, std::uint8_t* to) {
  for (const auto pixel : pixels) {
    const auto alpha = pixel >> 24U;
    const auto whole = [&](unsigned shift) {
      const auto part = pixel >> shift & 0xffU;
      return static_cast<std::uint8_t>(
          alpha == 0 ? 0 : std::min((part * 255 + alpha / 2) / alpha, 255U));
    };
    to[0] = whole(16);
    to[1] = whole(8);
    to[2] = whole(0);
    to[3] = static_cast<std::uint8_t>(alpha);
    to += 4;
  }
}

// Two rows of bytes, each behind as many zeros as a pixel has bytes.
class Lines {
 public:
  Lines(std::size_t width, std::size_t pixelSize)
      : pixelSize_(pixelSize),
        size_(width * pixelSize),
        current_(pixelSize + size_),
        above_(pixelSize + size_) {}

  std::uint8_t* next() {
    current_.swap(above_);
    return &current_[pixelSize_];
  }
  // The filter for the row that next() gave.
  int filter() const {
    return 8 << static_cast<int>(
               bestFilter(&current_[pixelSize_], &above_[pixelSize_], size_, pixelSize_));
  }

 private:
  std::size_t pixelSize_;
  std::size_t size_;
  std::vector<std::uint8_t> current_;
  std::vector<std::uint8_t> above_;
};
static_assert(PNG_FILTER_NONE == 8 << static_cast<int>(RowFilter::none) &&
              PNG_FILTER_PAETH == 8 << static_cast<int>(RowFilter::paeth));

// Holds nothing that needs its destructor: the library leaves by a jump.
bool writeFile(Encoder& encoder, const CGImage& image, bool isOpaque, Lines& lines) {
  auto* const png = encoder.png;
  // The library offers no other way out of its errors.
  if (!encoder.info || setjmp(png_jmpbuf(png)) != 0) return false;
  png_set_write_fn(png, &encoder, Encoder::append, nullptr);
  png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
  png_set_IHDR(png, encoder.info, static_cast<png_uint_32>(image.width()),
               static_cast<png_uint_32>(image.height()), 8,
               isOpaque ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  // With all of them at the first row the library keeps the row above; then it is told which.
  png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_ALL_FILTERS);
  png_set_compression_strategy(png, Z_RLE);
  png_write_info(png, encoder.info);
  for (std::size_t y = 0; y < image.height(); ++y) {
    auto* const line = lines.next();
    (isOpaque ? writeRGB : writeRGBA)(image.row(y), line);
    if (y > 0) png_set_filter(png, PNG_FILTER_TYPE_BASE, lines.filter());
    png_write_row(png, line);
  }
  png_write_end(png, encoder.info);
  return true;
}

}  // namespace

Result<Data> encodePNG(const CGImage& image) {
  Encoder encoder;
  const bool isOpaque = image.isOpaque();
  Lines lines(image.width(), isOpaque ? 3 : 4);
  if (!writeFile(encoder, image, isOpaque, lines)) {
    return graphicsError(GraphicsErrorCode::unavailable, "no memory for a PNG file");
  }
  Data data(encoder.file.size());
  std::memcpy(data.bytes(), encoder.file.data(), data.size());
  return data;
}

}  // namespace kestrova::platform
