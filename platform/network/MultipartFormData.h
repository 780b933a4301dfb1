#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/foundation/Result.h"

namespace kestrova::platform {

class TemporaryFile;

// A form of type multipart/form-data (RFC 7578). Field and file names may hold any text: quotes and
// line breaks are percent-encoded in the part's header.
class MultipartFormData {
 public:
  // With a random boundary.
  MultipartFormData();

  // The value of the request's Content-Type header.
  std::string contentType() const;
  // What log lines show of a form: its type, never its contents.
  static std::string_view description() { return "MultipartFormData"; }

  // Adds a field, without a content type.
  void append(std::string data, std::string_view name);
  // Adds a file.
  void append(std::string data, std::string_view name, std::string_view fileName,
              std::string_view mimeType);

  // Writes the form to a temporary file in `directory` (the system's where empty), letting go of
  // each part's bytes as it goes. After an error nothing is left on disk. The form is spent.
  Result<std::shared_ptr<const TemporaryFile>> encode(const std::filesystem::path& directory) &&;

 private:
  struct Part {
    std::string head;
    std::string data;
  };

  std::string boundary_;
  std::vector<Part> parts_;
};

}  // namespace kestrova::platform
