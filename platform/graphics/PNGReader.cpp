#include "platform/graphics/PNGReader.h"

#include <algorithm>
#include <csetjmp>
#include <cstring>
#include <string>
#include <vector>

#include <png.h>

#include "platform/graphics/ColorProfile.h"
#include "platform/graphics/GraphicsError.h"
#include "platform/graphics/PremultipliedAlpha.h"

namespace kestrova::platform {

namespace {

// Deflate expands a byte to at most 1032.
constexpr std::size_t kMaximumExpansion = 1032;

png_const_bytep bytesOf(const char* text) {
  return reinterpret_cast<png_const_bytep>(text);
}

struct Decoder {
  explicit Decoder(std::string_view data) : rest(data) {
    png = png_create_read_struct(PNG_LIBPNG_VER_STRING, this, fail,
                                 [](png_structp, png_const_charp) {});
    if (png) info = png_create_info_struct(png);
  }
  Decoder(const Decoder&) = delete;
  Decoder& operator=(const Decoder&) = delete;
  ~Decoder() { png_destroy_read_struct(&png, &info, nullptr); }

  [[noreturn]] static void fail(png_structp png, png_const_charp message) {
    auto& self = *static_cast<Decoder*>(png_get_error_ptr(png));
    std::strncpy(self.message, message, sizeof(self.message) - 1);
    png_longjmp(png, 1);
  }

  static void read(png_structp png, png_bytep to, std::size_t size) {
    auto& rest = static_cast<Decoder*>(png_get_io_ptr(png))->rest;
    if (size > rest.size()) png_error(png, "the file breaks off");
    std::copy_n(rest.data(), size, to);
    rest.remove_prefix(size);
  }

  // Runs a step that may fail. The step may hold nothing that needs its destructor.
  template <typename Step>
  bool run(Step step) {
    if (!info) return false;
    // The library offers no other way out of its errors.
    if (setjmp(png_jmpbuf(png)) != 0) return false;
    step();
    return true;
  }

  bool readHead() {
    return run([this] {
      png_set_read_fn(png, this, read);
      png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
      // Texts and the like: nobody reads them, and they may be large when unpacked.
      png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
      png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_AS_DEFAULT, bytesOf("iCCP"), 1);
      png_set_crc_action(png, PNG_CRC_ERROR_QUIT, PNG_CRC_WARN_DISCARD);
      png_read_info(png, info);
    });
  }

  std::string_view rest;
  png_structp png = nullptr;
  png_infop info = nullptr;
  char message[80] = {};
};

NSError damaged(const Decoder& decoder) {
  return graphicsError(GraphicsErrorCode::damaged,
                       std::string("a damaged PNG file: ") + decoder.message);
}

Result<PNGReader::Size> checkedSize(Decoder& decoder, std::size_t dataSize) {
  if (!decoder.readHead()) {
    return graphicsError(GraphicsErrorCode::unknownFormat,
                         std::string("not a PNG file: ") + decoder.message);
  }
  const std::size_t width = png_get_image_width(decoder.png, decoder.info);
  const std::size_t height = png_get_image_height(decoder.png, decoder.info);
  if (!CGImage::isAllowed(width, height)) {
    return graphicsError(
        GraphicsErrorCode::tooLarge,
        "a PNG file of " + std::to_string(width) + " x " + std::to_string(height) + " pixels");
  }
  if (png_get_rowbytes(decoder.png, decoder.info) * height / kMaximumExpansion > dataSize) {
    return graphicsError(GraphicsErrorCode::damaged, "a PNG file that breaks off");
  }
  return PNGReader::Size{width, height};
}

// The colour space that the file states.
std::shared_ptr<const ColorProfile> colorProfile(const Decoder& decoder) {
  png_charp name = nullptr;
  png_bytep icc = nullptr;
  png_uint_32 size = 0;
  int compression = 0;
  if (png_get_iCCP(decoder.png, decoder.info, &name, &compression, &icc, &size) == 0)
    return nullptr;
  return ColorProfile::make({reinterpret_cast<const char*>(icc), size});
}

}  // namespace

Result<PNGReader::Size> PNGReader::size(std::string_view data) {
  Decoder decoder(data);
  return checkedSize(decoder, data.size());
}

Result<std::shared_ptr<const CGImage>> PNGReader::decode(std::string_view data) {
  Decoder decoder(data);
  const auto size = checkedSize(decoder, data.size());
  if (!size) return size.error();
  const auto image = CGImage::make(size.value().width, size.value().height);
  std::vector<png_bytep> rows(image->height());
  for (std::size_t y = 0; y < rows.size(); ++y) {
    rows[y] = reinterpret_cast<png_bytep>(image->row(y).data());
  }
  const bool isRead = decoder.run([&decoder, &rows] {
    png_set_expand(decoder.png);
    png_set_scale_16(decoder.png);
    png_set_gray_to_rgb(decoder.png);
    png_set_add_alpha(decoder.png, 0xff, PNG_FILLER_AFTER);
    png_set_bgr(decoder.png);
    png_read_update_info(decoder.png, decoder.info);
    png_read_image(decoder.png, rows.data());
  });
  if (!isRead) return damaged(decoder);
  const auto pixels = image->pixels();
  std::ranges::transform(pixels, pixels.begin(), premultiplied);
  if (const auto profile = colorProfile(decoder)) profile->convert(pixels);
  return std::shared_ptr<const CGImage>(image);
}

}  // namespace kestrova::platform
