#pragma once

#include <memory>
#include <typeinfo>

#include "platform/uikit/UIView.h"
#include "sdk/Platform.h"

namespace kestrova {

struct UIViewExtensions {
  // A new view from the SDK's nib that is named as the class is registered; null, with a line on
  // standard output, where there is no such nib or it does not fit.
  template <typename View>
  static std::shared_ptr<View> viewFromNib(
      const std::shared_ptr<UIResponder>& withOwner = nullptr) {
    return std::dynamic_pointer_cast<View>(viewFromNib(typeid(View), withOwner));
  }
  static std::shared_ptr<UIView> viewFromNib(const std::type_info& viewClass,
                                             const std::shared_ptr<UIResponder>& withOwner);
};

// `view` where it has subviews; else, as it is an empty placeholder of another nib, the designed
// view of its own class, with its frame. The placeholder itself where that cannot be loaded.
std::shared_ptr<UIView> loadFromNibIfEmbeddedInDifferentNib(const std::shared_ptr<UIView>& view);

// The nearest controller after `responder` in its chain; null where there is none.
std::shared_ptr<UIViewController> parentViewController(const UIResponder& responder);

}  // namespace kestrova
