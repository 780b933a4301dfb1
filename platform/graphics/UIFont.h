#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/foundation/Export.h"

namespace kestrova::platform {

// A typeface at a size in points. Any thread.
class KESTROVA_EXPORT UIFont {
 public:
  // The weights of the system's typeface.
  static constexpr double kRegularWeight = 0;
  static constexpr double kSemiboldWeight = 0.3;
  static constexpr double kBoldWeight = 0.4;

  // A typeface that is registered under that PostScript name; none where there is none.
  static std::optional<UIFont> make(std::string_view name, double size);
  // `weight` from -1 (thinnest) to 1, of which the system takes the nearest it has.
  static UIFont systemFont(double ofSize, double weight = kRegularWeight) {
    return {{}, ofSize, weight};
  }
  static UIFont boldSystemFont(double ofSize) { return systemFont(ofSize, kBoldWeight); }

  // The PostScript name; empty for the system's typeface.
  const std::string& fontName() const { return name_; }
  double pointSize() const { return size_; }
  // Of the system's typeface.
  double weight() const { return weight_; }

  friend bool operator==(const UIFont&, const UIFont&) = default;

 private:
  UIFont(std::string name, double size, double weight)
      : name_(std::move(name)), size_(size), weight_(weight) {}

  std::string name_;
  double size_;
  double weight_;
};

}  // namespace kestrova::platform
