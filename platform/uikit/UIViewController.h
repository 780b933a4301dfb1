#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/foundation/Export.h"
#include "platform/uikit/UINavigationItem.h"
#include "platform/uikit/UIResponder.h"
#include "platform/uikit/UIStoryboardSegue.h"

class QWidget;

namespace kestrova::platform {

class ModalPresentation;
class UINavigationController;
class UIView;
class UIWindow;
struct UIStoryboardScene;

enum class UIModalPresentationStyle { fullScreen = 0, overFullScreen = 5, overCurrentContext = 6 };
enum class UIModalTransitionStyle { coverVertical = 0, crossDissolve = 2 };

// A screen. Main thread.
class KESTROVA_EXPORT UIViewController : public UIResponder {
 public:
  UIViewController();
  ~UIViewController() override;
  UIViewController(const UIViewController&) = delete;
  UIViewController& operator=(const UIViewController&) = delete;

  // Stands for a widget of a host, over whose window others can be presented. The widget stays the
  // host's and may go at any time; nothing is presented then. A view of ours inside the widget has
  // this as a responder as long as the host keeps it.
  static std::shared_ptr<UIViewController> wrapping(QWidget& widget);
  // The controller wrapped around `widget` or the nearest widget above it; null where there is
  // none.
  static std::shared_ptr<UIViewController> wrapper(const QWidget* widget);

  // The screen's view, loaded when first asked for: loadView(), then viewDidLoad(). A storyboard's
  // scene that cannot be loaded gives one line on standard output and an empty view.
  const std::shared_ptr<UIView>& view();
  const std::shared_ptr<UIView>& viewIfLoaded() const { return view_; }
  void setView(const std::shared_ptr<UIView>& view);
  virtual void loadView();
  virtual void viewDidLoad() {}

  // Around each time the screen comes and goes. The view has its final size at viewWillAppear().
  virtual void viewWillAppear(bool /*animated*/) {}
  virtual void viewDidAppear(bool /*animated*/) {}
  virtual void viewWillDisappear(bool /*animated*/) {}
  virtual void viewDidDisappear(bool /*animated*/) {}
  // Whether the screen is on display, or coming.
  bool isAppearing() const { return isAppearing_; }

  // The chain goes on with the view's superview, for a presented screen with its presenter.
  std::shared_ptr<UIResponder> next() const override;

  // Screens inside this one. The child's view is not placed by these.
  std::shared_ptr<UIViewController> parent() const { return parent_.lock(); }
  const std::vector<std::shared_ptr<UIViewController>>& children() const { return children_; }
  void addChild(const std::shared_ptr<UIViewController>& child);
  void removeFromParent();
  // The nearest navigation controller above; null where there is none.
  std::shared_ptr<UINavigationController> navigationController() const;
  const UINavigationItem& navigationItem() const { return navigationItem_; }
  void setNavigationItem(const UINavigationItem& item);

  // Presentation over this screen's whole window, or over the place of this screen with
  // overCurrentContext. One that is presented from a child is presented by its topmost parent. A
  // request while another one moves waits for it. `completion` follows the end of the motion.
  UIModalPresentationStyle modalPresentationStyle = UIModalPresentationStyle::fullScreen;
  UIModalTransitionStyle modalTransitionStyle = UIModalTransitionStyle::coverVertical;
  // Whether the screen takes the whole window when it is presented where others have a card.
  virtual bool fillsWindow() const { return false; }
  std::shared_ptr<UIViewController> presentedViewController() const;
  std::shared_ptr<UIViewController> presentingViewController() const;
  bool isBeingDismissed() const;
  void present(const std::shared_ptr<UIViewController>& controller, bool animated,
               std::function<void()> completion = {});
  // Takes away what this screen presents, with all that is presented above; where it presents
  // nothing, asks its presenter to take away this screen. Without either nothing happens.
  void dismiss(bool animated, std::function<void()> completion = {});
  // Dismisses the presentation that this screen belongs to and everything presented above it, even
  // during a motion. Does nothing if there is none.
  void endPresentation(bool animated);

  // Goes the storyboard's way of that name: the destination is made, prepare() is called, and it is
  // pushed or presented. Dropped with one line where this screen's scene has no such segue or where
  // it is not the visible top of its stack; waits while this screen presents another one, and
  // until that has gone. `sender` is this screen.
  void performSegue(std::string_view withIdentifier,
                    const std::shared_ptr<UIViewController>& sender);
  virtual void prepare(const UIStoryboardSegue&,
                       const std::shared_ptr<UIViewController>& /*sender*/) {}

  // The screen that is visible inside a frame or a stack; this one unless overridden.
  virtual std::shared_ptr<UIViewController> contentScreen();
  // The view that gets the keyboard's focus when this screen has appeared; null for none. Unless
  // overridden, the first in reading order that can take it.
  virtual std::shared_ptr<UIView> preferredFocusView();

  // The screen's name for assistive technology while it shows no heading.
  virtual std::string accessibilityTitle() const { return {}; }
  // Escape, or its like of assistive technology: shuts what is open on this screen. False where
  // nothing is; the screens around are asked then.
  virtual bool accessibilityPerformEscape() { return false; }

  // Escape and the back key: asks the innermost screens on display first. False where nobody used
  // it.
  bool escape();
  virtual bool goBack();

  // A modal view inside this screen's view has come or gone.
  virtual void modalViewChanged() {}

  // By the storyboard, before anything else.
  void setScene(std::shared_ptr<const UIStoryboardScene> scene) { scene_ = std::move(scene); }
  const std::shared_ptr<const UIStoryboardScene>& scene() const { return scene_; }

  // The appearance calls of this screen and, after it, of those inside that are on display. For
  // containers.
  void beginAppearance(bool appearing, bool animated);
  void endAppearance();

 protected:
  // The screens inside that are on display together with this one: all children, unless overridden.
  virtual std::vector<std::shared_ptr<UIViewController>> childrenOnDisplay() const {
    return children_;
  }

 private:
  friend class ModalPresentation;

  void embedChildren();
  bool isVisibleTop() const;
  const UIViewController& root() const;
  std::shared_ptr<UIWindow> windowForPresenting();

  std::shared_ptr<UIView> view_;
  std::weak_ptr<UIViewController> parent_;
  std::vector<std::shared_ptr<UIViewController>> children_;
  UINavigationItem navigationItem_;
  std::shared_ptr<const UIStoryboardScene> scene_;
  // What this screen presents, owned, and what presents it.
  std::shared_ptr<ModalPresentation> presentation_;
  std::weak_ptr<ModalPresentation> presentedBy_;
  struct Wrapped;
  std::unique_ptr<Wrapped> wrapped_;
  bool isAppearing_ = false;
  bool isMoving_ = false;
  bool animatedAppearance_ = false;
};

}  // namespace kestrova::platform
