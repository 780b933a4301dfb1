#include "artwork/WrittenFile.h"

#include <fstream>
#include <stdexcept>

namespace kestrova::artwork {

void writeFile(const std::string& file, std::string_view bytes) {
  std::ofstream stream(file, std::ios::binary | std::ios::trunc);
  stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  stream.close();
  if (!stream) throw std::runtime_error("cannot write " + file);
}

}  // namespace kestrova::artwork
