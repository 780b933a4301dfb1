#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "platform/foundation/Data.h"
#include "platform/foundation/Result.h"

namespace kestrova::platform {

struct FileManager {
  // The application's documents directory of the current user, made where it is missing:
  // $XDG_DATA_HOME (else ~/.local/share) / name of the program / Documents, private to the user
  // (mode 0700). An error where it cannot be made or belongs to somebody else. Any thread.
  static Result<std::filesystem::path> documentDirectory();

  // `path` with a leading "~/" replaced by the user's home directory.
  static std::filesystem::path expandingTilde(const std::string& path);

  // Hands the bytes of a regular file to `sink`, block by block, until it returns an error, which
  // is then this call's. An error too where the file cannot be read whole: not there, another kind
  // of file, or changed in size while it is read.
  using Sink = std::function<Result<Done>(std::string_view block)>;
  static Result<Done> read(const std::filesystem::path& path, const Sink& sink);
  // All of them; errors as above.
  static Result<Data> contents(const std::filesystem::path& path);

  // Replaces or makes the file `path`, private to the user (mode 0600), by writing a new file
  // beside it and renaming that. After an error the old file stands and the new one is gone.
  static Result<Done> write(std::string_view data, const std::filesystem::path& path);
};

}  // namespace kestrova::platform
