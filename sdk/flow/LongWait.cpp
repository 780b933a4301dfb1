#include "sdk/flow/LongWait.h"

#include <optional>

#include "platform/uikit/UIAccessibility.h"
#include "platform/uikit/UILabel.h"

namespace kestrova {

AnimationClock::Token sayAfterLongWait(const std::weak_ptr<UILabel>& label) {
  auto& clock = AnimationClock::shared();
  return clock.run(clock.now() + kLongWait, [label](double) -> std::optional<double> {
    if (const auto shown = label.lock()) {
      shown->setText("Still sending. Check the connection, or close and start again.");
      shown->setHidden(false);
      postAccessibilityAnnouncement(*shown, shown->text());
    }
    return std::nullopt;
  });
}

}  // namespace kestrova
