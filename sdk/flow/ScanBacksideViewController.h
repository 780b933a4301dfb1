#pragma once

#include <memory>
#include <string>

#include "platform/uikit/UIViewController.h"
#include "sdk/Platform.h"

namespace kestrova {

class SpinnerView;

class ScanBacksideViewController : public UIViewController {
 public:
  std::weak_ptr<UIView> IDGIFCointainer;
  std::weak_ptr<UIView> loadingView;
  std::weak_ptr<SpinnerView> spinner;

  void bind(UIBindings& bindings) override;
  void viewWillAppear(bool animated) override;
  void viewWillDisappear(bool animated) override;
  void takePhotoOfBacksideDocument(const std::shared_ptr<UIControl>& sender);
  void playIDGIF();
};

}  // namespace kestrova
