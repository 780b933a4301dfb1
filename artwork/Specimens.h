#pragma once

#include <string>

namespace kestrova::artwork {

// What the demo's camera sees on a machine without one, as PNG files in `folder`: passport.png,
// licence-front.png, licence-back.png, id-front.png, id-back.png (1500 x 2000 pixels, a document on
// a desk, marked SPECIMEN, of a country that does not exist) and face/00.png onwards (720 x 1280,
// a drawn head that turns; 10 a second). `typefaces` is the folder of the Exo package. Throws
// std::runtime_error that names what cannot be read or written. Needs a QGuiApplication.
void drawSpecimens(const std::string& folder, const std::string& typefaces);

}  // namespace kestrova::artwork
