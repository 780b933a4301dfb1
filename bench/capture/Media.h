#pragma once

#include <string>

#include "bench/graphics/Specimens.h"

namespace kestrova::bench {

// Makes a JPEG file of 3000 x 4000 upright pixels in `folder`.
inline void makePhotograph(const std::filesystem::path& folder, const std::string& name) {
  std::ofstream(folder / "sensor.jpg", std::ios::binary) << photograph(folder);
  run(folder,
      "convert sensor.jpg -auto-orient -gravity center -crop 3000x4000+0+0 +repage -strip "
      "-sampling-factor 4:2:0 -quality 92 " +
          name + " && rm sensor.jpg plain.jpg");
}

// Makes video.mov in `folder`: 1280 x 720 pixels in motion with a sensor's noise, 30 frames a
// second.
inline void makeVideo(const std::filesystem::path& folder, int seconds) {
  run(folder,
      "ffmpeg -nostdin -v error -f lavfi -i testsrc2=size=1280x720:rate=30:duration=" +
          std::to_string(seconds) +
          " -vf noise=alls=6:allf=t,format=yuv420p -c:v libx264 -preset veryfast video.mov");
}

}  // namespace kestrova::bench
