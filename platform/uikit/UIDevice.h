#pragma once

#include <optional>
#include <string>
#include <utility>

namespace kestrova::platform {

enum class UIUserInterfaceIdiom { phone = 0, pad = 1 };

// The device that the process runs on. Main thread.
class UIDevice {
 public:
  static UIDevice& current();

  // The version of the platform that this layer stands for: numbers and dots, "10.0" or newer.
  const std::string& systemVersion() const { return systemVersion_; }
  // Whether its first number is at least `major`.
  bool hasSystemVersion(int major) const;
  // A pad where the smaller side of the primary screen has at least 600 points.
  UIUserInterfaceIdiom userInterfaceIdiom() const;

  // For tests; an empty text and none restore what is real.
  void setSystemVersion(std::string version);
  void setUserInterfaceIdiom(std::optional<UIUserInterfaceIdiom> idiom) { idiom_ = idiom; }

 private:
  UIDevice();

  std::string systemVersion_;
  std::optional<UIUserInterfaceIdiom> idiom_;
};

}  // namespace kestrova::platform
