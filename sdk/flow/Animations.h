#pragma once

#include <string_view>

#include "platform/uikit/UIView.h"
#include "sdk/Platform.h"

namespace kestrova {

// Plays the animated picture `name` of the bundle in the middle of `container`, at its size.
// Nothing where there is no such picture.
void playGIF(std::string_view name, UIView& container);

void removeSubviews(UIView& container);

}  // namespace kestrova
