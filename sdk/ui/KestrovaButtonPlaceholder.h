#pragma once

#include "platform/foundation/Export.h"
#include "platform/uikit/ViewPlaceholder.h"

namespace kestrova {

// The KestrovaButton for a form of the toolkit: in its Designer, a plain widget promoted to this
// class. It presents over the window that it is in, from the controller that the host has wrapped
// around a widget above, unless KestrovaButton::setContainer() names another. Empty, with a line on
// standard output, where the SDK's bundle is missing.
class KESTROVA_EXPORT KestrovaButtonPlaceholder : public platform::ViewPlaceholder {
 public:
  explicit KestrovaButtonPlaceholder(QWidget* parent = nullptr);
  KestrovaButtonPlaceholder(const KestrovaButtonPlaceholder&) = delete;
  KestrovaButtonPlaceholder& operator=(const KestrovaButtonPlaceholder&) = delete;
  ~KestrovaButtonPlaceholder() override;
};

}  // namespace kestrova
