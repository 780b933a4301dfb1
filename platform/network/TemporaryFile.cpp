#include "platform/network/TemporaryFile.h"

#include <cerrno>
#include <cstdlib>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>

namespace kestrova::platform {

namespace {

constexpr auto kFailure = "The temporary file of the upload";

FileDescriptor openNameless(const std::filesystem::path& directory) {
  FileDescriptor file(
      ::open(directory.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC | O_EXCL, S_IRUSR | S_IWUSR));
  // File systems without nameless files, and kernels that do not know the flag.
  if (!file && (errno == EOPNOTSUPP || errno == EISDIR)) {
    std::string name = (directory / "kestrova.XXXXXX").string();
    file = FileDescriptor(::mkostemp(name.data(), O_CLOEXEC));
    if (file) ::unlink(name.c_str());
  }
  return file;
}

}  // namespace

Result<TemporaryFile> TemporaryFile::make(const std::filesystem::path& directory) {
  std::error_code error;
  const auto place = directory.empty() ? std::filesystem::temp_directory_path(error) : directory;
  if (error) return NSError::posix(error.value(), kFailure);
  auto file = openNameless(place);
  if (!file) return NSError::posix(errno, kFailure);
  return TemporaryFile(std::move(file));
}

Result<Done> TemporaryFile::write(std::string_view data) {
  while (!data.empty()) {
    const auto count = ::write(file_.get(), data.data(), data.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return NSError::posix(errno, kFailure);
    data.remove_prefix(static_cast<std::size_t>(count));
    size_ += static_cast<std::uint64_t>(count);
  }
  return Done{};
}

Result<Done> TemporaryFile::truncate(std::uint64_t size) {
  if (::ftruncate(file_.get(), static_cast<off_t>(size)) != 0 ||
      ::lseek(file_.get(), static_cast<off_t>(size), SEEK_SET) < 0) {
    return NSError::posix(errno, kFailure);
  }
  size_ = size;
  return Done{};
}

Result<std::size_t> TemporaryFile::read(std::uint64_t offset, std::span<char> buffer) const {
  std::size_t size = 0;
  while (size < buffer.size()) {
    const auto count = ::pread(file_.get(), buffer.data() + size, buffer.size() - size,
                               static_cast<off_t>(offset + size));
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return NSError::posix(errno, kFailure);
    if (count == 0) break;
    size += static_cast<std::size_t>(count);
  }
  return size;
}

}  // namespace kestrova::platform
