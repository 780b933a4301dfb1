#include "platform/graphics/GIFReader.h"

#include <algorithm>
#include <string>

#include <gif_lib.h>

#include "platform/graphics/GraphicsError.h"
#include "platform/graphics/LZWDecoder.h"

namespace kestrova::platform {

namespace {

struct Closer {
  void operator()(GifFileType* file) const { DGifCloseFile(file, nullptr); }
};

void apply(const GraphicsControlBlock& block, GIFReader::Frame& frame) {
  frame.delay = static_cast<unsigned>(block.DelayTime);
  frame.transparentColor.reset();
  if (block.TransparentColor != NO_TRANSPARENT_COLOR) {
    frame.transparentColor = static_cast<unsigned>(block.TransparentColor);
  }
  frame.disposal = block.DisposalMode == DISPOSE_BACKGROUND ? GIFReader::Disposal::background
                   : block.DisposalMode == DISPOSE_PREVIOUS ? GIFReader::Disposal::previous
                                                            : GIFReader::Disposal::leave;
}

}  // namespace

struct GIFReader::State {
  static int read(GifFileType* gif, GifByteType* to, int size) {
    auto& state = *static_cast<State*>(gif->UserData);
    auto& rest = state.rest;
    const auto count = std::min(static_cast<std::size_t>(size), rest.size());
    state.isCutOff = count < static_cast<std::size_t>(size);
    std::copy_n(rest.data(), count, to);
    rest.remove_prefix(count);
    return static_cast<int>(count);
  }

  // Reads an extension to its end; a graphic control block goes into `frame`.
  bool readExtension(Frame& frame) const {
    int code = 0;
    GifByteType* block = nullptr;
    if (DGifGetExtension(file.get(), &code, &block) != GIF_OK) return false;
    while (block) {
      GraphicsControlBlock control{};
      if (code == GRAPHICS_EXT_FUNC_CODE &&
          DGifExtensionToGCB(block[0], block + 1, &control) == GIF_OK) {
        apply(control, frame);
      }
      if (DGifGetExtensionNext(file.get(), &block) != GIF_OK) return false;
    }
    return true;
  }

  std::string_view rest;
  // True if the last read asked for more than the file has.
  bool isCutOff = false;
  std::unique_ptr<GifFileType, Closer> file;
};

GIFReader::GIFReader(std::unique_ptr<State> state) : state_(std::move(state)) {}
GIFReader::GIFReader(GIFReader&&) noexcept = default;
GIFReader& GIFReader::operator=(GIFReader&&) noexcept = default;
GIFReader::~GIFReader() = default;

Result<GIFReader> GIFReader::open(std::string_view data) {
  auto state = std::make_unique<State>();
  state->rest = data;
  int error = 0;
  state->file.reset(DGifOpen(state.get(), State::read, &error));
  if (!state->file) {
    const auto* const reason = GifErrorString(error);
    return graphicsError(GraphicsErrorCode::unknownFormat,
                         std::string("not a GIF file: ") + (reason ? reason : ""));
  }
  return GIFReader(std::move(state));
}

std::size_t GIFReader::screenWidth() const {
  return static_cast<std::size_t>(state_->file->SWidth);
}

std::size_t GIFReader::screenHeight() const {
  return static_cast<std::size_t>(state_->file->SHeight);
}

std::optional<GIFReader::Frame> GIFReader::nextFrame() {
  auto* const file = state_->file.get();
  Frame frame;
  for (;;) {
    GifRecordType type = UNDEFINED_RECORD_TYPE;
    if (DGifGetRecordType(file, &type) != GIF_OK) return std::nullopt;
    if (type == EXTENSION_RECORD_TYPE) {
      if (!state_->readExtension(frame)) return std::nullopt;
      continue;
    }
    if (type != IMAGE_DESC_RECORD_TYPE) return std::nullopt;
    if (DGifGetImageHeader(file) != GIF_OK) {
      // If the header is all there, the library refuses the code size at its end.
      if (state_->isCutOff) return std::nullopt;
      frame.isReadable = false;
    }
    const auto& image = file->Image;
    frame.left = static_cast<std::size_t>(image.Left);
    frame.top = static_cast<std::size_t>(image.Top);
    frame.width = static_cast<std::size_t>(image.Width);
    frame.height = static_cast<std::size_t>(image.Height);
    frame.isInterlaced = image.Interlace;
    return frame;
  }
}

bool GIFReader::palette(Palette& palette) const {
  const auto* map = state_->file->Image.ColorMap;
  if (!map) map = state_->file->SColorMap;
  if (!map) return false;
  palette.fill(0xff000000U);
  const auto count = std::min(static_cast<std::size_t>(map->ColorCount), palette.size());
  for (std::size_t i = 0; i < count; ++i) {
    const auto& color = map->Colors[i];
    palette[i] = 0xff000000U | static_cast<std::uint32_t>(color.Red) << 16U |
                 static_cast<std::uint32_t>(color.Green) << 8U | color.Blue;
  }
  return true;
}

bool GIFReader::readColors(std::span<std::uint8_t> indices) {
  int depth = 0;
  GifByteType* block = nullptr;
  if (DGifGetCode(state_->file.get(), &depth, &block) != GIF_OK) return false;
  LZWDecoder decoder(static_cast<unsigned>(depth), indices);
  bool isRight = true;
  while (block) {
    // The first byte is the count of the others.
    if (isRight && !decoder.isFull()) isRight = decoder.decode({block + 1, block[0]});
    if (DGifGetCodeNext(state_->file.get(), &block) != GIF_OK) return false;
  }
  return isRight && decoder.isFull();
}

bool GIFReader::skipColors() {
  GifByteType* block = nullptr;
  do {
    if (DGifGetCodeNext(state_->file.get(), &block) != GIF_OK) return false;
  } while (block);
  return true;
}

}  // namespace kestrova::platform
