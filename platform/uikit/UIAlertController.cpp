#include "platform/uikit/UIAlertController.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "platform/uikit/Canvas.h"
#include "platform/uikit/UIButton.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UIWindow.h"

namespace kestrova::platform {

namespace {

constexpr double kWidth = 300;
constexpr double kMargin = 24;
constexpr double kRadius = 14;
constexpr double kBetween = 8;
constexpr double kButtonHeight = 52;
constexpr double kInset = 8;
constexpr double kVeil = 0.4;
const UIColor kInk(16 / 255.0, 24 / 255.0, 40 / 255.0, 1);
const UIColor kBody(71 / 255.0, 84 / 255.0, 103 / 255.0, 1);
const UIColor kAction(0, 0.34, 1, 1);
const UIColor kLine = UIColor::white(0.87, 1);
const UIColor kPressed(0.95, 0.96, 0.97, 1);

UIFont font(const char* name, double size, double weight) {
  return UIFont::make(name, size).value_or(UIFont::systemFont(size, weight));
}

std::shared_ptr<UILabel> label(const std::string& text, const UIFont& font, const UIColor& color) {
  auto label = std::make_shared<UILabel>();
  label->setText(text);
  label->setFont(font);
  label->setTextColor(color);
  label->setNumberOfLines(0);
  label->setTextAlignment(NSTextAlignment::center);
  return label;
}

// One word over the whole width of the card.
class ActionButton : public UIButton {
 public:
  ActionButton() { layer().setCornerRadius(kInset); }
  // Clear of the card's edge and round corners.
  CGRect focusRect() const override { return CGRect{{}, bounds().size}.insetBy(kInset, kInset); }

 protected:
  void draw(Canvas& canvas) override {
    canvas.fill({{}, {bounds().size.width, 1}}, kLine);
    if (isHighlighted()) canvas.fill(focusRect().insetBy(-2, -2), kPressed, kInset);
    UIButton::draw(canvas);
  }
};

// The white card in the middle of a veil.
class AlertView : public UIView {
 public:
  AlertView(const std::string& title, const std::string& message)
      : card_(std::make_shared<UIView>()),
        title_(label(title, font("Exo-SemiBold", 17, UIFont::kSemiboldWeight), kInk)),
        message_(label(message, font("Exo-Regular", 15, UIFont::kRegularWeight), kBody)) {
    setBackgroundColor(UIColor::white(0, kVeil));
    card_->setBackgroundColor(UIColor::white());
    card_->layer().setCornerRadius(kRadius);
    card_->setClipsToBounds(true);
    card_->setAccessibilityRole(UIAccessibilityRole::alert);
    card_->setAccessibilityLabel(title);
    title_->setAccessibilityRole(UIAccessibilityRole::header);
    addSubview(card_);
    card_->addSubview(title_);
    card_->addSubview(message_);
  }

  void addButton(const std::shared_ptr<UIButton>& button) {
    buttons_.push_back(button);
    card_->addSubview(button);
  }

  void layoutSubviews() override {
    const double width = std::min(kWidth, bounds().size.width - 2 * kMargin);
    const double inner = width - 2 * kMargin;
    double y = kMargin;
    for (const auto& each : {title_, message_}) {
      const double height = std::ceil(each->sizeThatFits({inner, 1e6}).height);
      each->setFrame({{kMargin, y}, {inner, height}});
      y += height + (each == title_ ? kBetween : kMargin);
    }
    for (const auto& button : buttons_) {
      button->setFrame({{0, y}, {width, kButtonHeight}});
      y += kButtonHeight;
    }
    card_->setFrame({{std::round((bounds().size.width - width) / 2),
                      std::round((bounds().size.height - y) / 2)},
                     {width, y}});
  }

 private:
  std::shared_ptr<UIView> card_;
  std::shared_ptr<UILabel> title_;
  std::shared_ptr<UILabel> message_;
  std::vector<std::shared_ptr<UIButton>> buttons_;
};

}  // namespace

UIAlertController::UIAlertController(std::string title, std::string message, UIAlertControllerStyle)
    : title_(std::move(title)), message_(std::move(message)) {
  modalPresentationStyle = UIModalPresentationStyle::overCurrentContext;
  modalTransitionStyle = UIModalTransitionStyle::crossDissolve;
}

void UIAlertController::loadView() {
  const auto view = std::make_shared<AlertView>(title_, message_);
  for (const auto& action : actions_) {
    const auto button = std::make_shared<ActionButton>();
    button->setTitle(action->title());
    button->setTitleFont(font("Exo-SemiBold", 17, UIFont::kSemiboldWeight));
    button->setTitleColor(kAction);
    button->addAction(UIControlEvents::touchUpInside,
                      [weak = std::weak_ptr<UIAlertController>(shared(this)),
                       action](const std::shared_ptr<UIControl>&) {
                        if (const auto alive = weak.lock()) alive->choose(action);
                      });
    view->addButton(button);
  }
  setView(view);
}

bool UIAlertController::accessibilityPerformEscape() {
  const auto cancelling = std::find_if(actions_.begin(), actions_.end(), [](const auto& action) {
    return action->style() == UIAlertActionStyle::cancel;
  });
  if (cancelling != actions_.end()) {
    choose(*cancelling);
  } else if (actions_.size() == 1) {
    choose(actions_.front());
  }
  // An open alert keeps the key from the screens below.
  return true;
}

void UIAlertController::choose(const std::shared_ptr<UIAlertAction>& action) {
  if (std::exchange(isChosen_, true)) return;
  dismiss(true, [action] {
    if (action->handler_) action->handler_(*action);
  });
}

}  // namespace kestrova::platform
