#pragma once

#include <memory>

#include "platform/uikit/UIView.h"

namespace kestrova::platform {

struct UIEdgeInsets {
  double top = 0;
  double left = 0;
  double bottom = 0;
  double right = 0;

  friend bool operator==(const UIEdgeInsets&, const UIEdgeInsets&) = default;
};

// Shows a part of a larger content, which fingers, the mouse, a wheel and code can move. Its first
// subview is the content where it comes from a storyboard: it gets the scroll view's width and the
// height that its layout needs. Main thread.
class UIScrollView : public UIView {
 public:
  UIScrollView();
  ~UIScrollView() override;

  // Off: neither fingers nor a wheel move the content; code still does.
  bool isScrollEnabled() const { return isScrollEnabled_; }
  void setScrollEnabled(bool enabled);
  CGSize contentSize() const { return contentSize_; }
  void setContentSize(CGSize size);
  // The point of the content in the upper left corner, kept within the content and its insets.
  CGPoint contentOffset() const { return bounds().origin; }
  void setContentOffset(CGPoint offset, bool animated = false);
  // Room around the content; negative ones take from it. Points.
  const UIEdgeInsets& contentInset() const { return contentInset_; }
  void setContentInset(const UIEdgeInsets& inset);
  // Room around the marks that show how far the content is scrolled.
  const UIEdgeInsets& scrollIndicatorInsets() const { return indicatorInsets_; }
  void setScrollIndicatorInsets(const UIEdgeInsets& inset);
  // Scrolls no further than needed to show `rect`, in the content's coordinates.
  void scrollRectToVisible(const CGRect& rect, bool animated);

  void layoutSubviews() override;

  // A touch that may become a drag, in points of the window; by the touch dispatcher.
  void press(CGPoint point, long long milliseconds);
  void drag(CGPoint point, long long milliseconds);
  void release(CGPoint point, long long milliseconds);
  bool isDragging() const;

 protected:
  bool wheelMoved(CGPoint delta) override;
  // After the content has moved.
  virtual void didScroll() {}

 private:
  class Scroller;

  CGPoint within(CGPoint offset) const;

  CGSize contentSize_;
  UIEdgeInsets contentInset_;
  UIEdgeInsets indicatorInsets_;
  bool isScrollEnabled_ = true;
  std::unique_ptr<Scroller> scroller_;
  std::shared_ptr<const void> motion_;
};

}  // namespace kestrova::platform
