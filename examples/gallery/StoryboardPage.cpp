#include "examples/gallery/GalleryBundle.h"
#include "examples/gallery/Look.h"
#include "examples/gallery/PageScreen.h"
#include "examples/gallery/Pages.h"
#include "platform/uikit/UIBindings.h"
#include "platform/uikit/UIClassRegistry.h"
#include "platform/uikit/UIStoryboard.h"

namespace kestrova::gallery {

namespace {

// The screen that is designed in Visit.ui.
class VisitScreen : public UIViewController {
 public:
  std::weak_ptr<UITextField> name;
  std::weak_ptr<UILabel> greeting;

  void bind(UIBindings& bindings) override {
    bindings.outlet("name", name);
    bindings.outlet("greeting", greeting);
    bindings.action("greet:", shared(this), &VisitScreen::greet);
  }

 private:
  void greet(const std::shared_ptr<UIControl>&) {
    const auto field = name.lock();
    const auto label = greeting.lock();
    if (!field || !label) return;
    field->resignFirstResponder();
    label->setText(field->text().empty() ? "Good to see you." : "Welcome, " + field->text() + ".");
  }
};

}  // namespace

std::shared_ptr<UIViewController> storyboardPage() {
  UIClassRegistry::registerClass<VisitScreen>("VisitScreen");
  const auto storyboard = UIStoryboard::make("Visit", galleryBundle());
  const auto screen = storyboard ? storyboard.value()->instantiateInitialViewController()
                                 : Result<std::shared_ptr<UIViewController>>(storyboard.error());
  if (screen) return screen.value();
  auto page = std::make_shared<PageScreen>("From a storyboard");
  page->add("It cannot be loaded",
            text(screen.error().localizedDescription, exo("Regular", 15), kInk, 22));
  return page;
}

}  // namespace kestrova::gallery
