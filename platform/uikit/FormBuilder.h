#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/uikit/DesignerFile.h"

namespace kestrova::platform {

class UIView;

// The views of a Designer file, in its order, placed by the toolkit's layouts and each in its
// superview. No layout leaks from the toolkit's style: margins and spacings that the file does not
// state are 0. A hidden view keeps its place, but for those of a UIStackView. Empty, with a line in
// `faults`, where the toolkit refuses the file. Main thread.
std::vector<std::shared_ptr<UIView>> buildForm(const DesignerFile& file, NibFaults& faults);

}  // namespace kestrova::platform
