#pragma once

#include <memory>
#include <optional>
#include <string>

namespace kestrova::platform {

class UIView;

// Fixes a view's width or height. Made by a storyboard or nib, owned by its view. Main thread.
class NSLayoutConstraint {
 public:
  enum class Attribute { width, height };

  // `least`: minimum in a superview that is too small; in a scroll view that shows less than
  // `least`, the visible extent is the minimum. Without it the constraint never shrinks.
  NSLayoutConstraint(std::string identifier, Attribute attribute, double constant,
                     std::optional<double> least = std::nullopt)
      : identifier_(std::move(identifier)),
        attribute_(attribute),
        least_(least),
        constant_(constant),
        shown_(constant) {}

  const std::string& identifier() const { return identifier_; }
  Attribute attribute() const { return attribute_; }
  const std::optional<double>& least() const { return least_; }
  // Points. A change shows with the next layout pass, in an animation where that pass is made in
  // an animation block; meanwhile this is the new value.
  double constant() const { return constant_; }
  void setConstant(double constant);

 private:
  friend class UIView;

  std::string identifier_;
  Attribute attribute_;
  std::optional<double> least_;
  double constant_;
  // What the layout has at this moment, and what it moves to.
  double shown_;
  double target_ = shown_;
  // Counts the changes of the target.
  unsigned motion_ = 0;
  std::weak_ptr<UIView> view_;
};

}  // namespace kestrova::platform
