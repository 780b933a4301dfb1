#include "platform/foundation/Bundle.h"

#include <string>
#include <utility>

#include <dlfcn.h>
#include <link.h>

namespace kestrova::platform {

namespace {

namespace fs = std::filesystem;

// The file that the loader mapped at `address`.
fs::path imageFile(const void* address) {
  Dl_info info{};
  void* map = nullptr;
  std::error_code error;
  if (dladdr1(address, &info, &map, RTLD_DL_LINKMAP) != 0) {
    // The main program's entry has no name, and dli_fname is only what it was started as.
    const auto* const name = static_cast<const link_map*>(map)->l_name;
    if (name && *name) {
      if (auto file = fs::canonical(name, error); !error) return file;
    }
  }
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
