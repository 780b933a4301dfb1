#include "platform/uikit/UIScreen.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>

#include "platform/uikit/ModalPresentation.h"

namespace kestrova::platform {

UIScreen& UIScreen::main() {
  static UIScreen screen;
  return screen;
}

CGRect UIScreen::bounds() const {
  if (bounds_) return *bounds_;
  const QScreen* const primary = QGuiApplication::primaryScreen();
  if (!primary) return {};
  const QSize available = primary->availableSize();
  return ModalPresentation::placeIn({double(available.width()), double(available.height())});
}

}  // namespace kestrova::platform
