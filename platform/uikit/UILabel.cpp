#include "platform/uikit/UILabel.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/graphics/NSLayoutManager.h"
#include "platform/graphics/NSTextStorage.h"
#include "platform/uikit/AccessibleView.h"
#include "platform/uikit/Canvas.h"

namespace kestrova::platform {

namespace {

// More than any screen has.
constexpr double kUnbounded = 1e6;
// A layout asks for few widths; one that moves asks for ever new ones.
constexpr std::size_t kMostSizes = 16;

}  // namespace

UILabel::UILabel() : font_(UIFont::systemFont(kFontSize)) {
  setUserInteractionEnabled(false);
}

UILabel::~UILabel() = default;

void UILabel::setText(std::string text) {
  if (!attributedText_ && text_ == text) return;
  attributedText_.reset();
  text_ = std::move(text);
  textChanged();
  AccessibleView::nameChanged(*this);
}

void UILabel::setAttributedText(std::optional<NSAttributedString> text) {
  if (attributedText_ == text && (text || text_.empty())) return;
  text_ = text ? text->string() : std::string();
  attributedText_ = std::move(text);
  textChanged();
  AccessibleView::nameChanged(*this);
}

void UILabel::setFont(const std::optional<UIFont>& font) {
  change(font_, font.value_or(UIFont::systemFont(kFontSize)));
}

void UILabel::textChanged() {
  drawn_.reset();
  sizes_.clear();
  invalidateIntrinsicContentSize();
  setNeedsDisplay();
}

NSTextContainer UILabel::textContainer() const {
  NSTextContainer container;
  container.size = bounds().size;
  container.lineFragmentPadding = 0;
  container.maximumNumberOfLines = numberOfLines_;
  container.lineBreakMode = lineBreakMode_;
  container.minimumLineHeight = lineHeight_;
  return container;
}

void UILabel::lay(NSLayoutManager& manager) const {
  NSTextStorage(
      attributedText_.value_or(NSAttributedString(text_, {font_, textColor_, textAlignment_})))
      .addLayoutManager(manager);
}

CGSize UILabel::sizeThatFits(CGSize size) const {
  const double width = std::max(0.0, size.width);
  if (const auto known = sizes_.find(width); known != sizes_.end()) return known->second;
  if (sizes_.size() == kMostSizes) sizes_.clear();
  NSLayoutManager manager;
  lay(manager);
  NSTextContainer container = textContainer();
  container.size = {width, kUnbounded};
  manager.addTextContainer(container);
  const CGSize used = manager.usedRect().size;
  const CGSize fitting{std::min(width, std::ceil(used.width)), std::ceil(used.height)};
  sizes_.emplace(width, fitting);
  return fitting;
}

void UILabel::draw(Canvas& canvas) {
  if (text_.empty()) return;
  const NSTextContainer container = textContainer();
  if (!drawn_) {
    drawn_ = std::make_unique<NSLayoutManager>();
    lay(*drawn_);
    drawn_->addTextContainer(container);
  } else if (drawnIn_ != container) {
    drawn_->addTextContainer(container);
  }
  drawnIn_ = container;
  double y = 0;
  if (!attributedText_) {
    y = std::max(0.0, std::round((container.size.height - drawn_->usedRect().size.height) / 2));
  }
  canvas.draw(*drawn_, {0, y});
}

std::string UILabel::accessibilityLabel() const {
  std::string set = UIView::accessibilityLabel();
  return set.empty() ? text_ : set;
}

UIAccessibilityRole UILabel::accessibilityRole() const {
  const auto set = UIView::accessibilityRole();
  return set == UIAccessibilityRole::none ? UIAccessibilityRole::staticText : set;
}

}  // namespace kestrova::platform
