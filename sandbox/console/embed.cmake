# Writes the console's files as C++ data: cmake -D OUTPUT=FILE -D INPUTS=a;b -P embed.cmake
set(data "")
set(table "")
foreach(input IN LISTS INPUTS)
  get_filename_component(name "${input}" NAME)
  string(MAKE_C_IDENTIFIER "${name}" identifier)
  file(READ "${input}" hex HEX)
  string(LENGTH "${hex}" length)
  math(EXPR size "${length} / 2")
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," bytes "${hex}")
  string(APPEND data "constexpr char ${identifier}[] = {${bytes}};\n")
  string(APPEND table "    {\"${name}\", {${identifier}, ${size}}},\n")
endforeach()
file(CONFIGURE OUTPUT "${OUTPUT}" @ONLY CONTENT [[
#include "sandbox/console/Assets.h"

#include <array>
#include <utility>

namespace kestrova::sandbox {

namespace {

@data@
constexpr std::pair<std::string_view, std::string_view> files[] = {
@table@};

}  // namespace

std::string_view asset(std::string_view name) {
  for (const auto& [known, bytes] : files) {
    if (known == name) return bytes;
  }
  return {};
}

}  // namespace kestrova::sandbox
]])
