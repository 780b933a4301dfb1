#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "platform/graphics/UIImage.h"
#include "sdk/Platform.h"

namespace kestrova {

// Scales a photograph of a document to 33 % and writes it as PNG to `fileName` in the documents
// directory, in place of what is there; a picture that does not encode leaves that file as it is.
// The file's place, of which a line tells; none, with a line that says why, where the picture
// cannot be scaled, there is no documents directory, or the file cannot be written. Main thread.
std::optional<std::filesystem::path> storeDocumentPicture(const UIImage& photograph,
                                                          std::string_view fileName);

}  // namespace kestrova
