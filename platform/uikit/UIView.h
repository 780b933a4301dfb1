#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/foundation/Export.h"
#include "platform/graphics/CGGeometry.h"
#include "platform/graphics/UIColor.h"
#include "platform/uikit/CALayer.h"
#include "platform/uikit/UIAccessibility.h"
#include "platform/uikit/UIResponder.h"

class QWidget;

namespace kestrova::platform {

class Canvas;
class NSLayoutConstraint;
class UIGestureRecognizer;
class UITouch;
class UIViewController;
class UIWindow;

// Which distances of a view to its superview's edges, or which of its own lengths, change with the
// superview's size; the others keep what they were designed with.
enum class UIViewAutoresizing : unsigned {
  none = 0,
  flexibleLeftMargin = 1,
  flexibleWidth = 2,
  flexibleRightMargin = 4,
  flexibleTopMargin = 8,
  flexibleHeight = 16,
  flexibleBottomMargin = 32,
};
constexpr UIViewAutoresizing operator|(UIViewAutoresizing a, UIViewAutoresizing b) {
  return UIViewAutoresizing(unsigned(a) | unsigned(b));
}
constexpr bool has(UIViewAutoresizing mask, UIViewAutoresizing part) {
  return (unsigned(mask) & unsigned(part)) != 0;
}

enum class UIViewContentMode {
  scaleToFill = 0,
  scaleAspectFit = 1,
  scaleAspectFill = 2,
  center = 4
};

// A rectangle on the screen that draws itself, holds other views and answers touches. It owns a
// widget of the toolkit and therefore needs the application object (UIApplication::exists());
// without one the constructor throws std::logic_error. Lengths are points, the upper left corner
// is the origin. Main thread.
class KESTROVA_EXPORT UIView : public UIResponder {
 public:
  UIView();
  explicit UIView(const CGRect& frame);
  ~UIView() override;
  UIView(const UIView&) = delete;
  UIView& operator=(const UIView&) = delete;

  // In the superview's coordinates. Fractions are kept; the widget lies on whole points. Where a
  // layout of the storyboard places the view, the layout's rectangle is the frame.
  CGRect frame() const;
  void setFrame(const CGRect& frame);
  // The origin is what the subviews are moved by; scroll views use it.
  CGRect bounds() const;
  void setBoundsOrigin(CGPoint origin);
  // Pixels of a point, on the screen where the view is.
  double contentScaleFactor() const;
  CGPoint center() const;
  void setCenter(CGPoint center);
  // `point` of this view in the coordinates of `view`, of the window where null. Both must have the
  // same top view.
  CGPoint convert(CGPoint point, const UIView* view) const;

  std::shared_ptr<UIView> superview() const;
  const std::vector<std::shared_ptr<UIView>>& subviews() const { return subviews_; }
  // On top of the others; leaves its former superview first.
  void addSubview(const std::shared_ptr<UIView>& view);
  void insertSubview(const std::shared_ptr<UIView>& view, std::size_t index);
  void removeFromSuperview();
  void bringSubviewToFront(const UIView& view);
  bool isDescendant(const UIView& of) const;
  // Null where the view's top is not a window.
  std::shared_ptr<UIWindow> window() const;

  bool isHidden() const { return isHidden_; }
  virtual void setHidden(bool hidden);
  // Off: neither this view nor what lies in it gets touches.
  bool isUserInteractionEnabled() const { return isUserInteractionEnabled_; }
  void setUserInteractionEnabled(bool enabled) { isUserInteractionEnabled_ = enabled; }
  std::optional<UIColor> backgroundColor() const { return layer_->backgroundColor(); }
  void setBackgroundColor(const std::optional<UIColor>& color) {
    layer_->setBackgroundColor(color);
  }
  bool clipsToBounds() const { return layer_->masksToBounds(); }
  void setClipsToBounds(bool clips) { layer_->setMasksToBounds(clips); }
  UIViewContentMode contentMode() const { return contentMode_; }
  void setContentMode(UIViewContentMode mode);
  CALayer& layer() { return *layer_; }
  const CALayer& layer() const { return *layer_; }

  // Placing by the storyboard's layout; kept for the sake of views that are placed by code.
  bool translatesAutoresizingMaskIntoConstraints() const { return translatesAutoresizingMask_; }
  void setTranslatesAutoresizingMaskIntoConstraints(bool on) { translatesAutoresizingMask_ = on; }
  const std::vector<std::shared_ptr<NSLayoutConstraint>>& constraints() const {
    return constraints_;
  }
  void addConstraint(const std::shared_ptr<NSLayoutConstraint>& constraint);

  // Follows the superview's size with each of its layout passes, from the frame that the view has
  // now in a superview of the size `designedIn`.
  void setAutoresizing(UIViewAutoresizing mask, CGSize designedIn);
  // Keeps the superview's size.
  void fillSuperview();

  // Asks for a layout pass soon; layoutIfNeeded() makes one at once, of everything below this view.
  void setNeedsLayout();
  void layoutIfNeeded();
  // Places the subviews. Called at each layout pass in which the size changed or that was asked
  // for.
  virtual void layoutSubviews() {}
  // The size that the content wants in a width; a negative length is no wish. A layout of the
  // storyboard asks this.
  virtual CGSize sizeThatFits(CGSize size) const;
  // To be called when what sizeThatFits() answers has changed.
  void invalidateIntrinsicContentSize();
  // Draws again soon.
  void setNeedsDisplay();

  // Runs `animations`; where it calls layoutIfNeeded(), the constraints that have changed move to
  // their new constants over `duration` seconds. `completion` follows when they are there, at once
  // where nothing moves.
  static void animate(double withDuration, const std::function<void()>& animations,
                      std::function<void()> completion = {});

  // After the view has come into a window or has left it.
  virtual void didMoveToWindow() {}
  // The next responder is the controller whose view this is, else the superview.
  std::shared_ptr<UIResponder> next() const override;
  std::shared_ptr<UIViewController> viewController() const { return viewController_.lock(); }

  void addGestureRecognizer(const std::shared_ptr<UIGestureRecognizer>& recognizer);
  void removeGestureRecognizer(const UIGestureRecognizer& recognizer);
  const std::vector<std::shared_ptr<UIGestureRecognizer>>& gestureRecognizers() const {
    return gestureRecognizers_;
  }
  // The deepest view under `point` that may get touches; null outside.
  virtual std::shared_ptr<UIView> hitTest(CGPoint point);
  // Whether the touches that begin here are this view's own: they come by the four calls below,
  // and no recogniser of a superview sees them where `claimsTouches` says so too.
  virtual bool wantsTouches() const { return false; }
  virtual bool claimsTouches() const { return wantsTouches(); }
  virtual void touchesBegan(const UITouch&) {}
  virtual void touchesMoved(const UITouch&) {}
  virtual void touchesEnded(const UITouch&) {}
  virtual void touchesCancelled(const UITouch&) {}

  // Takes editing away from the text field in this view that has it, also against its delegate's
  // will where `force` is set. Whether no field is edited any more.
  virtual bool endEditing(bool force);

  // While a modal view is visible, its siblings and everything in them take no touch, key or focus
  // and are hidden from assistive technology. The topmost visible one counts. Back is not offered
  // while the top screen of a navigation controller shows one.
  bool accessibilityViewIsModal() const { return isModal_; }
  void setAccessibilityViewIsModal(bool isModal);
  // True while this view or one of its visible subviews, at any depth, is visible and modal.
  bool showsModalView() const;
  // False while the view is in no window, hidden, beside a modal view or below a presented screen,
  // either itself or through a superview, and in a host's form while a flow covers it.
  bool isReachable() const;

  // A view that can take the keyboard's focus takes part in the Tab order.
  bool isFocusable() const { return isFocusable_; }
  void setFocusable(bool focusable);
  bool isFocused() const;
  // Focused, and not merely because its window came to the front.
  bool isFocusedByKeyboard() const;
  // Does nothing while the view is not reachable or is a disabled control.
  void becomeFocused();
  // A key that reached the focused view or one below this one: true where it was used.
  virtual bool keyPressed(const std::string& key);
  // The shape of the focus ring, in this view's coordinates; none where it is empty.
  virtual CGRect focusRect() const;

  // The subviews that people can reach: only the modal one while a modal one is visible.
  std::vector<std::shared_ptr<UIView>> reachableSubviews() const;

  // Called on a view that a nib or storyboard holds; what it returns takes its place there.
  virtual std::shared_ptr<UIView> awakeAfter() { return shared(this); }

  // Assistive technology. Labels, images and controls supply what is not set.
  void setAccessibilityLabel(std::string label) { accessibilityLabel_ = std::move(label); }
  virtual std::string accessibilityLabel() const { return accessibilityLabel_; }
  // Read after the label and the role: how to use the view, in a sentence.
  void setAccessibilityHint(std::string hint) { accessibilityHint_ = std::move(hint); }
  const std::string& accessibilityHint() const { return accessibilityHint_; }
  // Set by views that open something; none for all others.
  void setAccessibilityExpanded(std::optional<bool> isExpanded) { isExpanded_ = isExpanded; }
  std::optional<bool> isAccessibilityExpanded() const { return isExpanded_; }
  void setAccessibilityRole(UIAccessibilityRole role) { accessibilityRole_ = role; }
  virtual UIAccessibilityRole accessibilityRole() const { return accessibilityRole_; }
  virtual std::string accessibilityValue() const { return {}; }
  virtual bool isAccessibilitySelected() const { return false; }
  // What activating does through assistive technology; false where nothing does.
  virtual bool accessibilityActivate() { return false; }

  // The toolkit's widget. Null after the toolkit has deleted it with a host's window.
  QWidget* widget() const;
  // The view of a widget; null where it is none of ours.
  static std::shared_ptr<UIView> of(const QWidget* widget);

 protected:
  // With a layer of another kind.
  explicit UIView(std::unique_ptr<CALayer> layer);

  // Between the layer's ground and border.
  virtual void draw(Canvas&) {}
  // For draw(): draws the view again at that time of the AnimationClock, if it can be seen then.
  void redrawAt(double time);
  // The toolkit has deleted the widget.
  virtual void widgetLost() {}
  // Maximum height for a constraint with a minimum in this view, points.
  virtual double maxConstraintHeight() const;
  // Call when the result of maxConstraintHeight() has changed.
  void reapplyConstraints();
  // A wheel or touch pad moved over the view, by points; whether it was used.
  virtual bool wheelMoved(CGPoint) { return false; }
  // Whether sizeThatFits() answers another height for another width.
  virtual bool heightDependsOnWidth() const { return false; }
  // The keyboard's focus came or went.
  virtual void focusChanged() {}

 private:
  class Widget;
  friend class UIViewController;

  void applyFrame();
  void place(const std::shared_ptr<UIView>& view, std::size_t index);
  // How the view lay in its superview when it was designed.
  struct Autoresizing {
    UIViewAutoresizing mask;
    CGRect frame;
    CGSize superview;
  };

  void autoresize(CGSize superview);
  UIView& top();
  const UIView& top() const;
  bool isInWindowNow() const;
  void notifyWindow();
  // Null without a visible modal subview.
  const UIView* modalSubview() const;
  void modalSubviewChanged();
  void resignFocusWithin();
  void layoutPass();
  void layoutTree();
  void settleConstraints();
  static void apply(const NSLayoutConstraint& constraint);

  std::unique_ptr<CALayer> layer_;
  // Owned; the toolkit may delete it first, which clears this.
  Widget* widget_ = nullptr;
  CGRect frame_;
  CGPoint boundsOrigin_;
  UIView* superview_ = nullptr;
  std::vector<std::shared_ptr<UIView>> subviews_;
  std::vector<std::shared_ptr<NSLayoutConstraint>> constraints_;
  std::vector<std::shared_ptr<UIGestureRecognizer>> gestureRecognizers_;
  std::weak_ptr<UIViewController> viewController_;
  std::optional<Autoresizing> autoresizing_;
  std::shared_ptr<const void> redraw_;
  bool isHidden_ = false;
  bool isInWindow_ = false;
  bool isUserInteractionEnabled_ = true;
  bool isFocusable_ = false;
  bool isModal_ = false;
  bool isFocusedByKeyboard_ = false;
  bool needsLayout_ = true;
  bool translatesAutoresizingMask_ = true;
  UIViewContentMode contentMode_ = UIViewContentMode::scaleToFill;
  std::string accessibilityLabel_;
  std::string accessibilityHint_;
  std::optional<bool> isExpanded_;
  UIAccessibilityRole accessibilityRole_ = UIAccessibilityRole::none;
};

}  // namespace kestrova::platform
