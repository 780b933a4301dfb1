#include <algorithm>
#include <cmath>

#include "examples/gallery/Look.h"
#include "examples/gallery/PageScreen.h"
#include "examples/gallery/Pages.h"
#include "platform/uikit/CAGradientLayer.h"
#include "platform/uikit/UIAlertController.h"
#include "platform/uikit/UINavigationBar.h"

namespace kestrova::gallery {

namespace {

void fill(PageScreen& page) {
  page.add("", text("Where are you from?", exo("SemiBold", 26), kInk, 32));
  page.add("", text("The next minutes ask for a video selfie and a document.", exo("Regular", 16),
                    kBody, 24));
  page.add("", field("Country"), 52);
  page.add("", primaryButton("Next"), 52);
}

// A ground that goes on below the bar.
class Sky : public UIView {
 public:
  Sky() : UIView(std::make_unique<CAGradientLayer>()) {
    static_cast<CAGradientLayer&>(layer()).setColors({hex(0xB9D2FF), UIColor::white()});
    addSubview(words_);
  }

  void layoutSubviews() override {
    const double width = std::min(432.0, bounds().size.width - 48);
    const double height = words_->sizeThatFits({width, -1}).height;
    words_->setFrame({{std::round((bounds().size.width - width) / 2), 80}, {width, height}});
  }

 private:
  std::shared_ptr<UILabel> words_ =
      text("The bar has neither a ground nor a hairline of its own: the screen goes on below it.",
           exo("Regular", 16), kBody, 24);
};

class SkyScreen : public UIViewController {
 public:
  SkyScreen() { setNavigationItem({.title = "Clear navigation bar", .hidesBackButton = false}); }

  void loadView() override { setView(std::make_shared<Sky>()); }
  void viewWillDisappear(bool animated) override {
    UIViewController::viewWillDisappear(animated);
    UINavigationBar::appearance() = {};
  }
};

}  // namespace

std::shared_ptr<UIViewController> alertPage() {
  auto page = std::make_shared<PageScreen>("Alert");
  fill(*page);
  page->whenShown([](PageScreen& shown) {
    const auto alert = std::make_shared<UIAlertController>(
        "No connection", "The picture could not be sent. Nothing is lost: try again in a moment.");
    alert->addAction(std::make_shared<UIAlertAction>("Later", UIAlertActionStyle::cancel));
    alert->addAction(std::make_shared<UIAlertAction>("Try again", UIAlertActionStyle::standard));
    shown.present(alert, true);
  });
  return page;
}

std::shared_ptr<UIViewController> clearBarPage() {
  auto page = std::make_shared<SkyScreen>();
  auto& bars = UINavigationBar::appearance();
  bars.setBackgroundImage(std::nullopt, UIBarPosition::any, UIBarMetrics::standard);
  bars.setShadowImage(std::nullopt);
  return page;
}

std::shared_ptr<UIViewController> sheetPage() {
  auto page = std::make_shared<PageScreen>("Sheet");
  fill(*page);
  page->whenShown([](PageScreen& shown) {
    const auto inner = std::make_shared<PageScreen>("Presented");
    fill(*inner);
    shown.present(inner, true);
  });
  return page;
}

}  // namespace kestrova::gallery
