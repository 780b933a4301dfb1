#include "sdk/flow/LivenessScore.h"

#include "platform/foundation/JSONValue.h"
#include "sdk/Platform.h"

namespace kestrova {

std::string livenessScoreText(double score) {
  constexpr double kCertain = 1.0;
  constexpr double kAlmostCertain = 0.99;
  std::string text = decimalText(score == kCertain ? kAlmostCertain : score);
  if (text.find('.') == std::string::npos) text += ".0";
  return text;
}

}  // namespace kestrova
