#include "examples/gallery/GalleryBundle.h"

namespace kestrova::gallery {

namespace {

const char kInThisProgram = 0;

}  // namespace

Bundle galleryBundle() {
  const auto program = Bundle::containing(&kInThisProgram);
  const auto path = program.path("Gallery", "bundle");
  const auto bundle = path ? Bundle::at(*path) : std::nullopt;
  return bundle.value_or(program);
}

}  // namespace kestrova::gallery
