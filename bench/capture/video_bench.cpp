// Ten pictures of 720 x 1280 pixels, PNG files, to a movie by the SDK's writer, against the ffmpeg
// program, which reads the same files and encodes them at like quality. Each is a process of its
// own, and its user time is counted from its start to its end. Likeness is PSNR in the encoders'
// own format against the files, by ffmpeg's filter. usage: video_bench

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "bench/Report.h"
#include "bench/graphics/Specimens.h"
#include "platform/dispatch/RunLoop.h"
#include "platform/foundation/FileManager.h"
#include "platform/graphics/CGImage.h"
#include "platform/graphics/UIImage.h"
#include "sdk/media/VideoWriter.h"

namespace kestrova::bench {
namespace {

constexpr int kPictures = 10;
constexpr int kWidth = 720;
constexpr int kHeight = 1280;
constexpr int kRuns = 7;

std::filesystem::path picture(const std::filesystem::path& folder, int number) {
  return folder / ("picture" + std::to_string(number) + ".png");
}

// Detail of every scale from two pixels to 64, coarser detail being stronger, as in photographs.
class Texture {
 public:
  Texture() {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> value(-1, 1);
    for (auto& knot : knots_) knot = value(random);
  }

  double at(double x, double y) const {
    double sum = 0;
    double strength = 2;
    for (int size = 2; size <= 64; size *= 2, strength *= 1.4) {
      const double scale = size;
      // Apart from one another.
      sum += strength * smooth(x / scale + 13 * scale, y / scale + 29 * scale);
    }
    return sum;
  }

 private:
  static constexpr unsigned kSide = 256;

  double smooth(double x, double y) const {
    const double left = std::floor(x);
    const double top = std::floor(y);
    const auto knot = [&](double u, double v) {
      return knots_[unsigned(int(v)) % kSide * kSide + unsigned(int(u)) % kSide];
    };
    return std::lerp(std::lerp(knot(left, top), knot(left + 1, top), x - left),
                     std::lerp(knot(left, top + 1), knot(left + 1, top + 1), x - left), y - top);
  }

  std::array<double, std::size_t{kSide} * kSide> knots_;
};

// A head before a wall: shading, edges, hair, detail of every scale, a sensor's noise. It moves a
// little from one picture to the next.
void draw(const std::filesystem::path& file, int number) {
  std::mt19937 random(std::uint32_t(number) + 1);
  std::normal_distribution<double> noise(0, 1.5);
  static const Texture texture;
  const auto image = CGImage::make(kWidth, kHeight);
  const double shift = 9 * std::sin(number * 0.7);
  for (int y = 0; y < kHeight; ++y) {
    const auto row = image->row(std::size_t(y));
    for (int x = 0; x < kWidth; ++x) {
      const double u = (x - kWidth / 2.0 - shift) / 250;
      const double v = (y - kHeight * 0.45 - shift / 2) / 350;
      const double distance = std::sqrt(u * u + v * v);
      const double wall = 150 + 40.0 * y / kHeight - 25.0 * x / kWidth + 6 * std::sin(x * 0.031);
      std::array<double, 3> color{wall, wall * 0.97, wall * 0.9};
      if (v > 0.85 && std::abs(u) < 1.3) {
        const double cloth = 70 + 12 * std::sin(x * 0.8) * std::sin(y * 0.8);
        color = {cloth * 0.6, cloth * 0.8, cloth * 1.2};
      }
      if (distance < 1) {
        const double light = 1.05 - 0.35 * distance * distance - 0.12 * u;
        const double skin = 1 + 0.02 * std::sin(u * 90) * std::sin(v * 70);
        color = {215 * light * skin, 170 * light * skin, 145 * light * skin};
        const double eye = std::hypot(std::abs(u) - 0.36, (v + 0.12) * 1.6);
        if (eye < 0.13) color.fill(eye < 0.06 ? 40 : 225);
        if (std::hypot(u * 0.8, (v - 0.5) * 3.5) < 0.25) color = {170, 85, 85};
        if (v < -0.5 + 0.08 * std::sin(u * 9)) {
          const double hair = 60 + 22 * std::sin(u * 160 + v * 25);
          color = {hair, hair * 0.75, hair * 0.55};
        }
      }
      // That of brightness is the same for all colours.
      const double grain = noise(random) + texture.at(x - shift, y - shift / 2);
      std::uint32_t pixel = 0xff;
      for (const double part : color) {
        pixel = pixel << 8U | std::uint32_t(std::lround(std::clamp(part + grain, 0.0, 255.0)));
      }
      row[std::size_t(x)] = pixel;
    }
  }
  const auto png = UIImagePNGRepresentation(UIImage(image));
  if (!png || !FileManager::write(png.value().view(), file)) std::_Exit(1);
}

// What the other process does: from the files to the finished movie.
int write(const std::filesystem::path& folder) {
  ::setenv("XDG_DATA_HOME", folder.c_str(), 1);
  std::vector<std::filesystem::path> files;
  files.reserve(kPictures);
  for (int i = 0; i < kPictures; ++i) files.push_back(picture(folder, i));
  const auto writer = std::make_shared<CXEImagesToVideo>(
      CXEImagesToVideo::videoSettings(AVVideoCodecH264, kWidth, kHeight));
  std::filesystem::path movie;
  writer->createMovieFrom(files, [&](const std::filesystem::path& url) { movie = url; });
  if (!platform::RunLoop::runUntil([&] { return !movie.empty(); },
                                   platform::DispatchClock::now() + std::chrono::seconds(30))) {
    return 1;
  }
  std::filesystem::rename(movie, folder / "ours.mov");
  return 0;
}

struct Cost {
  double user = 0;
  double system = 0;
  double all = 0;
};

// Of a program and all that it starts, in milliseconds; ends this program where it fails.
Cost cost(const std::filesystem::path& folder, std::vector<std::string> command) {
  const auto begin = std::chrono::steady_clock::now();
  const pid_t child = ::fork();
  if (child == 0) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (auto& word : command) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    if (::chdir(folder.c_str()) == 0) ::execvp(arguments[0], arguments.data());
    std::_Exit(127);
  }
  int status = 0;
  rusage usage{};
  ::wait4(child, &status, 0, &usage);
  if (status != 0) {
    std::fprintf(stderr, "failed: %s\n", command[0].c_str());
    std::_Exit(1);
  }
  const auto milliseconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
  };
  const std::chrono::duration<double, std::milli> all = std::chrono::steady_clock::now() - begin;
  return {milliseconds(usage.ru_utime), milliseconds(usage.ru_stime), all.count()};
}

Cost ours(const std::filesystem::path& folder) {
  return cost(folder, {"/proc/self/exe", "write", folder.string()});
}

struct Setting {
  std::string preset;
  double crf = 0;
};

Cost theirs(const std::filesystem::path& folder, const Setting& setting) {
  return cost(folder,
              {"ffmpeg", "-nostdin", "-v", "error", "-y", "-framerate", "5", "-i", "picture%d.png",
               "-vf", "scale=out_color_matrix=bt709,format=yuv420p", "-c:v", "libx264", "-preset",
               setting.preset, "-crf", std::to_string(setting.crf), "theirs.mov"});
}

struct Likeness {
  double average = 0;
  double least = 0;
};

// Of a movie to the files, in decibels.
Likeness likeness(const std::filesystem::path& folder, const std::string& movie) {
  run(folder,
      "ffmpeg -nostdin -v info -i " + movie +
          " -framerate 5 -i picture%d.png -lavfi '[0:v]setpts=PTS-STARTPTS,format=yuv420p[a];"
          "[1:v]scale=out_color_matrix=bt709:out_range=tv,format=yuv420p[b];[a][b]psnr' "
          "-f null - 2>psnr");
  const std::string text = contents(folder / "psnr");
  const auto after = [&](const std::string& name) {
    const auto at = text.rfind(" " + name + ":");
    if (at == std::string::npos) {
      std::fprintf(stderr, "no likeness is told:\n%s\n", text.c_str());
      std::_Exit(1);
    }
    return std::strtod(text.c_str() + at + name.size() + 2, nullptr);
  };
  return {after("average"), after("min")};
}

// The setting with which the preset comes nearest to the likeness.
Setting likeQuality(const std::filesystem::path& folder, const std::string& preset, double wanted) {
  constexpr double kNear = 0.1;
  double better = 5;
  double worse = 40;
  Setting setting{preset};
  for (int i = 0; i < 10; ++i) {
    setting.crf = (better + worse) / 2;
    theirs(folder, setting);
    const double got = likeness(folder, "theirs.mov").average;
    if (std::abs(got - wanted) <= kNear) break;
    (got > wanted ? better : worse) = setting.crf;
  }
  return setting;
}

double size(const std::filesystem::path& file) {
  return static_cast<double>(std::filesystem::file_size(file)) / 1024;
}

void measure(const std::filesystem::path& folder) {
  // The media framework has made its register.
  ours(folder);
  const auto mine = likeness(folder, "ours.mov");
  report("likeness of the movie, average", mine.average, "dB", 40, false);
  std::printf("%-46s %9.2f dB\n", "likeness of the movie, least of a picture", mine.least);
  // Its own choice; what it is for time that counts; and what its fastest does, without a goal.
  for (const std::string preset : {"medium", "veryfast", "ultrafast"}) {
    const auto setting = likeQuality(folder, preset, mine.average);
    std::vector<double> user;
    std::vector<double> all;
    std::vector<double> theirUser;
    std::vector<double> theirAll;
    for (int i = 0; i < kRuns; ++i) {
      const auto here = ours(folder);
      const auto there = theirs(folder, setting);
      user.push_back(here.user);
      all.push_back(here.all);
      theirUser.push_back(there.user);
      theirAll.push_back(there.all);
    }
    const auto other = likeness(folder, "theirs.mov");
    std::printf(
        "ffmpeg, %s, crf %.2f: %.2f dB, %.2f at least, %.0f KiB; user %.1f ms, in all %.1f\n",
        preset.c_str(), setting.crf, other.average, other.least, size(folder / "theirs.mov"),
        median(theirUser), median(theirAll));
    std::printf("ours: %.0f KiB; user %.1f ms, in all %.1f\n", size(folder / "ours.mov"),
                median(user), median(all));
    const auto what = "  user time against ffmpeg, " + preset;
    const double ratio = median(user) / median(theirUser);
    if (preset == "ultrafast") {
      std::printf("%-46s %9.2f x\n", what.c_str(), ratio);
    } else {
      report(what.c_str(), ratio, "x", 1);
    }
  }
}

}  // namespace
}  // namespace kestrova::bench

int main(int count, char** arguments) {
  using namespace kestrova;
  if (count == 3 && std::string(arguments[1]) == "write") return bench::write(arguments[2]);
  const test::TemporaryDirectory folder;
  for (int i = 0; i < bench::kPictures; ++i) bench::draw(bench::picture(folder.path(), i), i);
  bench::measure(folder.path());
  return bench::allMet ? 0 : 1;
}
