#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string_view>

#include "platform/foundation/FileDescriptor.h"
#include "platform/foundation/Result.h"

namespace kestrova::platform {

// A file without a name, readable by this process alone and gone with the object, also after a
// crash.
class TemporaryFile {
 public:
  // In `directory`, or the system's directory of temporary files where empty.
  static Result<TemporaryFile> make(const std::filesystem::path& directory);

  // Appends. An error leaves what was written before it.
  Result<Done> write(std::string_view data);
  // Drops what was written from `size` on.
  Result<Done> truncate(std::uint64_t size);
  std::uint64_t size() const { return size_; }
  // Fills `buffer` from `offset` on; fewer bytes than asked for only at the end.
  Result<std::size_t> read(std::uint64_t offset, std::span<char> buffer) const;

 private:
  explicit TemporaryFile(FileDescriptor file) : file_(std::move(file)) {}

  FileDescriptor file_;
  std::uint64_t size_ = 0;
};

}  // namespace kestrova::platform
