#include "artwork/AnimatedFile.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <QtCore/QRect>
#include <QtGui/QColor>
#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <gif_lib.h>

#include "artwork/RampPalette.h"
#include "artwork/WrittenFile.h"

namespace kestrova::artwork {

namespace {

using Indices = std::vector<GifByteType>;

struct Closer {
  void operator()(GifFileType* file) const { EGifCloseFile(file, nullptr); }
};

struct MapDeleter {
  void operator()(ColorMapObject* map) const { GifFreeMapObject(map); }
};

int append(GifFileType* gif, const GifByteType* bytes, int count) {
  static_cast<std::string*>(gif->UserData)
      ->append(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(count));
  return count;
}

// Whether a call of the library failed is looked at in one place.
class Writer {
 public:
  Writer(const Animation::Format& format, const RampPalette& palette) {
    int error = 0;
    file_.reset(EGifOpen(&bytes_, append, &error));
    require(file_ != nullptr);
    int size = 2;
    while (size < static_cast<int>(palette.colors().size())) size *= 2;
    const std::unique_ptr<ColorMapObject, MapDeleter> map(GifMakeMapObject(size, nullptr));
    require(map != nullptr);
    std::ranges::transform(palette.colors(), map->Colors, [](Color color) {
      const auto part = [color](unsigned shift) {
        return static_cast<GifByteType>(color >> shift & 0xffU);
      };
      return GifColorType{part(16), part(8), part(0)};
    });
    EGifSetGifVersion(file_.get(), true);
    require(EGifPutScreenDesc(file_.get(), format.width, format.height, 8, 0, map.get()) == GIF_OK);
    putLooping();
  }

  // `frame` are all rows of the screen, of which `part` is stored.
  void putFrame(const Indices& frame, const QRect& part, int delay) {
    const GraphicsControlBlock control{DISPOSE_DO_NOT, false, delay, NO_TRANSPARENT_COLOR};
    std::array<GifByteType, 4> block{};
    EGifGCBToExtension(&control, block.data());
    require(EGifPutExtension(file_.get(), GRAPHICS_EXT_FUNC_CODE, block.size(), block.data()) ==
            GIF_OK);
    require(EGifPutImageDesc(file_.get(), part.left(), part.top(), part.width(), part.height(),
                             false, nullptr) == GIF_OK);
    for (int y = part.top(); y <= part.bottom(); ++y) {
      const auto begin = frame.begin() + std::ptrdiff_t{y} * file_->SWidth + part.left();
      Indices row(begin, begin + part.width());
      require(EGifPutLine(file_.get(), row.data(), part.width()) == GIF_OK);
    }
  }

  // Ends the file and gives its bytes.
  std::string close() {
    require(EGifCloseFile(file_.release(), nullptr) == GIF_OK);
    return std::move(bytes_);
  }

 private:
  static void require(bool isWell) {
    if (!isWell) throw std::runtime_error("an animation cannot be encoded");
  }

  void putLooping() {
    constexpr std::array<GifByteType, 3> kForEver{1, 0, 0};
    require(EGifPutExtensionLeader(file_.get(), APPLICATION_EXT_FUNC_CODE) == GIF_OK);
    require(EGifPutExtensionBlock(file_.get(), 11, "NETSCAPE2.0") == GIF_OK);
    require(EGifPutExtensionBlock(file_.get(), kForEver.size(), kForEver.data()) == GIF_OK);
    require(EGifPutExtensionTrailer(file_.get()) == GIF_OK);
  }

  std::string bytes_;
  std::unique_ptr<GifFileType, Closer> file_;
};

Indices drawn(const Animation& animation, std::size_t frame, RampPalette& palette) {
  const auto format = animation.format();
  QImage image(format.width, format.height, QImage::Format_RGB32);
  image.fill(QColor(format.ground));
  {
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    animation.draw(painter, frame);
  }
  Indices indices;
  for (int y = 0; y < format.height; ++y) {
    const std::span row(reinterpret_cast<const QRgb*>(image.constScanLine(y)),
                        static_cast<std::size_t>(format.width));
    for (const QRgb pixel : row) indices.push_back(palette.index(pixel & 0xffffffU));
  }
  return indices;
}

// The smallest rectangle that holds every difference; one pixel where there is none.
QRect changed(const Indices& before, const Indices& now, int width) {
  QRect part;
  for (std::size_t i = 0; i < now.size(); ++i) {
    const int at = static_cast<int>(i);
    if (before[i] != now[i]) part |= QRect(at % width, at / width, 1, 1);
  }
  return part.isEmpty() ? QRect(0, 0, 1, 1) : part;
}

}  // namespace

void writeGIF(const Animation& animation, const std::string& file) {
  const auto format = animation.format();
  RampPalette palette(format.edges);
  Writer writer(format, palette);
  Indices before;
  for (std::size_t frame = 0; frame < animation.frameCount(); ++frame) {
    auto now = drawn(animation, frame, palette);
    const auto part =
        frame == 0 ? QRect(0, 0, format.width, format.height) : changed(before, now, format.width);
    writer.putFrame(now, part, animation.delay(frame));
    before = std::move(now);
  }
  writeFile(file, writer.close());
}

}  // namespace kestrova::artwork
