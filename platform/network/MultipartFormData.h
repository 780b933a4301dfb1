#pragma once

#include <filesystem>
#include <memory>
#include <optional>
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
  void append(std::string_view value, std::string_view name);
  // Adds a file. It is read while the form is encoded; if it cannot be read then, the form goes
  // without this part.
  void append(std::filesystem::path file, std::string_view name, std::string_view fileName,
              std::string_view mimeType);

  // Writes the form to a temporary file in `directory` (the system's where empty), block by block.
  // After an error nothing is left on disk.
  Result<std::shared_ptr<const TemporaryFile>> encode(const std::filesystem::path& directory) const;

 private:
  struct Part {
    // The part's header, and for a field its value.
    std::string head;
    std::optional<std::filesystem::path> file;
  };

  std::string boundary_;
  std::vector<Part> parts_;
};

}  // namespace kestrova::platform
