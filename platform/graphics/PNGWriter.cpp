#include "platform/graphics/PNGWriter.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include <zlib.h>

#include "platform/graphics/GraphicsError.h"
#include "platform/graphics/PremultipliedAlpha.h"
#include "platform/graphics/RowFilter.h"

namespace kestrova::platform {

namespace {

using namespace std::string_view_literals;
using Bytes = std::vector<std::uint8_t>;

std::uint8_t part(std::uint32_t number, unsigned shift) {
  return static_cast<std::uint8_t>(number >> shift);
}

// Big-endian, as all numbers of the format.
std::string number(std::size_t value) {
  std::string bytes;
  for (unsigned shift = 32; shift > 0;) bytes += static_cast<char>(value >> (shift -= 8));
  return bytes;
}

const Bytef* bytes(const char* text) {
  return reinterpret_cast<const Bytef*>(text);
}

// Begins a chunk and returns where it does; the length and the checksum come at its end.
std::size_t beginChunk(std::string& file, std::string_view type) {
  const auto begin = file.size();
  file += number(0);
  file += type;
  return begin;
}

void endChunk(std::string& file, std::size_t begin) {
  constexpr std::size_t kNumber = 4;
  const auto size = file.size() - begin - kNumber;
  file.replace(begin, kNumber, number(size - kNumber));
  file += number(::crc32_z(0, bytes(&file[begin + kNumber]), size));
}

// Appends what it is given to a file, compressed. Runs are the only matches that it looks for.
class Deflater {
 public:
  explicit Deflater(std::string& file) : file_(file), room_(1U << 16U) {
    constexpr int kWindowBits = 15;
    constexpr int kMemoryLevel = 8;
    isReady_ = ::deflateInit2(&stream_, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kWindowBits,
                              kMemoryLevel, Z_RLE) == Z_OK;
    empty();
  }
  Deflater(const Deflater&) = delete;
  Deflater& operator=(const Deflater&) = delete;
  ~Deflater() { ::deflateEnd(&stream_); }

  bool isReady() const { return isReady_; }

  void add(Bytes& bytes) {
    stream_.next_in = bytes.data();
    stream_.avail_in = static_cast<uInt>(bytes.size());
    run(Z_NO_FLUSH);
  }
  void finish() {
    run(Z_FINISH);
    write();
  }

 private:
  // While there is room left, the library takes everything.
  void run(int flush) {
    while (::deflate(&stream_, flush) == Z_OK && stream_.avail_out == 0) write();
  }
  void write() {
    file_.append(room_.begin(), room_.end() - stream_.avail_out);
    empty();
  }
  void empty() {
    stream_.next_out = room_.data();
    stream_.avail_out = static_cast<uInt>(room_.size());
  }

  std::string& file_;
  Bytes room_;
  z_stream stream_{};
  bool isReady_;
};

void writeRGB(std::span<const std::uint32_t> pixels, std::uint8_t* to) {
  for (const auto pixel : pixels) {
    to[0] = part(pixel, 16);
    to[1] = part(pixel, 8);
    to[2] = part(pixel, 0);
    to += 3;
  }
}

void writeRGBA(std::span<const std::uint32_t> pixels, std::uint8_t* to) {
  for (const auto pixel : pixels) {
    const auto whole = straight(pixel);
    to[0] = part(whole, 16);
    to[1] = part(whole, 8);
    to[2] = part(whole, 0);
    to[3] = part(whole, 24);
    to += 4;
  }
}

// The rows in turn, each with the filter that suits it.
void writeRows(const CGImage& image, bool isOpaque, Deflater& deflater) {
  const std::size_t pixelSize = isOpaque ? 3 : 4;
  const auto size = image.width() * pixelSize;
  // Behind as many zeros as a pixel has bytes, as the filters have it.
  Bytes current(pixelSize + size);
  Bytes above(pixelSize + size);
  // Behind the number of its filter.
  Bytes filtered(1 + size);
  for (std::size_t y = 0; y < image.height(); ++y) {
    current.swap(above);
    auto* const row = &current[pixelSize];
    (isOpaque ? writeRGB : writeRGBA)(image.row(y), row);
    const auto filter = bestFilter(row, &above[pixelSize], size, pixelSize);
    filtered[0] = static_cast<std::uint8_t>(filter);
    applyFilter(filter, row, &above[pixelSize], size, pixelSize, &filtered[1]);
    deflater.add(filtered);
  }
  deflater.finish();
}

}  // namespace

Result<Data> encodePNG(const CGImage& image) {
  const bool isOpaque = image.isOpaque();
  std::string file("\x89PNG\r\n\x1a\n");
  const auto head = beginChunk(file, "IHDR");
  file += number(image.width()) + number(image.height());
  // Depth, kind of colour, deflate, adaptive filters, not interlaced.
  file += isOpaque ? "\x8\x2\0\0\0"sv : "\x8\x6\0\0\0"sv;
  endChunk(file, head);
  const auto rows = beginChunk(file, "IDAT");
  Deflater deflater(file);
  if (!deflater.isReady()) {
    return graphicsError(GraphicsErrorCode::unavailable, "no memory for a PNG file");
  }
  writeRows(image, isOpaque, deflater);
  endChunk(file, rows);
  endChunk(file, beginChunk(file, "IEND"));
  Data data(file.size());
  std::memcpy(data.bytes(), file.data(), data.size());
  return data;
}

}  // namespace kestrova::platform
