#pragma once

#include <string>
#include <string_view>

namespace kestrova::artwork {

// Replaces the file's contents. Throws std::runtime_error that names it where it cannot be written.
void writeFile(const std::string& file, std::string_view bytes);

}  // namespace kestrova::artwork
