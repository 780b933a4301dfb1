#include "platform/foundation/Bundle.h"

#include <charconv>
#include <cstdint>
#include <fstream>
#include <string>
#include <utility>

namespace kestrova::platform {

namespace {

namespace fs = std::filesystem;

// The file that is mapped at `address`. Asked of the kernel: the loader knows a library only by the
// name it was opened by, which may be relative to a folder that is no longer the current one.
fs::path imageFile(const void* address) {
  const auto wanted = reinterpret_cast<std::uintptr_t>(address);
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    std::uintptr_t begin = 0;
    std::uintptr_t end = 0;
    const char* const stop = line.data() + line.size();
    const auto first = std::from_chars(line.data(), stop, begin, 16);
    if (first.ptr == stop) continue;
    std::from_chars(first.ptr + 1, stop, end, 16);
    const auto path = line.find('/');
    if (wanted >= begin && wanted < end && path != std::string::npos) return line.substr(path);
  }
  std::error_code error;
  return fs::read_symlink("/proc/self/exe", error);
}

}  // namespace

std::optional<Bundle> Bundle::at(const fs::path& folder) {
  std::error_code error;
  if (!fs::is_directory(folder, error)) return std::nullopt;
  return Bundle({folder});
}

Bundle Bundle::containing(const void* address) {
  const auto folder = imageFile(address).parent_path();
  // lib or bin beside share, and lib/<architecture> one level below it.
  return Bundle({folder, folder.parent_path() / "share/kestrova",
                 folder.parent_path().parent_path() / "share/kestrova"});
}

std::optional<fs::path> Bundle::path(std::string_view name, std::string_view type) const {
  std::string file(name);
  if (file.empty() || file.front() == '.' || file.find('/') != std::string::npos) {
    return std::nullopt;
  }
  if (!type.empty()) file.append(".").append(type);
  for (const auto& folder : folders_) {
    std::error_code error;
    if (auto candidate = folder / file; fs::exists(candidate, error)) return candidate;
  }
  return std::nullopt;
}

}  // namespace kestrova::platform
