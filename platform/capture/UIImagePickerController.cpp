#include "platform/capture/UIImagePickerController.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "platform/capture/AVCaptureDevice.h"
#include "platform/capture/CameraControlsView.h"
#include "platform/capture/CameraError.h"
#include "platform/capture/CameraPreviewView.h"
#include "platform/capture/CameraSession.h"
#include "platform/foundation/NotificationCenter.h"
#include "platform/foundation/Print.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UIScreen.h"
#include "platform/uikit/UIWindow.h"

namespace kestrova::platform {

namespace {

using State = CameraControlsView::State;

// Where overlays have their middle, as a share of the height: the picture keeps to it.
constexpr double kMiddle = 0.45;
constexpr double kMargin = 24;
constexpr double kTextWidth = 320;
constexpr double kBetween = 8;

std::shared_ptr<UILabel> label(const char* name, double size, double weight, double lineHeight,
                               const UIColor& color) {
  auto label = std::make_shared<UILabel>();
  label->setFont(UIFont::make(name, size).value_or(UIFont::systemFont(size, weight)));
  label->setLineHeight(lineHeight);
  label->setTextColor(color);
  label->setNumberOfLines(0);
  label->setTextAlignment(NSTextAlignment::center);
  return label;
}

UIImagePickerControllerInfo infoFor(const UIImage& photo) {
  return {{UIImagePickerControllerMediaType, std::string(kUTTypeImage)},
          {UIImagePickerControllerOriginalImage, photo}};
}

}  // namespace

// The picture above, the controls below, the overlay over both.
class UIImagePickerController::PickerView : public UIView {
 public:
  PickerView()
      : preview(std::make_shared<CameraPreviewView>()),
        controls(std::make_shared<CameraControlsView>()),
        heading_(label("Exo-SemiBold", 22, UIFont::kSemiboldWeight, 28, UIColor::white())),
        advice_(label("Exo-Regular", 16, UIFont::kRegularWeight, 24, UIColor::white(1, 0.78))),
        status_(label("Exo-Regular", 16, UIFont::kRegularWeight, 24, UIColor::white(1, 0.78))) {
    setBackgroundColor(UIColor::black());
    heading_->setText("The camera can’t be used");
    heading_->setAccessibilityRole(UIAccessibilityRole::alert);
    addSubview(preview);
    addSubview(heading_);
    addSubview(advice_);
    status_->setText("Starting the camera");
    addSubview(status_);
    addSubview(controls);
    setAdvice({});
  }

  // Over the picture; designed for a view of that size. Null for none.
  void setOverlay(const std::shared_ptr<UIView>& overlay, CGSize designedFor) {
    if (const auto former = overlay_.lock(); former && former != overlay) {
      former->removeFromSuperview();
    }
    overlay_ = overlay;
    if (!overlay) return;
    design_ = overlay->frame();
    designedFor_ = designedFor;
    insertSubview(overlay, 1);
    placeOverlay();
  }

  // Takes the picture's place; empty for none.
  void setAdvice(const std::string& advice) {
    advice_->setText(advice);
    heading_->setHidden(advice.empty());
    advice_->setHidden(advice.empty());
    if (const auto overlay = overlay_.lock()) overlay->setHidden(!advice.empty());
    setNeedsLayout();
  }

  // When true, shows that the camera is starting. True until the first picture.
  void setStarting(bool isStarting) { status_->setHidden(!isStarting); }

  // Called with the pixels for a picture when they have changed.
  std::function<void(PixelSize room)> onRoom;

  void layoutSubviews() override {
    const CGSize size = bounds().size;
    const double below = CameraControlsView::height(size.height);
    const double above = std::max(0.0, size.height - below);
    preview->setFrame({{}, {size.width, above}});
    preview->setMiddle(size.height * kMiddle);
    controls->setFrame({{0, above}, {size.width, below}});
    placeOverlay();
    layoutText(above);
    const double line = std::ceil(status_->sizeThatFits({size.width, 1e6}).height);
    status_->setFrame({{0, std::round(size.height * kMiddle - line / 2)}, {size.width, line}});
    const auto call = onRoom;
    if (call) call(preview->room());
  }

  const std::shared_ptr<CameraPreviewView> preview;
  const std::shared_ptr<CameraControlsView> controls;

 private:
  void layoutText(double above) {
    const double width = std::max(0.0, std::min(kTextWidth, bounds().size.width - 2 * kMargin));
    const double left = std::round((bounds().size.width - width) / 2);
    const double first = std::ceil(heading_->sizeThatFits({width, 1e6}).height);
    const double second = std::ceil(advice_->sizeThatFits({width, 1e6}).height);
    const double top = std::max(0.0, std::round((above - first - kBetween - second) / 2));
    heading_->setFrame({{left, top}, {width, first}});
    advice_->setFrame({{left, top + first + kBetween}, {width, second}});
  }

  void placeOverlay() {
    const auto overlay = overlay_.lock();
    const CGSize size = bounds().size;
    if (!overlay || designedFor_.width <= 0 || designedFor_.height <= 0) return;
    const double across = size.width / designedFor_.width;
    const double down = size.height / designedFor_.height;
    if (size == designedFor_ || size.width <= 0) return overlay->setFrame(design_);
    overlay->setFrame({{design_.origin.x * across, design_.origin.y * down},
                       {design_.size.width * across, design_.size.height * down}});
  }

  std::shared_ptr<UILabel> heading_;
  std::shared_ptr<UILabel> advice_;
  std::shared_ptr<UILabel> status_;
  std::weak_ptr<UIView> overlay_;
  CGRect design_;
  CGSize designedFor_;
};

UIImagePickerController::UIImagePickerController() = default;

UIImagePickerController::~UIImagePickerController() = default;

bool UIImagePickerController::isSourceTypeAvailable(UIImagePickerControllerSourceType sourceType) {
  return sourceType == UIImagePickerControllerSourceType::camera &&
         AVCaptureDevice::defaultDevice(AVCaptureDevice::Position::back).has_value();
}

CGSize UIImagePickerController::sizeToCome() const {
  if (content_ && content_->window()) return content_->bounds().size;
  const auto screen = std::dynamic_pointer_cast<UIViewController>(delegate.lock());
  const auto view = screen ? screen->viewIfLoaded() : nullptr;
  const auto window = view ? view->window() : nullptr;
  return window ? window->bounds().size : UIScreen::main().bounds().size;
}

const std::shared_ptr<UIView>& UIImagePickerController::cameraOverlayView() {
  if (!isOverlaySet_) {
    overlay_ = std::make_shared<UIView>(CGRect{{}, sizeToCome()});
    overlay_->setUserInteractionEnabled(false);
  }
  return overlay_;
}

void UIImagePickerController::setCameraOverlayView(const std::shared_ptr<UIView>& view) {
  isOverlaySet_ = view != nullptr;
  overlay_ = view;
  if (content_) content_->setOverlay(view, sizeToCome());
}

void UIImagePickerController::loadView() {
  content_ = std::make_shared<PickerView>();
  if (isOverlaySet_) content_->setOverlay(overlay_, sizeToCome());
  const auto call = [weak = std::weak_ptr<UIImagePickerController>(shared(this))](
                        void (UIImagePickerController::*handler)()) {
    return [weak, handler] {
      if (const auto alive = weak.lock()) ((*alive).*handler)();
    };
  };
  auto& controls = *content_->controls;
  controls.onShutter = call(&UIImagePickerController::takePhoto);
  controls.onCancel = call(&UIImagePickerController::cancel);
  controls.onFlash = call(&UIImagePickerController::switchFlash);
  controls.onRetake = call(&UIImagePickerController::open);
  controls.onUse = call(&UIImagePickerController::use);
  content_->onRoom = [weak = std::weak_ptr<UIImagePickerController>(shared(this))](PixelSize room) {
    const auto alive = weak.lock();
    if (alive && alive->session_) alive->session_->setFrameSize(room);
  };
  setView(content_);
}

void UIImagePickerController::viewWillAppear(bool animated) {
  UIViewController::viewWillAppear(animated);
  content_->preview->setPicture(nullptr);
  open();
}

std::shared_ptr<UIView> UIImagePickerController::preferredFocusView() {
  return content_->controls->primaryControl();
}

void UIImagePickerController::controlsChanged() {
  const auto window = content_->window();
  if (!window) return;
  // New buttons replace the shutter: ignore the second tap of a double tap.
  if (content_->controls->state() != State::live) window->contentChanged(content_->controls);
  window->focusPreferredView();
}

void UIImagePickerController::viewDidAppear(bool animated) {
  UIViewController::viewDidAppear(animated);
  if (content_->controls->state() == State::opening) {
    postAccessibilityAnnouncement(*content_, "Starting the camera");
  }
}

void UIImagePickerController::viewWillDisappear(bool animated) {
  UIViewController::viewWillDisappear(animated);
  close();
}

void UIImagePickerController::open() {
  close();
  photo_.reset();
  content_->setAdvice({});
  content_->setStarting(true);
  content_->controls->setState(State::opening);
  const auto position = cameraDevice == UIImagePickerControllerCameraDevice::front
                            ? AVCaptureDevice::Position::front
                            : AVCaptureDevice::Position::back;
  const auto device = sourceType == UIImagePickerControllerSourceType::camera
                          ? AVCaptureDevice::defaultDevice(position)
                          : std::nullopt;
  auto source = device ? device->makeSource() : nullptr;
  if (!source) return fail(cameraError(CameraErrorCode::notFound, "there is no camera"));
  session_ = std::make_shared<CameraSession>(std::move(source));
  session_->setFrameSize(content_->preview->room());
  const std::weak_ptr<UIImagePickerController> weak = shared(this);
  session_->onOpen = [weak](bool hasFlash) {
    if (const auto alive = weak.lock()) {
      alive->content_->controls->setFlash(hasFlash, alive->cameraFlashMode);
    }
  };
  session_->onFrame = [weak](const CameraFrame& frame) {
    const auto alive = weak.lock();
    if (!alive) return;
    alive->content_->preview->setPicture(frame.image);
    auto& controls = *alive->content_->controls;
    if (controls.state() != State::opening) return;
    alive->content_->setStarting(false);
    alive->content_->preview->setAccessibilityLabel("Camera picture");
    controls.setState(State::live);
    alive->controlsChanged();
  };
  session_->onFailure = [weak](const NSError& error) {
    if (const auto alive = weak.lock()) alive->fail(error);
  };
  session_->start();
}

void UIImagePickerController::close() {
  if (const auto session = std::exchange(session_, nullptr)) session->stop();
}

void UIImagePickerController::fail(const NSError& error) {
  close();
  print("Kestrova: the camera cannot be used: " + error.localizedDescription);
  content_->preview->setPicture(nullptr);
  content_->setStarting(false);
  content_->setAdvice(cameraAdvice(error));
  content_->controls->setState(State::failed);
  controlsChanged();
  postAccessibilityAnnouncement(*content_, accessibilityText(*content_));
}

void UIImagePickerController::takePhoto() {
  if (!session_ || content_->controls->state() != State::live) return;
  content_->controls->setState(State::taking);
  session_->takePhoto(cameraFlashMode, [weak = std::weak_ptr<UIImagePickerController>(
                                            shared(this))](const Result<CameraPhoto>& photo) {
    const auto alive = weak.lock();
    if (!alive) return;
    if (photo) {
      alive->show(photo.value());
    } else {
      alive->fail(photo.error());
    }
  });
}

void UIImagePickerController::show(const CameraPhoto& photo) {
  const auto self = shared(this);
  close();
  photo_ = photo.image;
  content_->preview->setPicture(photo.preview);
  content_->preview->setAccessibilityLabel("Your photo");
  content_->controls->setState(State::taken);
  controlsChanged();
  NotificationCenter::defaultCenter().post({kUserDidCaptureItem, this, {}});
}

void UIImagePickerController::use() {
  const auto photo = std::exchange(photo_, std::nullopt);
  if (!photo || isBeingDismissed()) return;
  const auto self = shared(this);
  const auto told = delegate.lock();
  if (!told) return dismiss(true);
  told->imagePickerControllerDidFinishPickingMediaWithInfo(*this, infoFor(*photo));
}

void UIImagePickerController::cancel() {
  if (isBeingDismissed()) return;
  const auto self = shared(this);
  const auto told = delegate.lock();
  if (!told) return dismiss(true);
  told->imagePickerControllerDidCancel(*this);
}

void UIImagePickerController::switchFlash() {
  cameraFlashMode = cameraFlashMode == CameraFlashMode::automatic ? CameraFlashMode::on
                    : cameraFlashMode == CameraFlashMode::on      ? CameraFlashMode::off
                                                                  : CameraFlashMode::automatic;
  content_->controls->setFlash(true, cameraFlashMode);
}

bool UIImagePickerController::accessibilityPerformEscape() {
  cancel();
  return true;
}

}  // namespace kestrova::platform
