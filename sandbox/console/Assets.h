#pragma once

#include <string_view>

namespace kestrova::sandbox {

// The bytes of a file of this folder that was built in; empty where none has the name.
std::string_view asset(std::string_view name);

}  // namespace kestrova::sandbox
