#pragma once

#include <string_view>

#include "platform/uikit/UIView.h"
#include "sdk/Platform.h"

namespace kestrova {

// Plays the animated picture `name` of the bundle in the middle of `container`, at its size.
// Nothing where there is no such picture. Pictures stay decoded until forgetGIFs(): screens come
// back, two show the same one, and decoding takes a third of the time to show a screen.
void playGIF(std::string_view name, UIView& container);
// As the flow ends.
void forgetGIFs();

void removeSubviews(UIView& container);

}  // namespace kestrova
