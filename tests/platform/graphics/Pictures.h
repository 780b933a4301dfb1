#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "platform/foundation/FileManager.h"
#include "platform/graphics/UIImage.h"
#include "tests/support/TemporaryDirectory.h"

namespace kestrova::test {

inline platform::Data asData(std::string_view bytes) {
  platform::Data data(bytes.size());
  if (!bytes.empty()) std::memcpy(data.bytes(), bytes.data(), bytes.size());
  return data;
}

// Files made and read by other programs.
class PictureTest : public ::testing::Test {
 protected:
  // Runs a shell command, bounded in time, in the test's own folder.
  void run(const std::string& command) const {
    std::ofstream(folder.path() / "command")
        << "cd '" << folder.path().string() << "' && " << command << " >log 2>&1";
    const auto line = "timeout 60 sh '" + (folder.path() / "command").string() + "'";
    // NOLINTNEXTLINE(concurrency-mt-unsafe): the tests are on one thread.
    ASSERT_EQ(std::system(line.c_str()), 0) << command << "\n" << bytes("log");
  }

  std::string bytes(const std::string& name) const {
    const auto data = platform::FileManager::contents(folder.path() / name);
    EXPECT_TRUE(data) << name;
    return data ? std::string(data.value().view()) : std::string();
  }

  platform::Data data(const std::string& name) const { return asData(bytes(name)); }

  platform::Result<std::shared_ptr<const platform::CGImage>> decode(const std::string& name) const {
    const auto image = platform::UIImage::make(data(name));
    if (!image) return image.error();
    return image.value().cgImage();
  }

  const TemporaryDirectory folder;
};

// What a straight red, green, blue, alpha pixel is in our bitmaps.
inline std::uint32_t premultiplied(const std::uint8_t* rgba) {
  const unsigned alpha = rgba[3];
  const auto part = [&](int i) { return (rgba[i] * alpha + 127U) / 255U; };
  return alpha << 24U | part(0) << 16U | part(1) << 8U | part(2);
}

// The greatest difference of any channel to raw pixels of four bytes.
inline int greatestDifference(std::span<const std::uint32_t> pixels, std::string_view rgba) {
  if (rgba.size() != pixels.size() * 4) return 256;
  int greatest = 0;
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    const auto wanted = premultiplied(reinterpret_cast<const std::uint8_t*>(&rgba[4 * i]));
    for (unsigned shift = 0; shift < 32; shift += 8) {
      const auto difference =
          static_cast<int>(pixels[i] >> shift & 0xffU) - static_cast<int>(wanted >> shift & 0xffU);
      greatest = std::max(greatest, std::abs(difference));
    }
  }
  return greatest;
}

// A picture of some pixels, row after row.
inline platform::UIImage picture(
    std::size_t width, const std::vector<std::uint32_t>& pixels, double scale = 1,
    platform::UIImageOrientation orientation = platform::UIImageOrientation::up) {
  const auto image = platform::CGImage::make(width, pixels.size() / width);
  std::copy(pixels.begin(), pixels.end(), image->pixels().begin());
  return platform::UIImage(image, scale, orientation);
}

inline std::vector<std::uint32_t> pixelsOf(const platform::UIImage& image) {
  const auto bitmap = image.cgImage();
  if (!bitmap) return {};
  return {bitmap.value()->pixels().begin(), bitmap.value()->pixels().end()};
}

}  // namespace kestrova::test
