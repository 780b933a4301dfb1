#include "sdk/flow/Animations.h"

#include <functional>
#include <map>
#include <string>

#include "platform/uikit/UIImageView.h"
#include "sdk/media/GIFHelper.h"

namespace kestrova {

namespace {

std::map<std::string, UIImage, std::less<>>& decoded() {
  static std::map<std::string, UIImage, std::less<>> pictures;
  return pictures;
}

}  // namespace

void forgetGIFs() {
  decoded().clear();
}

void playGIF(std::string_view name, UIView& container) {
  auto found = decoded().find(name);
  if (found == decoded().end()) {
    const auto picture = UIImageExtensions::gifImageWithName(name);
    if (!picture) return;
    found = decoded().emplace(name, *picture).first;
  }
  const auto imageView = std::make_shared<UIImageView>(found->second);
  imageView->setFrame(container.frame());
  // A round container shows a round picture.
  imageView->layer().setCornerRadius(container.layer().cornerRadius());
  imageView->setClipsToBounds(true);
  container.addSubview(imageView);
  imageView->setCenter({container.frame().size.width / 2, container.frame().size.height / 2});
}

void removeSubviews(UIView& container) {
  // A copy: those that go leave the list.
  // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
  const auto subviews = container.subviews();
  for (const auto& subview : subviews) subview->removeFromSuperview();
}

}  // namespace kestrova
