// Pictures against other programs on the same files: a photograph made smaller and written anew
// against vips, an animation against giflib's own reader. Prints medians, ratios and whether each
// goal is met; the exit status says the same.
// usage: picture_bench [JPEG]   an own photograph of 3024 x 4032 upright pixels

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <functional>
#include <memory>
#include <vector>

#include <gif_lib.h>

#include "bench/Report.h"
#include "bench/graphics/Specimens.h"
#include "platform/graphics/CGImageSource.h"
#include "sdk/media/PictureResizing.h"

namespace {

using namespace kestrova;
using namespace kestrova::bench;

double milliseconds(const std::function<void()>& work) {
  const auto begin = std::chrono::steady_clock::now();
  work();
  const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - begin;
  return time.count();
}

struct Pair {
  double ours;
  double theirs;
};

// The medians of several runs, taken by turns so that other load meets both.
Pair compare(int runs, const std::function<void()>& ours, const std::function<void()>& theirs) {
  std::vector<double> mine;
  std::vector<double> others;
  for (int i = 0; i < runs; ++i) {
    mine.push_back(milliseconds(ours));
    others.push_back(milliseconds(theirs));
  }
  return {median(mine), median(others)};
}

Data asData(const std::string& bytes) {
  Data data(bytes.size());
  std::memcpy(data.bytes(), bytes.data(), bytes.size());
  return data;
}

// The whole way of a document's picture.
Data pictureFile(const std::string& jpeg) {
  const auto image = UIImage::make(asData(jpeg));
  const auto small = resizedWithPercentage(image.value(), 0.33);
  return UIImagePNGRepresentation(*small).value();
}

// How near a picture is to the exact average of areas of the upright `source`, in decibels.
double likeness(const CGImage& source, const CGImage& small) {
  const auto width = small.width();
  const auto height = small.height();
  const double stepX = static_cast<double>(source.width()) / static_cast<double>(width);
  const double stepY = static_cast<double>(source.height()) / static_cast<double>(height);
  double squares = 0;
  for (std::size_t y = 0; y < height; ++y) {
    const double top = static_cast<double>(y) * stepY;
    const double bottom = std::min(top + stepY, static_cast<double>(source.height()));
    for (std::size_t x = 0; x < width; ++x) {
      const double left = static_cast<double>(x) * stepX;
      const double right = std::min(left + stepX, static_cast<double>(source.width()));
      double sums[3] = {};
      for (auto v = static_cast<std::size_t>(top); static_cast<double>(v) < bottom; ++v) {
        const double lines =
            std::min(bottom, static_cast<double>(v + 1)) - std::max(top, static_cast<double>(v));
        for (auto u = static_cast<std::size_t>(left); static_cast<double>(u) < right; ++u) {
          const double part = lines * (std::min(right, static_cast<double>(u + 1)) -
                                       std::max(left, static_cast<double>(u)));
          for (unsigned i = 0; i < 3; ++i) sums[i] += part * (source.row(v)[u] >> 8 * i & 0xffU);
        }
      }
      for (unsigned i = 0; i < 3; ++i) {
        const double error = sums[i] / (stepX * stepY) - (small.row(y)[x] >> 8 * i & 0xffU);
        squares += error * error;
      }
    }
  }
  return 10 * std::log10(255.0 * 255 * 3 * static_cast<double>(width * height) / squares);
}

void measurePhotograph(const std::filesystem::path& folder, const std::string& jpeg) {
  std::ofstream(folder / "photo.jpg", std::ios::binary) << jpeg;
  std::ofstream("/proc/self/clear_refs") << "5";
  const double before = memory("VmRSS");
  const auto file = pictureFile(jpeg);
  const double rise = memory("VmHWM") - before;

  constexpr int kRuns = 7;
  constexpr auto kCommand =
      "vips thumbnail photo.jpg theirs.png[compression=6,filter=all,strip] 998 --height 1331 "
      "--size force";
  const auto whole = compare(
      kRuns, [&] { (void)pictureFile(jpeg); }, [&] { bench::run(folder, kCommand); });
  const auto upright = UIImage::make(asData(jpeg)).value();
  const auto small = *resizedWithPercentage(upright, 0.33);
  std::vector<double> encodings;
  for (int i = 0; i < kRuns; ++i) {
    encodings.push_back(milliseconds([&] { (void)UIImagePNGRepresentation(small); }));
  }
  const auto theirSize = static_cast<double>(bench::contents(folder / "theirs.png").size());

  std::printf("photograph of %zu bytes: vips %.1f ms, %.0f bytes; ours %zu bytes\n", jpeg.size(),
              whole.theirs, theirSize, file.size());
  report("photograph to PNG at 33 %", whole.ours, "ms", 250);
  report("  against vips", whole.ours / whole.theirs, "times", 0.5);
  report("  file size against vips", static_cast<double>(file.size()) / theirSize, "times", 1.02);
  report("  the PNG encoding of it", median(encodings), "ms", 100);
  report("  rise of the peak memory", rise, "MiB", 60);
  const auto size = upright.size();
  const auto exact = upright.rendition(static_cast<std::size_t>(size.width),
                                       static_cast<std::size_t>(size.height));
  report("  likeness to the exact average", likeness(*exact.value(), *small.cgImage().value()),
         "dB", 50, false);
}

struct Reading {
  const std::string& bytes;
  std::size_t position = 0;
};

void slurp(const std::string& gif) {
  Reading reading{gif};
  const auto read = [](GifFileType* file, GifByteType* to, int size) {
    auto& from = *static_cast<Reading*>(file->UserData);
    const auto count = std::min(static_cast<std::size_t>(size), from.bytes.size() - from.position);
    std::memcpy(to, &from.bytes[from.position], count);
    from.position += count;
    return static_cast<int>(count);
  };
  auto* const file = DGifOpen(&reading, read, nullptr);
  if (!file || DGifSlurp(file) != GIF_OK) std::_Exit(1);
  DGifCloseFile(file, nullptr);
}

void measureAnimation(const char* name, const std::string& gif) {
  constexpr int kRuns = 15;
  const auto data = std::make_shared<const Data>(asData(gif));
  std::size_t frames = 0;
  const auto ours = [&] {
    auto source = CGImageSource::make(data);
    std::vector<std::shared_ptr<const CGImage>> images;
    for (std::size_t i = 0; i < source.value().count(); ++i) {
      images.push_back(source.value().imageAtIndex(i).value());
    }
    frames = images.size();
  };
  const auto time = compare(kRuns, ours, [&] { slurp(gif); });
  std::printf("%s, %zu frames, %zu bytes: %.1f ms, DGifSlurp %.1f ms\n", name, frames, gif.size(),
              time.ours, time.theirs);
  report("  all frames against DGifSlurp", time.ours / time.theirs, "times", 1.6);
}

}  // namespace

int main(int count, char** arguments) {
  const test::TemporaryDirectory folder;
  measurePhotograph(folder.path(),
                    count > 1 ? bench::contents(arguments[1]) : bench::photograph(folder.path()));
  bench::run(folder.path(),
             "ffmpeg -v error -f lavfi -i testsrc2=s=480x480:r=10 -frames:v 40 drawn.gif && "
             "gifsicle -O3 drawn.gif -o optimised.gif");
  bench::run(folder.path(), bench::kPan);
  for (const auto* const name : {"drawn.gif", "optimised.gif", "photo.gif"}) {
    measureAnimation(name, bench::contents(folder.path() / name));
  }
  return allMet ? 0 : 1;
}
