#include "platform/uikit/UIButton.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QtWidgets/QWidget>

#include "platform/graphics/NSAttributedString.h"
#include "platform/graphics/NSLayoutManager.h"
#include "platform/uikit/AccessibleView.h"
#include "platform/uikit/Canvas.h"
#include "platform/uikit/TextLine.h"
#include "platform/uikit/UILabel.h"

namespace kestrova::platform {

namespace {

// Between the image and the title, points.
constexpr double kGap = 8;
constexpr double kPressed = 0.08;

UIColor darker(const UIColor& color) {
  const double left = 1 - kPressed;
  const UIColor shown = color.sRGB();
  return {shown.redComponent() * left, shown.greenComponent() * left, shown.blueComponent() * left,
          shown.alphaComponent()};
}

// The text of the first label in a view.
std::string labelIn(const UIView& view) {
  for (const auto& subview : view.subviews()) {
    if (subview->isHidden()) continue;
    const auto* const label = dynamic_cast<const UILabel*>(subview.get());
    auto text = label ? label->accessibilityLabel() : labelIn(*subview);
    if (!text.empty()) return text;
  }
  return {};
}

}  // namespace

UIButton::UIButton() : titleFont_(UIFont::systemFont(kFontSize, UIFont::kSemiboldWeight)) {
  setFocusable(true);
  widget()->setCursor(Qt::PointingHandCursor);
}

UIButton::~UIButton() = default;

void UIButton::contentChanged() {
  drawn_.reset();
  invalidateIntrinsicContentSize();
  setNeedsDisplay();
}

void UIButton::setTitle(std::string title) {
  if (title_ == title) return;
  title_ = std::move(title);
  contentChanged();
  AccessibleView::nameChanged(*this);
}

const UIColor& UIButton::titleColor(UIControlState state) const {
  return state == UIControlState::disabled && disabledTitleColor_ ? *disabledTitleColor_
                                                                  : titleColor_;
}

void UIButton::setTitleColor(const UIColor& color, UIControlState state) {
  if (state == UIControlState::disabled) {
    disabledTitleColor_ = color;
  } else {
    titleColor_ = color;
  }
  setNeedsDisplay();
}

void UIButton::setTitleFont(const std::optional<UIFont>& font) {
  titleFont_ = font.value_or(UIFont::systemFont(kFontSize, UIFont::kSemiboldWeight));
  contentChanged();
}

void UIButton::setImage(const std::optional<UIImage>& image) {
  image_ = image;
  contentChanged();
}

void UIButton::setContentInset(double inset) {
  contentInset_ = inset;
  contentChanged();
}

void UIButton::setEnabled(bool enabled) {
  UIControl::setEnabled(enabled);
  if (widget()) widget()->setCursor(enabled ? Qt::PointingHandCursor : Qt::ArrowCursor);
  AccessibleView::stateChanged(*this);
}

void UIButton::lay(NSLayoutManager& manager, double width) const {
  const NSAttributedString text(title_, {titleFont_, drawnColor_, NSTextAlignment::left});
  TextLine::lay(text, width, manager);
}

CGSize UIButton::sizeThatFits(CGSize) const {
  CGSize content;
  if (!title_.empty()) {
    NSLayoutManager manager;
    lay(manager, TextLine::kUnbounded);
    content = manager.usedRect().size;
  }
  if (image_) {
    const CGSize size = image_->size();
    content.width += size.width + (title_.empty() ? 0 : kGap);
    content.height = std::max(content.height, size.height);
  }
  return {std::max(kLeastTarget, std::ceil(content.width) + 2 * contentInset_),
          std::max(kLeastTarget, std::ceil(content.height))};
}

void UIButton::draw(Canvas& canvas) {
  const CGSize size = bounds().size;
  const auto ground = layer().backgroundColor();
  const bool hasGround = ground && ground->alphaComponent() > 0;
  if (isHighlighted() && hasGround) {
    canvas.fill({{}, size}, UIColor::white(0, kPressed), layer().cornerRadius());
  }
  const double imageWidth = image_ ? image_->size().width : 0;
  const double gap = image_ && !title_.empty() ? kGap : 0;
  CGSize text;
  if (!title_.empty()) {
    const double width = std::max(0.0, size.width - 2 * contentInset_ - imageWidth - gap);
    const UIColor color =
        titleColor(isEnabled() ? UIControlState::normal : UIControlState::disabled);
    const UIColor shown = isHighlighted() && !hasGround ? darker(color) : color;
    if (!drawn_ || width != drawnWidth_ || shown != drawnColor_) {
      drawnWidth_ = width;
      drawnColor_ = shown;
      drawn_ = std::make_unique<NSLayoutManager>();
      lay(*drawn_, width);
    }
    text = drawn_->usedRect().size;
  }
  const double x = std::round((size.width - imageWidth - gap - text.width) / 2);
  if (image_) {
    const CGSize picture = image_->size();
    canvas.draw(*image_, {{x, std::round((size.height - picture.height) / 2)}, picture});
  }
  if (!title_.empty()) {
    canvas.draw(*drawn_, {x + imageWidth + gap, std::round((size.height - text.height) / 2)});
  }
}

bool UIButton::isOtherControlAt(CGPoint point) const {
  const auto parent = superview();
  if (!parent) return false;
  const CGPoint there = convert(point, parent.get());
  const auto& siblings = parent->subviews();
  return std::any_of(siblings.begin(), siblings.end(), [&](const auto& sibling) {
    return sibling.get() != this && !sibling->isHidden() && sibling->isUserInteractionEnabled() &&
           sibling->wantsTouches() && sibling->frame().contains(there);
  });
}

std::shared_ptr<UIView> UIButton::hitTest(CGPoint point) {
  if (auto hit = UIView::hitTest(point)) return hit;
  if (isHidden() || !isUserInteractionEnabled()) return nullptr;
  const CGRect shape = bounds();
  const CGRect target = shape.insetBy(std::min(0.0, (shape.size.width - kLeastTarget) / 2),
                                      std::min(0.0, (shape.size.height - kLeastTarget) / 2));
  return target.contains(point) && !isOtherControlAt(point) ? shared(this) : nullptr;
}

std::string UIButton::accessibilityLabel() const {
  std::string set = UIView::accessibilityLabel();
  if (!set.empty()) return set;
  return title_.empty() ? labelIn(*this) : title_;
}

UIAccessibilityRole UIButton::accessibilityRole() const {
  const auto set = UIView::accessibilityRole();
  return set == UIAccessibilityRole::none ? UIAccessibilityRole::button : set;
}

}  // namespace kestrova::platform
