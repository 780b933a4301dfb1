#include "platform/capture/PictureCamera.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <fstream>
#include <set>
#include <string_view>
#include <utility>

#include "platform/capture/CameraError.h"
#include "platform/foundation/FileManager.h"

namespace kestrova::platform {

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto kFrame = std::chrono::nanoseconds(1'000'000'000 / 30);
constexpr std::size_t kFramesEach = 15;
static_assert(double(kFramesEach) / 30 == PictureCamera::kSecondsEach);

bool isPicture(const std::filesystem::path& file) {
  std::array<char, 3> head{};
  std::ifstream(file, std::ios::binary).read(head.data(), head.size());
  const std::string_view begin(head.data(), head.size());
  return begin == "\x89PN" || begin == "\xff\xd8\xff";
}

// Decoded once: what is damaged shows here.
Result<UIImage> read(const std::filesystem::path& file) {
  auto data = FileManager::contents(file);
  if (!data) return cameraError(CameraErrorCode::notFound, data.error().localizedDescription);
  auto image = UIImage::make(std::move(data).value());
  if (!image) {
    return cameraError(CameraErrorCode::unsupported,
                       file.string() + ": " + image.error().localizedDescription);
  }
  return image;
}

Result<std::shared_ptr<const CGImage>> frameOf(const UIImage& image, PixelSize room) {
  const PixelSize full{std::size_t(image.size().width), std::size_t(image.size().height)};
  const PixelSize size = frameSize(full, room);
  return image.rendition(size.width, size.height);
}

}  // namespace

bool PictureCamera::canShow(const std::filesystem::path& path) {
  std::error_code none;
  return std::filesystem::is_directory(path, none) || isPicture(path);
}

PictureCamera::PictureCamera(std::filesystem::path path) : path_(std::move(path)) {}

PictureCamera::~PictureCamera() {
  PictureCamera::stop();
}

Result<PictureCamera::Shown> PictureCamera::next(const std::filesystem::path& last) const {
  std::error_code none;
  if (!std::filesystem::is_directory(path_, none)) {
    auto image = read(path_);
    if (!image) return image.error();
    return Shown{path_, std::move(image).value()};
  }
  std::set<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(path_, none)) {
    if (entry.is_regular_file(none)) files.insert(entry.path());
  }
  // Those after the last one first.
  std::vector<std::filesystem::path> order(files.upper_bound(last), files.end());
  order.insert(order.end(), files.begin(), files.upper_bound(last));
  for (const auto& file : order) {
    if (!isPicture(file)) continue;
    auto image = read(file);
    if (image) return Shown{file, std::move(image).value()};
  }
  return cameraError(CameraErrorCode::notFound, path_.string() + ": no picture to be shown");
}

Result<Done> PictureCamera::start(Events events) {
  auto first = next({});
  if (!first) return first.error();
  if (const auto frame = frameOf(first.value().image, {}); !frame) {
    return cameraError(CameraErrorCode::unsupported, frame.error().localizedDescription);
  }
  shown_ = std::move(first).value();
  thread_ = std::thread([this, events = std::move(events)] { run(events); });
  return Done{};
}

void PictureCamera::run(const Events& events) {
  const auto start = Clock::now();
  auto due = start;
  std::shared_ptr<const CGImage> image;
  PixelSize made;
  for (std::size_t number = 0;; ++number) {
    std::unique_lock lock(mutex_);
    if (changed_.wait_until(lock, due, [this] { return isStopping_; })) return;
    auto shown = *shown_;
    const PixelSize room = room_;
    lock.unlock();

    std::error_code none;
    if (number % kFramesEach == 0 && number > 0) {
      auto following =
          std::filesystem::is_directory(path_, none) || !std::filesystem::exists(path_, none)
              ? next(shown.file)
              : Result<Shown>(shown);
      if (!following) {
        return events.failed(
            cameraError(CameraErrorCode::disconnected, following.error().localizedDescription));
      }
      if (following.value().file != shown.file) image.reset();
      shown = std::move(following).value();
      lock.lock();
      shown_ = shown;
      lock.unlock();
    }
    if (!image || made != room) {
      const auto frame = frameOf(shown.image, room);
      // One that is damaged in its middle is left out.
      if (frame) image = frame.value();
      made = room;
    }
    if (image) {
      events.frame({image, std::chrono::duration<double>(Clock::now() - start).count()});
    }
    // What is late is not made up for.
    due = std::max(due + kFrame, Clock::now() - kFrame);
  }
}

void PictureCamera::stop() {
  {
    const std::lock_guard lock(mutex_);
    isStopping_ = true;
  }
  changed_.notify_all();
  if (thread_.joinable()) thread_.join();
}

void PictureCamera::setFrameSize(PixelSize room) {
  const std::lock_guard lock(mutex_);
  room_ = room;
}

Result<UIImage> PictureCamera::takePhoto(CameraFlashMode) {
  const std::lock_guard lock(mutex_);
  return shown_->image;
}

}  // namespace kestrova::platform
