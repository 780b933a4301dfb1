#include "platform/uikit/UIBezierPath.h"

namespace kestrova::platform {

UIBezierPath UIBezierPath::ovalIn(const CGRect& rect) {
  UIBezierPath path;
  path.path_.append(CGPath::Ellipse{rect});
  return path;
}

}  // namespace kestrova::platform
