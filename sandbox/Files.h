#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "sandbox/Outcome.h"

namespace kestrova::sandbox {

// Writes a file beside its place and renames it there, so that it is whole or absent. Readable by
// all where not `secret`. False with errno set when that failed; then nothing is left behind.
bool writeFile(const std::filesystem::path& path, std::string_view bytes, bool secret);

Outcome<std::string> readFile(const std::filesystem::path& path);

}  // namespace kestrova::sandbox
