#pragma once

#include <functional>
#include <memory>

#include "platform/foundation/Export.h"
#include "platform/uikit/UIButton.h"
#include "sdk/Platform.h"
#include "sdk/core/KestrovaErrors.h"

namespace kestrova::platform {
class UILabel;
class UIViewController;
}  // namespace kestrova::platform

namespace kestrova {

// The ready-made button that starts a verification. In a host's nib, which UINib loads after
// Kestrova::initialize(), it is an empty view of this class; the designed button takes its place. A
// form of the toolkit has a KestrovaButtonPlaceholder. Main thread.
class KESTROVA_EXPORT KestrovaButton : public UIButton {
 public:
  using StartFailureHandler = std::function<void(const KestrovaError& error)>;

  // The controller over which all these buttons of the process present the flow, kept until it is
  // replaced or the application object goes. Without one it is the nearest controller above the
  // button.
  static void setContainer(const std::shared_ptr<UIViewController>& container);
  // Who is told that a tap could not start a verification, after a line on standard output; empty
  // for nobody. Kept like the container.
  static void setStartFailureHandler(StartFailureHandler handler);

  std::weak_ptr<UILabel> label;

  void bind(UIBindings& bindings) override;
  std::shared_ptr<UIView> awakeAfter() override;
  void awakeFromNib() override;

  // Starts a verification; throws what Kestrova::startVerification() throws. A line on standard
  // output where there is no controller to present from.
  void buttonTapped(const std::shared_ptr<UIControl>& sender);

 private:
  static std::shared_ptr<UIViewController> buttonContainer;
  static StartFailureHandler startFailed;

  static void releaseAtExit();
  void setUp();
  void tapped(const std::shared_ptr<UIControl>& sender);

  // Of the design, not shown.
  std::shared_ptr<UIView> view;
};

}  // namespace kestrova
