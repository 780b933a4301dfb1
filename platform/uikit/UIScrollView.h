#pragma once

#include <memory>

#include "platform/uikit/UIView.h"

namespace kestrova::platform {

class ScrollIndicator;

struct UIEdgeInsets {
  double top = 0;
  double left = 0;
  double bottom = 0;
  double right = 0;

  friend bool operator==(const UIEdgeInsets&, const UIEdgeInsets&) = default;
};

// Shows a part of a larger content, which fingers, the mouse, a wheel, keys and code can move. An
// only subview that
// a layout of the storyboard fills is the page: it gets the scroll view's width and the height that
// its layout needs, at least that of the part which no on-screen keyboard covers. The keyboard
// makes the page scroll as far as its covered part needs, and scrolls an edited field into sight.
// Main thread.
class UIScrollView : public UIView {
 public:
  UIScrollView();
  UIScrollView(const UIScrollView&) = delete;
  UIScrollView& operator=(const UIScrollView&) = delete;
  ~UIScrollView() override;

  // Off: only code moves the content.
  bool isScrollEnabled() const { return isScrollEnabled_; }
  void setScrollEnabled(bool enabled);
  // Whether people can move the content now: it is enabled and there is more than fits.
  bool canScroll() const;
  CGSize contentSize() const { return contentSize_; }
  void setContentSize(CGSize size);
  // The point of the content in the upper left corner, kept within the content and its insets.
  CGPoint contentOffset() const { return bounds().origin; }
  void setContentOffset(CGPoint offset, bool animated = false);
  // Room around the content; negative ones take from it. Points. A text field inside that is edited
  // scrolls into sight, as an on-screen keyboard would cover it.
  const UIEdgeInsets& contentInset() const { return contentInset_; }
  void setContentInset(const UIEdgeInsets& inset);
  // Room around the bar that shows how far the content is scrolled.
  const UIEdgeInsets& scrollIndicatorInsets() const { return indicatorInsets_; }
  void setScrollIndicatorInsets(const UIEdgeInsets& inset);
  // Scrolls no further than needed to show `rect`, in the content's coordinates, within the insets.
  void scrollRectToVisible(const CGRect& rect, bool animated);

  // Points of the height that no on-screen keyboard covers.
  double visibleHeight() const { return bounds().size.height - covered_; }

  // Shows the bar for a moment, as each motion by people does, where there is more than fits.
  void flashScrollIndicators();

  void awakeFromNib() override;
  void layoutSubviews() override;
  bool keyPressed(const std::string& key) override;
  CGRect focusRect() const override { return bounds(); }

  // A touch that may become a drag, in points of the window; by the touch dispatcher. True where
  // the touch has stopped a motion and therefore means nothing else.
  bool press(CGPoint point, long long milliseconds);
  void drag(CGPoint point, long long milliseconds);
  // A drag goes on by itself at the speed it had.
  void release(CGPoint point, long long milliseconds);
  bool isDragging() const;

 protected:
  bool wheelMoved(CGPoint delta) override;
  void widgetLost() override;
  double maxConstraintHeight() const override;
  // After the content or the view's size has changed.
  void keepWithinContent() { place(contentOffset()); }
  // Shows the bar until the user scrolls, if the content does not fit.
  void hintThatItScrolls();
  // After the content has moved.
  virtual void didScroll() {}

 private:
  struct Drag;

  // Null if the content is not a page.
  UIView* page() const;
  // The content inset, with the part of a page that the keyboard covers.
  UIEdgeInsets effectiveInset() const;
  void showEditedField();
  void keyboardMoved();
  void showBar(bool stays);
  CGPoint within(CGPoint offset) const;
  // How far the content can move.
  CGSize range() const;
  void place(CGPoint offset);
  // By people or an animation, which the bar shows; whether the content has moved.
  bool move(CGPoint offset);
  bool moveByHand(CGPoint offset);
  void glide(CGPoint velocity);
  void stop();

  CGSize contentSize_;
  UIEdgeInsets contentInset_;
  UIEdgeInsets indicatorInsets_;
  bool isScrollEnabled_ = true;
  bool isGliding_ = false;
  // True while the bar stays visible because the user has not scrolled yet.
  bool isHinting_ = false;
  bool hasBeenScrolled_ = false;
  // Height of the page's part that the keyboard covers, points.
  double covered_ = 0;
  double shownHeight_ = 0;
  std::unique_ptr<Drag> drag_;
  std::unique_ptr<ScrollIndicator> indicator_;
  std::shared_ptr<const void> motion_;
};

}  // namespace kestrova::platform
