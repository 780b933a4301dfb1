#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "sdk/Platform.h"

namespace kestrova::platform {
class UIViewController;
}

namespace kestrova::gallery {

// A page of the gallery: what it is called, in file names and on screen, and how it is made.
struct GalleryPage {
  std::string name;
  std::string title;
  std::function<std::shared_ptr<UIViewController>()> make;
  // After how many seconds a picture shows what there is to show.
  double pictureAfter = 0.5;
};

// In the order of the list.
const std::vector<GalleryPage>& galleryPages();

}  // namespace kestrova::gallery
