#include "platform/uikit/UIDevice.h"

#include <algorithm>
#include <charconv>

#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>

namespace kestrova::platform {

namespace {

constexpr const char* kSystemVersion = "17.0";
constexpr int kSmallestPad = 600;

}  // namespace

UIDevice& UIDevice::current() {
  static UIDevice device;
  return device;
}

UIDevice::UIDevice() : systemVersion_(kSystemVersion) {}

void UIDevice::setSystemVersion(std::string version) {
  systemVersion_ = version.empty() ? kSystemVersion : std::move(version);
}

bool UIDevice::hasSystemVersion(int major) const {
  int first = 0;
  std::from_chars(systemVersion_.data(), systemVersion_.data() + systemVersion_.size(), first);
  return first >= major;
}

UIUserInterfaceIdiom UIDevice::userInterfaceIdiom() const {
  if (idiom_) return *idiom_;
  const QScreen* const primary = QGuiApplication::primaryScreen();
  if (!primary) return UIUserInterfaceIdiom::phone;
  const QSize size = primary->size();
  return std::min(size.width(), size.height()) >= kSmallestPad ? UIUserInterfaceIdiom::pad
                                                               : UIUserInterfaceIdiom::phone;
}

}  // namespace kestrova::platform
