#include "sandbox/Files.h"

#include <cerrno>
#include <fstream>
#include <iterator>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

#include "sandbox/Descriptor.h"
#include "sandbox/Text.h"

namespace kestrova::sandbox {

namespace {

bool writeAll(const Descriptor& file, std::string_view bytes) {
  while (!bytes.empty()) {
    const auto count = ::write(file.number(), bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

}  // namespace

bool writeFile(const std::filesystem::path& path, std::string_view bytes, bool secret) {
  const auto temporary = path.string() + ".new-" + randomHex(4);
  const Descriptor file(::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                               secret ? S_IRUSR | S_IWUSR : S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH));
  if (!file) return false;
  if (writeAll(file, bytes) && ::rename(temporary.c_str(), path.c_str()) == 0) return true;
  const int cause = errno;
  ::unlink(temporary.c_str());
  errno = cause;
  return false;
}

Outcome<std::string> readFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::string bytes{std::istreambuf_iterator<char>(file), {}};
  if (!file) return Failure{path.string() + " cannot be read"};
  return bytes;
}

}  // namespace kestrova::sandbox
