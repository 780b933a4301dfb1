#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/foundation/Bundle.h"
#include "platform/foundation/Export.h"
#include "platform/foundation/Result.h"

namespace kestrova::platform {

class UIResponder;
class UIView;

// The file of a bundle named after the nib, with the extension "ui": a view, with all that lies in
// it, as it was designed. Main thread.
class UINib {
 public:
  // Nothing is read yet.
  UINib(std::string nibName, Bundle bundle)
      : nibName_(std::move(nibName)), bundle_(std::move(bundle)) {}

  // New objects: one, the top view, whose own outlets and actions are connected, and those of the
  // owner where there is one. One error for all that is wrong, also for a nib that comes up while
  // it is itself being loaded.
  KESTROVA_EXPORT Result<std::vector<std::shared_ptr<UIView>>> instantiate(
      const std::shared_ptr<UIResponder>& withOwner = nullptr) const;

 private:
  std::string nibName_;
  Bundle bundle_;
};

}  // namespace kestrova::platform
