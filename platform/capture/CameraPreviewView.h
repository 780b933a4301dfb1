#pragma once

#include <memory>

#include "platform/capture/CameraFrame.h"
#include "platform/uikit/UIView.h"

namespace kestrova::platform {

// Shows what a camera sees: as large as it goes, whole, on black. Main thread.
class CameraPreviewView : public UIView {
 public:
  CameraPreviewView();

  // Null for nothing.
  void setPicture(std::shared_ptr<const CGImage> picture);
  // Where the middle of the picture lies, as near as it goes; in points from the top.
  void setMiddle(double y);
  // The pixels that there are for a picture. One that fits them exactly is drawn fastest.
  PixelSize room() const;
  // In the view, empty without a picture.
  CGRect place() const;

 protected:
  void draw(Canvas& canvas) override;

 private:
  std::shared_ptr<const CGImage> picture_;
  double middle_ = 0;
};

}  // namespace kestrova::platform
