#include <array>
#include <utility>

#include "examples/gallery/Look.h"
#include "examples/gallery/PageScreen.h"
#include "examples/gallery/Pages.h"
#include "platform/uikit/AnimationClock.h"
#include "platform/uikit/CAGradientLayer.h"
#include "platform/uikit/CAShapeLayer.h"
#include "platform/uikit/UIBezierPath.h"
#include "sdk/ui/ProgressStepsView.h"
#include "sdk/ui/SpinnerView.h"

namespace kestrova::gallery {

namespace {

// Spinners that set out one after the other, so that they show their motion at one moment.
class SpinnerRow : public UIView {
 public:
  static constexpr std::size_t kCount = 6;
  static constexpr double kApart = 0.5;

  explicit SpinnerRow(double size) : size_(size) {}

  void didMoveToWindow() override {
    if (!window() || clock_) return;
    auto& clock = AnimationClock::shared();
    clock_ = clock.run(clock.now(), [this](double now) -> std::optional<double> {
      const auto spinner = std::make_shared<SpinnerView>();
      spinner->setAccessibilityLabel("Spinner " + std::to_string(subviews().size() + 1));
      addSubview(spinner);
      setNeedsLayout();
      layoutIfNeeded();
      return subviews().size() < kCount ? std::optional(now + kApart) : std::nullopt;
    });
  }

  void layoutSubviews() override {
    const CGSize whole = bounds().size;
    const double apart = (whole.width - size_) / double(kCount - 1);
    double x = 0;
    for (const auto& spinner : subviews()) {
      spinner->setFrame({{x, (whole.height - size_) / 2}, {size_, size_}});
      x += apart;
    }
  }

 private:
  double size_;
  std::shared_ptr<const void> clock_;
};

// A view with a path in its bounds.
class Shape : public UIView {
 public:
  using Outline = std::function<UIBezierPath(const CGRect& bounds)>;

  explicit Shape(Outline outline)
      : UIView(std::make_unique<CAShapeLayer>()), outline_(std::move(outline)) {
    shape().setFillColor(std::nullopt);
    shape().setStrokeColor(UIColorExtensions::kestrovaBlue());
    shape().setLineWidth(4);
  }

  CAShapeLayer& shape() { return static_cast<CAShapeLayer&>(layer()); }

  void layoutSubviews() override {
    const CGSize size = bounds().size;
    const double side = std::min(size.width, size.height);
    const CGRect square{{(size.width - side) / 2, (size.height - side) / 2}, {side, side}};
    shape().setPath(outline_(square.insetBy(2, 2)).cgPath());
  }

 private:
  Outline outline_;
};

class Gradient : public UIView {
 public:
  explicit Gradient(const std::vector<UIColor>& colors)
      : UIView(std::make_unique<CAGradientLayer>()) {
    static_cast<CAGradientLayer&>(layer()).setColors(colors);
    layer().setCornerRadius(8);
  }
};

std::shared_ptr<Shape> ring(double end) {
  auto shape = std::make_shared<Shape>(UIBezierPath::ovalIn);
  shape->shape().setStrokeEnd(end);
  return shape;
}

UIBezierPath checkMark(const CGRect& bounds) {
  UIBezierPath path;
  const auto at = [&bounds](double x, double y) {
    return CGPoint{bounds.minX() + x * bounds.size.width, bounds.minY() + y * bounds.size.height};
  };
  path.move(at(0.14, 0.54));
  path.addLine(at(0.4, 0.8));
  path.addLine(at(0.88, 0.24));
  return path;
}

std::shared_ptr<UIView> box(double radius, double border) {
  auto view = std::make_shared<UIView>();
  view->setBackgroundColor(border > 0 ? UIColor::white() : kTint);
  view->layer().setCornerRadius(radius);
  view->layer().setBorderWidth(border);
  view->layer().setBorderColor(border > 2 ? UIColorExtensions::kestrovaBlue() : kLine);
  return view;
}

}  // namespace

std::shared_ptr<UIViewController> spinnersPage() {
  auto page = std::make_shared<PageScreen>("Spinners");
  page->add("40 points, each half a second after the one before", std::make_shared<SpinnerRow>(40),
            56);
  page->add("24 points", std::make_shared<SpinnerRow>(24), 40);
  PageScreen::Views steps;
  for (const std::size_t step : {0U, 2U, 6U}) {
    const auto view = std::make_shared<ProgressStepsView>();
    view->setCurrentStep(step);
    page->add(step == 0 ? "Steps of a verification" : "", view);
  }
  return page;
}

std::shared_ptr<UIViewController> shapesPage() {
  auto page = std::make_shared<PageScreen>("Shapes and gradients");
  const auto filled = std::make_shared<Shape>(UIBezierPath::ovalIn);
  filled->shape().setFillColor(kTint);
  filled->shape().setLineWidth(1);
  const auto check = std::make_shared<Shape>(checkMark);
  page->addRow("Strokes of a quarter, half, three quarters; filled; a line",
               {ring(0.25), ring(0.5), ring(0.75), filled, check}, 56);
  page->addRow("Corner radius 0, 8, 16, more than half",
               {box(0, 0), box(8, 0), box(16, 0), box(99, 0)}, 56);
  page->addRow("Borders of half a point, 1, 1.5 and 3",
               {box(8, 0.5), box(8, 1), box(8, 1.5), box(8, 3)}, 56);
  page->addRow("Gradients of two and three colours",
               {std::make_shared<Gradient>(std::vector{kTint, UIColorExtensions::kestrovaBlue()}),
                std::make_shared<Gradient>(
                    std::vector{UIColor::white(), kTint, UIColorExtensions::kestrovaBlue()})},
               56);
  return page;
}

}  // namespace kestrova::gallery
