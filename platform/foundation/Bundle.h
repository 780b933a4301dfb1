#pragma once

#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/foundation/Export.h"

namespace kestrova::platform {

// A folder of named resources. Nothing is cached: each lookup looks at the files as they are. Any
// thread.
class KESTROVA_EXPORT Bundle {
 public:
  // The bundle in a folder; none where there is no such folder.
  static std::optional<Bundle> at(const std::filesystem::path& folder);
  // The bundle of the shared library or program that holds `address` (of any function or static
  // object): its own folder, then share/kestrova beside and one level above that folder, so that it
  // is found in a build tree, in an installed tree and in one that was moved.
  static Bundle containing(const void* address);

  // The path of the file or folder `name`.`type`; none where there is none, and for a name that
  // would leave the bundle.
  std::optional<std::filesystem::path> path(std::string_view name, std::string_view type) const;

  const std::filesystem::path& bundlePath() const { return folders_.front(); }

 private:
  explicit Bundle(std::vector<std::filesystem::path> folders) : folders_(std::move(folders)) {}

  // In the order of lookup; never empty.
  std::vector<std::filesystem::path> folders_;
};

}  // namespace kestrova::platform
