#pragma once

#include <any>
#include <map>
#include <string>

namespace kestrova::platform {

class UIImagePickerController;

// What a picked picture comes with, by the keys below.
using UIImagePickerControllerInfo = std::map<std::string, std::any, std::less<>>;

// The kind of what was picked, a std::string: always kUTTypeImage.
inline constexpr const char* UIImagePickerControllerMediaType = "UIImagePickerControllerMediaType";
inline constexpr const char* kUTTypeImage = "public.image";
// The picture as it was taken, a UIImage.
inline constexpr const char* UIImagePickerControllerOriginalImage =
    "UIImagePickerControllerOriginalImage";

// Told what the user has done with a picker; dismisses it. Main thread.
class UIImagePickerControllerDelegate {
 public:
  virtual ~UIImagePickerControllerDelegate() = default;
  virtual void imagePickerControllerDidFinishPickingMediaWithInfo(
      UIImagePickerController& picker, const UIImagePickerControllerInfo& info) = 0;
  virtual void imagePickerControllerDidCancel(UIImagePickerController& picker) = 0;
};

}  // namespace kestrova::platform
