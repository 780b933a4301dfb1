#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "platform/foundation/Export.h"
#include "platform/uikit/UIView.h"

namespace kestrova::platform {

enum class UIControlEvents {
  touchDown,
  touchUpInside,
  editingDidBegin,
  editingChanged,
  editingDidEnd
};

// A view that people operate. Space and Enter do what a tap does. Main thread.
class KESTROVA_EXPORT UIControl : public UIView {
 public:
  using Action = std::function<void(const std::shared_ptr<UIControl>& sender)>;

  bool isEnabled() const { return isEnabled_; }
  virtual void setEnabled(bool enabled);
  // While a touch that would be a tap rests on it.
  bool isHighlighted() const { return isHighlighted_; }

  // Calls `action` of `target`, which is not kept, at each such event.
  template <typename Target>
  void addTarget(const std::shared_ptr<Target>& target,
                 void (Target::*action)(const std::shared_ptr<UIControl>& sender),
                 UIControlEvents event) {
    addAction(event, [weak = std::weak_ptr<Target>(target),
                      action](const std::shared_ptr<UIControl>& sender) {
      if (const auto alive = weak.lock()) ((*alive).*action)(sender);
    });
  }
  void addAction(UIControlEvents event, Action action);
  // Calls the actions of the event in the order in which they were added. The control stays alive
  // meanwhile.
  void sendActions(UIControlEvents event);

  bool wantsTouches() const override { return true; }
  void touchesBegan(const UITouch& touch) override;
  void touchesMoved(const UITouch& touch) override;
  void touchesEnded(const UITouch& touch) override;
  void touchesCancelled(const UITouch& touch) override;
  bool keyPressed(const std::string& key) override;
  bool accessibilityActivate() override;

 protected:
  UIControl() = default;
  explicit UIControl(std::unique_ptr<CALayer> layer) : UIView(std::move(layer)) {}

 private:
  void setHighlighted(bool highlighted);

  struct Registration {
    UIControlEvents event;
    Action action;
  };

  std::vector<Registration> registrations_;
  bool isEnabled_ = true;
  bool isHighlighted_ = false;
};

}  // namespace kestrova::platform
