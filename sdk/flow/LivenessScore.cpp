#include "sdk/flow/LivenessScore.h"

#include <array>
#include <charconv>

namespace kestrova {

std::string livenessScoreText(double score) {
  constexpr double kCertain = 1.0;
  constexpr double kAlmostCertain = 0.99;
  // The longest double in fixed notation has 309 digits before the point.
  std::array<char, 400> digits{};
  const auto end =
      std::to_chars(digits.data(), digits.data() + digits.size(),
                    score == kCertain ? kAlmostCertain : score, std::chars_format::fixed)
          .ptr;
  std::string text(digits.data(), end);
  if (text.find('.') == std::string::npos) text += ".0";
  return text;
}

}  // namespace kestrova
