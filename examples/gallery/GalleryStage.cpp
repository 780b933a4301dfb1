#include "examples/gallery/GalleryStage.h"

#include <cmath>

#include <QtGui/QPixmap>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

#include "examples/gallery/GalleryHome.h"
#include "platform/uikit/AnimationClock.h"
#include "platform/uikit/UINavigationController.h"
#include "platform/uikit/UIWindow.h"

namespace kestrova::gallery {

namespace {

constexpr double kStep = 0.05;

}  // namespace

GalleryStage::GalleryStage(CGSize size, const std::shared_ptr<UIViewController>& page)
    : window_(UIWindow::make(size)), stack_(std::make_shared<UINavigationController>()) {
  stack_->setViewControllers({std::make_shared<GalleryHome>()});
  window_->setRootViewController(stack_);
  window_->makeKeyAndVisible();
  window_->widget()->activateWindow();
  QCoreApplication::processEvents();
  if (page) stack_->pushViewController(page, false);
}

GalleryStage::~GalleryStage() {
  if (stack_->presentedViewController()) stack_->dismiss(false);
  window_->close();
}

void GalleryStage::settle(double seconds) {
  for (long left = std::lround(std::ceil(seconds / kStep)); left > 0; --left) {
    AnimationClock::shared().advance(kStep);
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
  }
}

bool GalleryStage::save(const std::string& file) const {
  return window_->widget()->grab().save(QString::fromStdString(file));
}

}  // namespace kestrova::gallery
