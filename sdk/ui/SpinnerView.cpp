#include "sdk/ui/SpinnerView.h"

#include <limits>
#include <numbers>

#include "sdk/ui/Extensions.h"

namespace kestrova {

namespace {

constexpr double kLineWidth = 3;

}  // namespace

SpinnerView::SpinnerView(const CGRect& frame) : UIView(std::make_unique<CAShapeLayer>()) {
  setFrame(frame);
  setAccessibilityRole(UIAccessibilityRole::busy);
  setAccessibilityLabel("Please wait");
}

void SpinnerView::layoutSubviews() {
  UIView::layoutSubviews();
  layer().setFillColor(std::nullopt);
  layer().setStrokeColor(UIColorExtensions::kestrovaBlue());
  layer().setLineWidth(kLineWidth);
  setPath();
}

void SpinnerView::didMoveToWindow() {
  animate();
}

void SpinnerView::setPath() {
  const double inset = layer().lineWidth() / 2;
  layer().setPath(UIBezierPath::ovalIn(bounds().insetBy(inset, inset)).cgPath());
}

void SpinnerView::animate() {
  double total = 0;
  for (const auto& pose : poses) total += pose.secondsSincePriorPose;
  std::vector<double> times;
  std::vector<double> rotations;
  std::vector<double> ends;
  double time = 0;
  for (const auto& pose : poses) {
    time += pose.secondsSincePriorPose;
    times.push_back(time / total);
    rotations.push_back(pose.start * 2 * std::numbers::pi);
    ends.push_back(pose.length);
  }
  times.push_back(times.back());
  rotations.push_back(rotations.front());
  ends.push_back(ends.front());
  animateKeyPath("strokeEnd", total, times, ends);
  animateKeyPath("transform.rotation", total, times, rotations);
}

void SpinnerView::animateKeyPath(const std::string& keyPath, double duration,
                                 const std::vector<double>& times,
                                 const std::vector<double>& values) {
  CAKeyframeAnimation animation(keyPath);
  animation.keyTimes = times;
  animation.values = values;
  animation.calculationMode = kCAAnimationLinear;
  animation.duration = duration;
  animation.repeatCount = std::numeric_limits<double>::infinity();
  layer().add(animation, keyPath);
}

}  // namespace kestrova
