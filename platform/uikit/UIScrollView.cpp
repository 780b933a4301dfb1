#include "platform/uikit/UIScrollView.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <utility>

#include <QtWidgets/QLayout>
#include <QtWidgets/QWidget>

#include "platform/foundation/NotificationCenter.h"
#include "platform/uikit/AnimationClock.h"
#include "platform/uikit/ScrollIndicator.h"
#include "platform/uikit/UIKeyboard.h"
#include "platform/uikit/UITextField.h"

namespace kestrova::platform {

namespace {

// Points that a finger moves before it drags.
constexpr double kSlop = 10;
// A glide covers the distance that its first speed covers in this time, seconds.
constexpr double kGlide = 0.325;
// Points a second; slower is no glide.
constexpr double kSlowest = 40;
// The speed is that of the last moment before the release, milliseconds.
constexpr long long kMoment = 100;
constexpr long long kRest = 60;
constexpr double kAnimation = 0.3;
// A rest of fractions of a point is nothing to scroll.
constexpr double kNoWay = 0.5;
constexpr double kKeyStep = 44;

// One direction of a glide: it starts at the finger's speed and ends softly, also where the content
// ends first.
struct Glide {
  double from;
  double to;
  double velocity;

  double at(double seconds) const {
    if (std::abs(to - from) < 0.5) return to;
    return to - (to - from) * std::exp(-seconds * velocity / (to - from));
  }
};

}  // namespace

struct UIScrollView::Drag {
  struct Sample {
    long long time;
    CGPoint point;
  };

  CGPoint start;
  bool isMoving = false;
  std::deque<Sample> samples = {};

  void add(CGPoint point, long long time) {
    samples.push_back({time, point});
    while (samples.front().time < time - kMoment) samples.pop_front();
  }

  // Points a second, of a release at `time`.
  CGPoint velocity(long long time) const {
    if (samples.size() < 2) return {};
    const Sample& first = samples.front();
    const Sample& last = samples.back();
    const double seconds = double(last.time - first.time) / 1000;
    if (seconds <= 0 || time < last.time || time > last.time + kRest) return {};
    const auto speed = [seconds](double distance) {
      return std::abs(distance / seconds) < kSlowest ? 0 : distance / seconds;
    };
    return {speed(last.point.x - first.point.x), speed(last.point.y - first.point.y)};
  }
};

UIScrollView::UIScrollView() : indicator_(std::make_unique<ScrollIndicator>(*widget())) {}

UIScrollView::~UIScrollView() = default;

void UIScrollView::widgetLost() {
  stop();
  UIView::widgetLost();
}

void UIScrollView::setScrollEnabled(bool enabled) {
  isScrollEnabled_ = enabled;
  if (!enabled && isGliding_) stop();
}

CGSize UIScrollView::range() const {
  constexpr double kFar = 1e9;
  const CGPoint first = within({-kFar, -kFar});
  const CGPoint last = within({kFar, kFar});
  return {last.x - first.x, last.y - first.y};
}

bool UIScrollView::canScroll() const {
  const CGSize way = range();
  return isScrollEnabled_ && (way.width > kNoWay || way.height > kNoWay);
}

void UIScrollView::setContentSize(CGSize size) {
  if (contentSize_ == size) return;
  contentSize_ = size;
  keepWithinContent();
}

void UIScrollView::setContentInset(const UIEdgeInsets& inset) {
  if (contentInset_ == inset) return;
  contentInset_ = inset;
  keepWithinContent();
  showEditedField();
}

UIView* UIScrollView::page() const {
  const auto* const only = subviews().size() == 1 ? subviews()[0].get() : nullptr;
  return only && only->widget() && only->widget()->layout() ? subviews()[0].get() : nullptr;
}

UIEdgeInsets UIScrollView::effectiveInset() const {
  UIEdgeInsets inset = contentInset_;
  if (covered_ > 0) inset.bottom = std::max(inset.bottom, covered_);
  return inset;
}

double UIScrollView::maxConstraintHeight() const {
  const double around = UIView::maxConstraintHeight();
  return page() ? std::min(around, visibleHeight()) : around;
}

void UIScrollView::showEditedField() {
  const auto field = UITextField::edited();
  if (field && field->isDescendant(*this)) {
    scrollRectToVisible({field->convert({}, this), field->bounds().size}, true);
  }
}

void UIScrollView::awakeFromNib() {
  UIView::awakeFromNib();
  if (!page()) return;
  for (const auto name : {UIKeyboardWillShowNotification, UIKeyboardWillHideNotification}) {
    NotificationCenter::defaultCenter().addObserver<UIScrollView>(
        shared(this), [](UIScrollView& self, const Notification&) { self.keyboardMoved(); }, name);
  }
}

void UIScrollView::keyboardMoved() {
  setNeedsLayout();
  if (!window()) return;
  layoutIfNeeded();
  showEditedField();
}

void UIScrollView::setScrollIndicatorInsets(const UIEdgeInsets& inset) {
  indicatorInsets_ = inset;
}

CGPoint UIScrollView::within(CGPoint offset) const {
  const CGSize size = bounds().size;
  const UIEdgeInsets inset = effectiveInset();
  const auto limit = [](double value, double before, double length, double after, double shown) {
    return std::max(-before, std::min(value, length + after - shown));
  };
  return {limit(offset.x, inset.left, contentSize_.width, inset.right, size.width),
          limit(offset.y, inset.top, contentSize_.height, inset.bottom, size.height)};
}

void UIScrollView::place(CGPoint offset) {
  offset = within(offset);
  if (offset == contentOffset()) return;
  setBoundsOrigin(offset);
  didScroll();
}

bool UIScrollView::move(CGPoint offset) {
  const auto self = shared(this);
  const CGPoint before = contentOffset();
  place(offset);
  if (contentOffset() == before) return false;
  flashScrollIndicators();
  return true;
}

bool UIScrollView::moveByHand(CGPoint offset) {
  hasBeenScrolled_ = true;
  isHinting_ = false;
  return move(offset);
}

void UIScrollView::flashScrollIndicators() {
  showBar(isHinting_);
}

void UIScrollView::showBar(bool stays) {
  const CGSize size = bounds().size;
  UIEdgeInsets track = indicatorInsets_;
  track.bottom = std::max(track.bottom, covered_);
  const UIEdgeInsets inset = effectiveInset();
  const double whole = contentSize_.height + inset.top + inset.bottom;
  indicator_->show(
      {{std::max(0.0, track.left), std::max(0.0, track.top)},
       {size.width - track.left - track.right, size.height - track.top - track.bottom}},
      (contentOffset().y + inset.top) / whole, size.height / whole, stays);
}

void UIScrollView::stop() {
  motion_.reset();
  isGliding_ = false;
}

void UIScrollView::setContentOffset(CGPoint offset, bool animated) {
  stop();
  if (!animated) return place(offset);
  const CGPoint from = contentOffset();
  const CGPoint to = within(offset);
  if (from == to) return;
  motion_ = AnimationClock::shared().ease(kAnimation, [this, from, to](double share) {
    move({from.x + (to.x - from.x) * share, from.y + (to.y - from.y) * share});
  });
}

void UIScrollView::scrollRectToVisible(const CGRect& rect, bool animated) {
  const CGRect shown = bounds();
  // Where the rectangle is larger than what can be shown, its beginning is.
  const auto nearest = [](double at, double low, double high, double start, double end) {
    if (low < at + start) return low - start;
    return high > at + end ? std::min(high - end, low - start) : at;
  };
  const auto room = [](double inset) { return std::max(0.0, inset); };
  const UIEdgeInsets inset = effectiveInset();
  setContentOffset({nearest(shown.minX(), rect.minX(), rect.maxX(), room(inset.left),
                            shown.size.width - room(inset.right)),
                    nearest(shown.minY(), rect.minY(), rect.maxY(), room(inset.top),
                            shown.size.height - room(inset.bottom))},
                   animated);
}

void UIScrollView::layoutSubviews() {
  if (UIView* const content = page()) {
    covered_ = UIKeyboard::shared().coveredHeight(*this);
    const double visible = visibleHeight();
    if (std::exchange(shownHeight_, visible) != visible) reapplyConstraints();
    const QLayout* const layout = content->widget()->layout();
    const double width = bounds().size.width;
    // The layout, and so the height it needs, may depend on the width.
    content->setFrame({{}, {width, std::max(contentSize_.height, visible)}});
    content->layoutSubviews();
    const int points = int(std::lround(width));
    const int needed = layout->hasHeightForWidth() ? layout->totalMinimumHeightForWidth(points)
                                                   : layout->totalMinimumSize().height();
    const CGRect frame{{}, {width, std::max(double(needed), visible)}};
    content->setFrame(frame);
    contentSize_ = frame.size;
  }
  keepWithinContent();
  if (page()) hintThatItScrolls();
}

void UIScrollView::hintThatItScrolls() {
  // No hint when only the margin below the content is out of sight.
  constexpr double kMargin = 16;
  isHinting_ = canScroll() && range().height > kMargin && !hasBeenScrolled_;
  if (isHinting_) showBar(true);
  if (!canScroll()) indicator_->hide();
}

bool UIScrollView::press(CGPoint point, long long) {
  const bool stopped = isGliding_;
  stop();
  drag_ = std::make_unique<Drag>(Drag{point});
  return stopped;
}

void UIScrollView::drag(CGPoint point, long long milliseconds) {
  if (!drag_) return;
  if (!drag_->isMoving) {
    const double x = std::abs(point.x - drag_->start.x);
    const double y = std::abs(point.y - drag_->start.y);
    if (std::max(x, y) <= kSlop) return;
    // Across the content it is no drag.
    const CGSize way = range();
    if ((y >= x ? way.height : way.width) <= kNoWay) return drag_.reset();
    drag_->isMoving = true;
    return drag_->add(point, milliseconds);
  }
  const CGPoint before = drag_->samples.back().point;
  drag_->add(point, milliseconds);
  const CGPoint at = contentOffset();
  moveByHand({at.x - (point.x - before.x), at.y - (point.y - before.y)});
}

void UIScrollView::release(CGPoint, long long milliseconds) {
  const auto drag = std::move(drag_);
  if (!drag || !drag->isMoving) return;
  const CGPoint velocity = drag->velocity(milliseconds);
  glide({-velocity.x, -velocity.y});
}

bool UIScrollView::isDragging() const {
  return drag_ && drag_->isMoving;
}

void UIScrollView::glide(CGPoint velocity) {
  const CGPoint from = contentOffset();
  const CGPoint to = within({from.x + velocity.x * kGlide, from.y + velocity.y * kGlide});
  if (to == from) return;
  const Glide x{from.x, to.x, velocity.x};
  const Glide y{from.y, to.y, velocity.y};
  auto& clock = AnimationClock::shared();
  isGliding_ = true;
  motion_ = clock.run(clock.now() + AnimationClock::kFrame,
                      [this, x, y, start = clock.now()](double now) -> std::optional<double> {
                        const auto self = shared(this);
                        const CGPoint next{x.at(now - start), y.at(now - start)};
                        if (std::abs(next.x - x.to) >= 0.5 || std::abs(next.y - y.to) >= 0.5) {
                          move(next);
                          return now + AnimationClock::kFrame;
                        }
                        isGliding_ = false;
                        move({x.to, y.to});
                        return std::nullopt;
                      });
}

bool UIScrollView::wheelMoved(CGPoint delta) {
  if (!canScroll()) return false;
  stop();
  const CGPoint at = contentOffset();
  return moveByHand({at.x - delta.x, at.y - delta.y});
}

bool UIScrollView::keyPressed(const std::string& key) {
  if (!canScroll()) return UIView::keyPressed(key);
  const double page = std::max(kKeyStep, bounds().size.height - kKeyStep);
  double by = 0;
  if (key == "Up" || key == "Down") by = kKeyStep;
  if (key == "PageUp" || key == "PageDown") by = page;
  if (key == "Home" || key == "End") by = contentSize_.height + bounds().size.height;
  if (by == 0) return UIView::keyPressed(key);
  if (key == "Up" || key == "PageUp" || key == "Home") by = -by;
  stop();
  const CGPoint at = contentOffset();
  return moveByHand({at.x, at.y + by});
}

}  // namespace kestrova::platform
