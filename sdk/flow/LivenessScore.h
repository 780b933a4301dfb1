#pragma once

#include <string>

namespace kestrova {

// The score as the backend gets it: the shortest decimal text that reads back as the same number,
// with at least one digit after the point, in any locale. Exactly 1 becomes 0.99.
std::string livenessScoreText(double score);

}  // namespace kestrova
