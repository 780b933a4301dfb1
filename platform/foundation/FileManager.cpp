#include "platform/foundation/FileManager.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/foundation/FileDescriptor.h"
#include "platform/foundation/ProcessInfo.h"

namespace kestrova::platform {

namespace {

namespace fs = std::filesystem;

fs::path homeDirectory() {
  if (const auto home = ProcessInfo::environment("HOME"); home && home->starts_with('/')) {
    return *home;
  }
  passwd entry{};
  passwd* found = nullptr;
  std::vector<char> buffer(16384);
  getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found);
  return found ? found->pw_dir : "/";
}

struct RegularFile {
  FileDescriptor descriptor;
  std::size_t size = 0;
};

Result<RegularFile> openRegular(const fs::path& path) {
  // Not blocking: a named pipe would wait for its writer.
  FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat status {};
  if (!file || ::fstat(file.get(), &status) != 0) return NSError::posix(errno, path.string());
  if (!S_ISREG(status.st_mode)) {
    return NSError::posix(S_ISDIR(status.st_mode) ? EISDIR : EINVAL, path.string());
  }
  return RegularFile{std::move(file), static_cast<std::size_t>(status.st_size)};
}

// Reads no further than one byte behind the announced size: there must be none.
Result<Done> readBlocks(const RegularFile& file, const fs::path& path,
                        const FileManager::Sink& sink) {
  constexpr std::size_t blockSize = std::size_t{256} * 1024;
  Data block(blockSize);
  for (std::size_t size = 0;;) {
    const auto count =
        ::read(file.descriptor.get(), block.bytes(), std::min(blockSize, file.size - size + 1));
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return NSError::posix(errno, path.string());
    size += static_cast<std::size_t>(count);
    if (size > file.size || (count == 0 && size < file.size)) {
      return NSError{"NSCocoaErrorDomain", 256,
                     path.string() + ": changed in size while it was read"};
    }
    if (count == 0) return Done{};
    if (auto taken = sink(block.view().substr(0, static_cast<std::size_t>(count))); !taken) {
      return taken;
    }
  }
}

Result<Done> writeAll(int descriptor, std::string_view data, const std::string& what) {
  while (!data.empty()) {
    const auto written = ::write(descriptor, data.data(), data.size());
    if (written >= 0) {
      data.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno != EINTR) {
      return NSError::posix(errno, what);
    }
  }
  return Done{};
}

}  // namespace

fs::path FileManager::expandingTilde(const std::string& path) {
  return path.starts_with("~/") ? homeDirectory() / path.substr(2) : fs::path(path);
}

Result<fs::path> FileManager::documentDirectory() {
  const auto data = ProcessInfo::environment("XDG_DATA_HOME");
  const auto base =
      data && data->starts_with('/') ? fs::path(*data) : expandingTilde("~/.local/share");
  const auto application = base / ProcessInfo::processName();
  const auto documents = application / "Documents";
  std::error_code error;
  fs::create_directories(base, error);
  for (const auto& folder : {application, documents}) {
    if (::mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) {
      return NSError::posix(errno, "documents directory " + folder.string());
    }
  }
  struct stat status {};
  if (::lstat(documents.c_str(), &status) != 0) {
    return NSError::posix(errno, "documents directory " + documents.string());
  }
  if (!S_ISDIR(status.st_mode)) {
    return NSError::posix(ENOTDIR, "documents directory " + documents.string());
  }
  if (status.st_uid != geteuid()) {
    return NSError::posix(EPERM,
                          "documents directory " + documents.string() + " belongs to another user");
  }
  if ((status.st_mode & 07777) != 0700 && ::chmod(documents.c_str(), 0700) != 0) {
    return NSError::posix(errno, "documents directory " + documents.string());
  }
  return documents;
}

Result<Done> FileManager::read(const fs::path& path, const Sink& sink) {
  const auto file = openRegular(path);
  if (!file) return file.error();
  return readBlocks(file.value(), path, sink);
}

Result<Data> FileManager::contents(const fs::path& path) {
  const auto file = openRegular(path);
  if (!file) return file.error();
  Data data(file.value().size);
  std::size_t filled = 0;
  const auto done = readBlocks(file.value(), path, [&](std::string_view block) -> Result<Done> {
    filled += block.copy(data.bytes() + filled, block.size());
    return Done{};
  });
  if (!done) return done.error();
  return data;
}

Result<Done> FileManager::write(std::string_view data, const fs::path& path) {
  std::string temporary = path.string() + ".XXXXXX";
  const FileDescriptor file(::mkostemp(temporary.data(), O_CLOEXEC));
  if (!file) return NSError::posix(errno, path.string());
  auto written = writeAll(file.get(), data, path.string());
  if (written && ::rename(temporary.c_str(), path.c_str()) != 0) {
    written = NSError::posix(errno, path.string());
  }
  if (!written) ::unlink(temporary.c_str());
  return written;
}

}  // namespace kestrova::platform
