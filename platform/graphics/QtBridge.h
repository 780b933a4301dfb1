#pragma once

#include "platform/graphics/CGGeometry.h"

class QColor;
class QFont;
class QPainter;

namespace kestrova::platform {

class NSLayoutManager;
class UIColor;
class UIFont;
class UIImage;

// What the views' own drawing code needs of Qt. For the .cpp files of the platform layer alone;
// main thread, with a QGuiApplication.
struct QtBridge {
  static QColor color(const UIColor& color);
  // A point is a pixel before scaling, whatever the screen's resolution; sizes are rounded to whole
  // ones. Advances are the same at every scale.
  static QFont font(const UIFont& font);

  // Draws the upright picture, sharp on the device's pixels; nothing where it does not decode.
  static void paint(const UIImage& image, QPainter& painter, const CGRect& rect);
  // Draws the laid-out text with the container's upper left corner at `origin`.
  static void paint(const NSLayoutManager& manager, QPainter& painter, CGPoint origin);
};

}  // namespace kestrova::platform
