#include "sdk/ui/HeadingLabel.h"

#include "platform/uikit/UIWindow.h"

namespace kestrova {

HeadingLabel::HeadingLabel() {
  setNumberOfLines(0);
  chooseSize();
}

void HeadingLabel::didMoveToWindow() {
  UILabel::didMoveToWindow();
  chooseSize();
}

void HeadingLabel::layoutSubviews() {
  UILabel::layoutSubviews();
  chooseSize();
}

void HeadingLabel::chooseSize() {
  constexpr double kWide = 26;
  constexpr double kSmall = 22;
  constexpr double kBetweenLines = 6;
  const auto window = this->window();
  const CGSize within = window ? window->bounds().size : CGSize{kNarrow, kNarrow};
  // A window that is wider than high shows two columns.
  const double narrow = within.width > within.height ? kNarrowColumns : kNarrow;
  const double size = within.width < narrow ? kSmall : kWide;
  if (size == size_) return;
  size_ = size;
  setFont(UIFont::make("Exo-SemiBold", size).value_or(UIFont::systemFont(size, 0.3)));
  setLineHeight(size + kBetweenLines);
}

}  // namespace kestrova
