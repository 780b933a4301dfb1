#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "sandbox/Http.h"
#include "sandbox/Sandbox.h"

namespace kestrova::sandbox {

// What an uploaded file is by its bytes, whatever was said of it.
struct UploadKind {
  enum class Form { other, picture, video };
  Form form = Form::other;
  std::uint32_t width = 0;  // pixels, of a picture
  std::uint32_t height = 0;
};

// Other where the file cannot be read.
UploadKind uploadKind(const Upload& upload);

// The bytes of the file, or the range that the request asks for: 200, 206, 416; 404 where the file
// is gone. What is neither picture nor video comes as a download.
HttpAnswer uploadAnswer(const HttpRequest& request, const Upload& upload);

}  // namespace kestrova::sandbox
