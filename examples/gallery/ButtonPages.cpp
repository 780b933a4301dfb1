#include "examples/gallery/Look.h"
#include "examples/gallery/PageScreen.h"
#include "examples/gallery/Pages.h"
#include "platform/uikit/UITouch.h"
#include "sdk/core/Kestrova.h"
#include "sdk/ui/KestrovaButton.h"
#include "sdk/ui/KestrovaButtonHelper.h"
#include "sdk/ui/ViewClasses.h"

namespace kestrova::gallery {

namespace {

std::optional<UIImage> drawing(std::string_view name) {
  const auto bundle = Kestrova::bundle();
  return bundle ? UIImage::named(name, *bundle) : std::nullopt;
}

// As a finger that rests on it.
void press(const std::shared_ptr<UIView>& view) {
  const CGSize size = view->bounds().size;
  view->touchesBegan(UITouch(view, {size.width / 2, size.height / 2}));
}

}  // namespace

std::shared_ptr<UIViewController> buttonsPage() {
  auto page = std::make_shared<PageScreen>("Buttons");
  const auto pressed = primaryButton("Pressed");
  page->addRow("Normal, pressed", {primaryButton("Normal"), pressed}, 52);
  const auto focused = primaryButton("Focused");
  const auto disabled = primaryButton("Disabled");
  disabled->setEnabled(false);
  disabled->setBackgroundColor(UIColor::lightGray());
  page->addRow("Focused by the keyboard, disabled", {focused, disabled}, 52);

  const auto plain = std::make_shared<UIButton>();
  plain->setTitle("Close");
  plain->setTitleFont(exo("SemiBold", 17));
  plain->setTitleColor(UIColorExtensions::kestrovaBlue());
  plain->setFocusable(true);
  const auto outlined = std::make_shared<UIButton>();
  outlined->setTitle("Turn");
  outlined->setImage(drawing("turnMark"));
  outlined->setTitleFont(exo("SemiBold", 17));
  outlined->setTitleColor(kInk);
  outlined->layer().setCornerRadius(8);
  outlined->layer().setBorderWidth(1.5);
  outlined->layer().setBorderColor(kLine);
  outlined->setFocusable(true);
  page->addRow("A word, an image with a title", {plain, outlined}, 52);

  PageScreen::Views round;
  for (const auto& [name, label] : {std::pair{"backChevron", "Back"}, {"closeCross", "Close"}}) {
    auto button = std::make_shared<UIButton>();
    button->setImage(drawing(name));
    button->setAccessibilityLabel(label);
    button->layer().setCornerRadius(22);
    button->setContentInset(0);
    button->setFocusable(true);
    round.push_back(button);
  }
  page->addRow("Images alone", round, 44);
  const auto longTitle = primaryButton("Send the picture of the back of my driving licence now");
  page->add("A title that is too long", longTitle, 52);

  page->whenShown([pressed = std::weak_ptr<UIView>(pressed),
                   focused = std::weak_ptr<UIView>(focused)](PageScreen&) {
    if (const auto button = pressed.lock()) press(button);
    if (const auto button = focused.lock()) focusByKeyboard(*button);
  });
  return page;
}

std::shared_ptr<UIViewController> startButtonPage() {
  auto page = std::make_shared<PageScreen>("Start button");
  registerViewClasses();
  PageScreen::Views buttons;
  for (int index = 0; index < 3; ++index) {
    if (auto button = UIViewExtensions::viewFromNib<KestrovaButton>()) {
      button->setFocusable(true);
      buttons.push_back(button);
    }
  }
  if (buttons.size() < 3) return page;
  page->add("As the SDK's nib has it", buttons[0], 52);
  page->add("Pressed", buttons[1], 52);
  page->add("Focused by the keyboard", buttons[2], 52);
  page->whenShown([pressed = std::weak_ptr<UIView>(buttons[1]),
                   focused = std::weak_ptr<UIView>(buttons[2])](PageScreen&) {
    if (const auto button = pressed.lock()) press(button);
    if (const auto button = focused.lock()) focusByKeyboard(*button);
  });
  return page;
}

}  // namespace kestrova::gallery
