#include "platform/liveness/DevelopmentView.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/uikit/Canvas.h"
#include "platform/uikit/UIButton.h"
#include "platform/uikit/UILabel.h"

namespace kestrova::platform {

namespace {

constexpr double kMargin = 24;
constexpr double kSide = 12;
constexpr double kWidest = 480;
constexpr double kButtonHeight = 52;
// Of the oval: its width to the frame's at the most, its height to its width, and its least height
// to the frame's where it stands above the feedback.
constexpr double kOvalWidth = 0.62;
constexpr double kOvalShape = 1.32;
constexpr double kLeastHeight = 0.3;
constexpr double kBetween = 12;
constexpr double kTop = 8;
const UIColor kShade = UIColor::white(0, 0.6);
constexpr double kFeedbackRadius = 12;
constexpr CGSize kFeedbackPadding{12, 6};

UIFont font(const char* name, double size, double weight) {
  return UIFont::make(name, size).value_or(UIFont::systemFont(size, weight));
}

std::shared_ptr<UILabel> centred(std::shared_ptr<UILabel> label, const UIFont& font) {
  label->setFont(font);
  label->setTextColor(UIColor::white());
  label->setTextAlignment(NSTextAlignment::center);
  label->setNumberOfLines(0);
  return label;
}

// A text over a picture, on a dark ground of its own so that it can be read on any.
class FeedbackLabel : public UILabel {
 public:
  explicit FeedbackLabel(std::shared_ptr<CAGradientLayer> ground) : ground_(std::move(ground)) {}

 protected:
  void draw(Canvas& canvas) override {
    canvas.fill({{}, bounds().size}, kShade, kFeedbackRadius);
    canvas.fillGradient({{}, bounds().size}, ground_->colors(), kFeedbackRadius);
    UILabel::draw(canvas);
  }

 private:
  std::shared_ptr<CAGradientLayer> ground_;
};

}  // namespace

DevelopmentView::DevelopmentView(ZoomCustomization customization)
    : customization_(std::move(customization)),
      oval_(std::make_shared<OvalView>(customization_.ovalCustomization)),
      notice_(centred(std::make_shared<UILabel>(), font("Exo-Medium", 13, UIFont::kRegularWeight))),
      feedback_(centred(
          std::make_shared<FeedbackLabel>(customization_.feedbackCustomization.backgroundColor),
          customization_.feedbackCustomization.textFont)),
      hint_(centred(std::make_shared<UILabel>(), font("Exo-Medium", 15, UIFont::kRegularWeight))),
      cancel_(std::make_shared<UIButton>()) {
  setBackgroundColor(customization_.frameCustomization.backgroundColor);
  notice_->setText("Development engine: no liveness check");
  notice_->setTextColor(UIColor::white(1, 0.8));
  feedback_->setTextColor(customization_.feedbackCustomization.textColor);
  hint_->setText("It is dark here. Please turn to the light.");
  hint_->setHidden(true);
  cancel_->setTitle("Cancel");
  cancel_->setTitleFont(font("Exo-SemiBold", 17, UIFont::kSemiboldWeight));
  cancel_->setTitleColor(UIColor::white());
  for (const std::shared_ptr<UIView>& each :
       std::initializer_list<std::shared_ptr<UIView>>{oval_, notice_, feedback_, hint_, cancel_}) {
    addSubview(each);
  }
}

void DevelopmentView::setFeedback(const std::string& text) {
  if (feedback_->text() == text) return;
  feedback_->setText(text);
  setNeedsLayout();
  postAccessibilityAnnouncement(*this, text);
}

void DevelopmentView::setDark(bool isDark) {
  if (isDark && hint_->isHidden()) postAccessibilityAnnouncement(*this, hint_->text());
  hint_->setHidden(!isDark);
}

CGRect DevelopmentView::frameOnScreen() const {
  const auto size = bounds().size;
  const double ratio = std::clamp(customization_.frameCustomization.sizeRatio, 0.0, 1.0);
  return CGRect{{}, size}.insetBy(size.width * (1 - ratio) / 2, size.height * (1 - ratio) / 2);
}

CGRect DevelopmentView::ovalInFrame() const {
  const auto frame = frameOnScreen();
  // Above the feedback, so that the text covers no face, where that leaves enough.
  const double above = feedbackTop() - kFeedbackPadding.height - kBetween - frame.minY();
  const bool isAbove =
      above - kTop >= kLeastHeight * frame.size.height && above <= frame.size.height;
  const double room = (isAbove ? above : frame.size.height) - kTop;
  const double width = std::round(std::min(kOvalWidth * frame.size.width, room / kOvalShape));
  const double height = std::round(width * kOvalShape);
  const double middle = isAbove ? frame.minY() + above - height / 2 : frame.midY();
  return {{std::round(frame.midX() - width / 2), std::round(middle - height / 2)}, {width, height}};
}

double DevelopmentView::feedbackTop() const {
  const double margin = customization_.feedbackCustomization.topMargin;
  return designedHeight_ > 0 ? margin * bounds().size.height / designedHeight_ : margin;
}

void DevelopmentView::layoutSubviews() {
  if (designedHeight_ <= 0) designedHeight_ = bounds().size.height;
  oval_->setFrame(ovalInFrame().insetBy(-oval_->margin(), -oval_->margin()));
  const auto size = bounds().size;
  const double width = std::min(kWidest, size.width - 2 * kSide);
  const auto place = [&](UILabel& label, double y, CGSize padding) {
    const auto text = label.sizeThatFits({width - 2 * padding.width, size.height});
    const CGSize all{text.width + 2 * padding.width, text.height + 2 * padding.height};
    label.setFrame({{(size.width - all.width) / 2, y - padding.height}, all});
  };
  place(*feedback_, feedbackTop(), kFeedbackPadding);
  place(*hint_, std::max(feedback_->frame().maxY(), ovalInFrame().maxY()) + kBetween, {});
  const double buttonWidth = cancel_->sizeThatFits({width, kButtonHeight}).width;
  cancel_->setFrame({{(size.width - buttonWidth) / 2, size.height - 16 - kButtonHeight},
                     {buttonWidth, kButtonHeight}});
  place(*notice_, cancel_->frame().minY() - kMargin, {});
  if (notice_->frame().minY() >= hint_->frame().maxY()) return;
  // A low window has free space only beside the button.
  const auto text = notice_->sizeThatFits({cancel_->frame().minX() - 2 * kSide, size.height});
  notice_->setFrame({{kSide, cancel_->frame().midY() - text.height / 2}, text});
}

void DevelopmentView::draw(Canvas& canvas) {
  canvas.fill(frameOnScreen(), UIColor::black(), layer().cornerRadius());
}

}  // namespace kestrova::platform
