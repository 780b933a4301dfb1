#pragma once

#include <functional>
#include <memory>

#include <QtWidgets/QWidget>

#include "platform/foundation/Export.h"

namespace kestrova::platform {

class UIView;
class UIWindow;

// A widget for a host's own forms that shows one of our views: as large as the view wants to be, a
// part of the host's order of tabs and of what assistive technology sees. The view's responders go
// on with the controller that the host has wrapped around a widget above. Main thread.
class KESTROVA_EXPORT ViewPlaceholder : public QWidget {
 public:
  // `make` is called at once; where it gives null, the widget stays empty.
  ViewPlaceholder(const std::function<std::shared_ptr<UIView>()>& make, QWidget* parent);
  ViewPlaceholder(const ViewPlaceholder&) = delete;
  ViewPlaceholder& operator=(const ViewPlaceholder&) = delete;
  ~ViewPlaceholder() override;

  const std::shared_ptr<UIView>& view() const { return view_; }

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;
  bool hasHeightForWidth() const override;
  int heightForWidth(int width) const override;
  bool eventFilter(QObject* object, QEvent* event) override;

 protected:
  bool event(QEvent* event) override;

 private:
  QWidget* viewWidget() const;

  std::shared_ptr<UIWindow> window_;
  std::shared_ptr<UIView> view_;
};

}  // namespace kestrova::platform
