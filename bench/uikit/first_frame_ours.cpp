// A window of ours with one label; ends after its first frame.

#include <cstdlib>
#include <memory>

#include <QtCore/QCoreApplication>

#include "platform/dispatch/DispatchQueue.h"
#include "platform/uikit/Canvas.h"
#include "platform/uikit/UIApplication.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UIViewController.h"
#include "platform/uikit/UIWindow.h"

using namespace kestrova::platform;

namespace {

class Label : public UILabel {
 protected:
  void draw(Canvas& canvas) override {
    UILabel::draw(canvas);
    // As the toolkit's own program: the loop ends before it sleeps again.
    QCoreApplication::exit(0);
  }
};

}  // namespace

int main(int count, char** arguments) {
  std::shared_ptr<UIWindow> window;
  return UIApplication::main(count, arguments, [&window] {
    window = UIWindow::make({375, 667});
    const auto controller = std::make_shared<UIViewController>();
    const auto label = std::make_shared<Label>();
    label->setText("Verify your identity");
    controller->setView(label);
    window->setRootViewController(controller);
    window->makeKeyAndVisible();
  });
}
