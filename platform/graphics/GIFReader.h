#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

#include "platform/foundation/Result.h"

namespace kestrova::platform {

// Reads the records of a GIF file in order, without composing.
class GIFReader {
 public:
  enum class Disposal { leave, background, previous };

  struct Frame {
    // On the screen; may reach beyond it.
    std::size_t left = 0;
    std::size_t top = 0;
    std::size_t width = 0;
    std::size_t height = 0;
    bool isInterlaced = false;
    // False for a code size that the format does not have; such a frame can only be skipped.
    bool isReadable = true;
    // Of the graphic control block, if there is one.
    Disposal disposal = Disposal::leave;
    std::optional<unsigned> transparentColor;
    // In hundredths of a second.
    std::optional<unsigned> delay;
  };

  // 0xAARRGGBB, opaque; black beyond the colours that the file gives.
  using Palette = std::array<std::uint32_t, 256>;

  static Result<GIFReader> open(std::string_view data);
  GIFReader(GIFReader&&) noexcept;
  GIFReader& operator=(GIFReader&&) noexcept;
  GIFReader(const GIFReader&) = delete;
  GIFReader& operator=(const GIFReader&) = delete;
  ~GIFReader();

  // 0 if the file states none.
  std::size_t screenWidth() const;
  std::size_t screenHeight() const;

  // Goes on to the next frame. None at the end, and where the file is damaged.
  std::optional<Frame> nextFrame();
  // The colours of the current frame; false where it has none.
  bool palette(Palette& palette) const;
  // Decodes the colours of the current frame, row after row as they are stored, width times height
  // of them; false where they are damaged. Goes on behind the frame either way. The frame must be
  // readable.
  bool readColors(std::span<std::uint8_t> indices);
  // Goes on behind the frame; false where the file breaks off.
  bool skipColors();

 private:
  struct State;
  explicit GIFReader(std::unique_ptr<State> state);

  std::unique_ptr<State> state_;
};

}  // namespace kestrova::platform
