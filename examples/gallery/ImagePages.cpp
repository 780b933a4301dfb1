#include "examples/gallery/GalleryBundle.h"
#include "examples/gallery/Look.h"
#include "examples/gallery/PageScreen.h"
#include "examples/gallery/Pages.h"
#include "platform/uikit/UIImageView.h"
#include "sdk/media/GIFHelper.h"

namespace kestrova::gallery {

namespace {

std::shared_ptr<UIImageView> tile(const std::optional<UIImage>& image, UIViewContentMode mode,
                                  const std::string& name) {
  auto view = std::make_shared<UIImageView>();
  view->setImage(image);
  view->setContentMode(mode);
  view->setAccessibilityLabel(name);
  view->setBackgroundColor(kAround);
  view->setClipsToBounds(true);
  return view;
}

// A picture in the middle of the row, at its own size.
std::shared_ptr<UIView> centred(const std::shared_ptr<UIView>& view, CGSize size) {
  constexpr double kWide = 400;
  auto holder = std::make_shared<UIView>();
  view->setFrame({{(kWide - size.width) / 2, 0}, size});
  view->setAutoresizing(
      UIViewAutoresizing::flexibleLeftMargin | UIViewAutoresizing::flexibleRightMargin,
      {kWide, size.height});
  holder->addSubview(view);
  return holder;
}

}  // namespace

std::shared_ptr<UIViewController> imagesPage() {
  auto page = std::make_shared<PageScreen>("Images");
  const auto picture = UIImage::named("Bay", galleryBundle());
  page->addRow("Scale to fill, aspect fit",
               {tile(picture, UIViewContentMode::scaleToFill, "The bay, stretched"),
                tile(picture, UIViewContentMode::scaleAspectFit, "The bay, whole")},
               100);
  page->addRow("Aspect fill, centre",
               {tile(picture, UIViewContentMode::scaleAspectFill, "The bay, cut off"),
                tile(picture, UIViewContentMode::center, "The bay at its own size")},
               100);
  PageScreen::Views round;
  for (const double radius : {8.0, 16.0, 36.0}) {
    auto view = tile(picture, UIViewContentMode::scaleAspectFill, "The bay with round corners");
    view->layer().setCornerRadius(radius);
    if (radius == 16) {
      view->layer().setBorderWidth(3);
      view->layer().setBorderColor(UIColorExtensions::kestrovaBlue());
    }
    round.push_back(view);
  }
  page->addRow("Corner radius 8, 16 with a border, half the height", round, 72);
  return page;
}

std::shared_ptr<UIViewController> animationsPage() {
  auto page = std::make_shared<PageScreen>("Animations");
  struct Animation {
    const char* name;
    const char* label;
    CGSize size;
    double radius;
  };
  const Animation animations[] = {{"headGIF", "A head that turns slowly", {160, 160}, 80},
                                  {"IDGIF", "A document in the frame", {224, 144}, 8},
                                  {"verifiedBadge", "A badge with a check mark", {96, 96}, 0}};
  for (const auto& each : animations) {
    const auto view = tile(UIImageExtensions::gifImageWithName(each.name),
                           UIViewContentMode::scaleAspectFit, each.label);
    view->setBackgroundColor(each.radius > 0 ? std::optional(kTint) : std::nullopt);
    view->layer().setCornerRadius(each.radius);
    page->add("", centred(view, each.size), each.size.height);
  }
  return page;
}

}  // namespace kestrova::gallery
