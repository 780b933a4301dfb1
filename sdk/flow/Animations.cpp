#include "sdk/flow/Animations.h"

#include "platform/uikit/UIImageView.h"
#include "sdk/media/GIFHelper.h"

namespace kestrova {

void playGIF(std::string_view name, UIView& container) {
  const auto picture = UIImageExtensions::gifImageWithName(name);
  if (!picture) return;
  const auto imageView = std::make_shared<UIImageView>(*picture);
  imageView->setFrame(container.frame());
  // A round container shows a round picture.
  imageView->layer().setCornerRadius(container.layer().cornerRadius());
  imageView->setClipsToBounds(true);
  container.addSubview(imageView);
  imageView->setCenter({container.frame().size.width / 2, container.frame().size.height / 2});
}

void removeSubviews(UIView& container) {
  const auto subviews = container.subviews();
  for (const auto& subview : subviews) subview->removeFromSuperview();
}

}  // namespace kestrova
