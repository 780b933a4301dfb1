#include "platform/capture/CameraSession.h"

#include <mutex>
#include <optional>
#include <utility>

namespace kestrova::platform {

// What the camera's thread leaves for the main one.
struct CameraSession::Mailbox {
  std::mutex mutex;
  std::optional<CameraFrame> newest;
  PixelSize room;
  bool isOver = false;

  // Whether the main thread has to be called.
  bool put(const CameraFrame& frame) {
    const std::lock_guard lock(mutex);
    const bool isFirst = !newest && !isOver;
    newest = frame;
    return isFirst;
  }
  std::optional<CameraFrame> take() {
    const std::lock_guard lock(mutex);
    return std::exchange(newest, std::nullopt);
  }
  bool isClosed() {
    const std::lock_guard lock(mutex);
    return isOver;
  }
  void close() {
    const std::lock_guard lock(mutex);
    isOver = true;
    newest.reset();
  }
};

namespace {

Result<CameraPhoto> photoFor(Result<UIImage> image, PixelSize room) {
  if (!image) return image.error();
  const CGSize size = image.value().size();
  const PixelSize full{std::size_t(size.width), std::size_t(size.height)};
  const auto shown = frameSize(full, room);
  auto preview = image.value().rendition(shown.width, shown.height);
  if (!preview) return preview.error();
  return CameraPhoto{std::move(image).value(), std::move(preview).value()};
}

}  // namespace

const DispatchQueue& CameraSession::queue() {
  static const auto& queue = *new DispatchQueue("kestrova.camera");
  return queue;
}

CameraSession::CameraSession(std::unique_ptr<CameraSource> source)
    : source_(std::move(source)), mailbox_(std::make_shared<Mailbox>()) {}

CameraSession::~CameraSession() {
  stop();
}

void CameraSession::start() {
  const std::weak_ptr<CameraSession> weak = weak_from_this();
  // Runs `call` with this session, in which it may end, unless it has ended.
  const auto onMain = [weak](std::function<void(CameraSession&)> call) {
    DispatchQueue::main().async([weak, call = std::move(call)] {
      const auto session = weak.lock();
      if (session && !session->isOver_) call(*session);
    });
  };
  CameraSource::Events events;
  events.frame = [mailbox = mailbox_, onMain](const CameraFrame& frame) {
    if (!mailbox->put(frame)) return;
    onMain([](CameraSession& session) {
      const auto newest = session.mailbox_->take();
      const auto handler = session.onFrame;
      if (newest && handler) handler(*newest);
    });
  };
  events.failed = [onMain](const NSError& error) {
    onMain([error](CameraSession& session) {
      const auto handler = session.onFailure;
      session.stop();
      if (handler) handler(error);
    });
  };
  queue().async([source = source_, mailbox = mailbox_, events, onMain] {
    if (mailbox->isClosed()) return;
    if (const auto started = source->start(events); !started) {
      return events.failed(started.error());
    }
    onMain([hasFlash = source->hasFlash()](CameraSession& session) {
      const auto handler = session.onOpen;
      if (handler) handler(hasFlash);
    });
  });
}

void CameraSession::setFrameSize(PixelSize room) {
  const std::lock_guard lock(mailbox_->mutex);
  if (mailbox_->room == room || room.width == 0 || room.height == 0) return;
  mailbox_->room = room;
  if (source_) source_->setFrameSize(room);
}

void CameraSession::takePhoto(CameraFlashMode flash,
                              std::function<void(Result<CameraPhoto>)> completion) {
  if (isOver_) return;
  onFrame = {};
  queue().async([source = source_, mailbox = mailbox_, flash, completion = std::move(completion),
                 weak = weak_from_this()]() mutable {
    if (mailbox->isClosed()) return;
    PixelSize room;
    {
      const std::lock_guard lock(mailbox->mutex);
      room = mailbox->room;
    }
    auto photo = photoFor(source->takePhoto(flash), room);
    DispatchQueue::main().async(
        [weak, photo = std::move(photo), completion = std::move(completion)] {
          const auto session = weak.lock();
          if (session && !session->isOver_) completion(photo);
        });
  });
}

void CameraSession::stop() {
  if (std::exchange(isOver_, true)) return;
  onFrame = {};
  onOpen = {};
  onFailure = {};
  mailbox_->close();
  // The camera ends on its queue, after what is under way there.
  queue().async([source = std::move(source_)]() mutable {
    source->stop();
    source.reset();
  });
}

}  // namespace kestrova::platform
