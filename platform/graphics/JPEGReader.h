#pragma once

#include <memory>
#include <string_view>

#include "platform/foundation/Result.h"
#include "platform/graphics/PixelRows.h"
#include "platform/graphics/UIImageOrientation.h"

namespace kestrova::platform {

// Decodes a JPEG file row by row; of a progressive one the coefficients are held. Grey, YCbCr, RGB,
// CMYK and YCCK files. Rows come as they are stored: the orientation is the caller's to apply, and
// the colour profile, which only files of three components can have. A file that ends before the
// data of its last row is damaged; a missing end marker alone is not.
class JPEGReader : public PixelRows {
 public:
  static bool recognises(std::string_view data) { return data.starts_with("\xff\xd8\xff"); }
  // Reads the head. `data` must outlive the reader.
  static Result<std::unique_ptr<JPEGReader>> open(std::string_view data);
  JPEGReader(const JPEGReader&) = delete;
  JPEGReader& operator=(const JPEGReader&) = delete;
  ~JPEGReader() override;

  std::size_t width() const override;
  std::size_t height() const override;
  const std::uint32_t* next() override;
  std::shared_ptr<const ColorProfile> colorProfile() override;
  UIImageOrientation orientation() const;

 private:
  struct State;
  explicit JPEGReader(std::unique_ptr<State> state);

  std::unique_ptr<State> state_;
};

}  // namespace kestrova::platform
