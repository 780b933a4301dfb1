#pragma once

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include "tests/support/TemporaryDirectory.h"

namespace kestrova::bench {

// Runs a command in `folder`; ends the program where it fails.
inline void run(const std::filesystem::path& folder, const std::string& command) {
  const auto line = "cd '" + folder.string() + "' && " + command;
  if (std::system(line.c_str()) == 0) return;
  std::fprintf(stderr, "failed: %s\n", command.c_str());
  std::_Exit(1);
}

inline std::string contents(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// A JPEG file of 12 megapixels with detail of every size and a sensor's noise, taken with the
// camera on its side: 4032 x 3024 pixels, to be turned to 3024 x 4032.
inline std::string photograph(const std::filesystem::path& folder) {
  run(folder,
      "convert -seed 7 -size 1008x756 plasma:tan-steelblue -resize 400% \\( -size 1344x1008 "
      "-seed 8 plasma:fractal -resize 300% \\) -compose softlight -composite -attenuate 0.12 "
      "-seed 9 +noise Gaussian -sampling-factor 4:2:0 -quality 92 plain.jpg");
  using namespace std::string_literals;
  const auto exif =
      "\xff\xe1\0\x22"
      "Exif\0\0MM\0*\0\0\0\10\0\1\1\x12\0\3\0\0\0\1\0\6\0\0\0\0\0\0"s;
  return contents(folder / "plain.jpg").insert(2, exif);
}

// Makes photo.gif: 40 frames of 480 x 480 pixels over which a picture of many colours moves.
inline constexpr auto kPan =
    "convert -seed 3 -size 560x480 plasma: pan.png && ffmpeg -v error -loop 1 -i pan.png "
    "-frames:v 40 -vf crop=480:480:n*2:0 photo.gif";

}  // namespace kestrova::bench
