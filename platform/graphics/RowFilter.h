#pragma once

#include <cstddef>
#include <cstdint>

namespace kestrova::platform {

// The filter types of PNG, by their numbers in the file.
enum class RowFilter : std::uint8_t { none, sub, up, average, paeth };

// The filter after which the bytes of a row are smallest, counted with a sign: the format's own
// rule of thumb for what compresses best. `row` and the one above it hold `size` bytes, with
// `pixelSize` zeros in front of each.
RowFilter bestFilter(const std::uint8_t* row, const std::uint8_t* above, std::size_t size,
                     std::size_t pixelSize);

// Writes the row to `to` as the filter leaves it.
void applyFilter(RowFilter filter, const std::uint8_t* row, const std::uint8_t* above,
                 std::size_t size, std::size_t pixelSize, std::uint8_t* to);

}  // namespace kestrova::platform
