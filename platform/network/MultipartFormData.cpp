#include "platform/network/MultipartFormData.h"

#include <array>
#include <utility>

#include <sys/random.h>

#include "platform/foundation/FileManager.h"
#include "platform/network/TemporaryFile.h"

namespace kestrova::platform {

namespace {

std::string randomBoundary() {
  std::array<unsigned char, 16> random{};
  static_cast<void>(getrandom(random.data(), random.size(), 0));
  constexpr std::string_view digits = "0123456789abcdef";
  std::string boundary = "kestrova.boundary.";
  for (const auto byte : random) {
    boundary += digits[byte >> 4U];
    boundary += digits[byte & 0xfU];
  }
  return boundary;
}

std::string quotedParameter(std::string_view text) {
  std::string out = "\"";
  for (const char c : text) {
    if (c == '"') {
      out += "%22";
    } else if (c == '\r') {
      out += "%0D";
    } else if (c == '\n') {
      out += "%0A";
    } else {
      out += c;
    }
  }
  return out += '"';
}

std::string disposition(std::string_view name) {
  return "Content-Disposition: form-data; name=" + quotedParameter(name);
}

}  // namespace

MultipartFormData::MultipartFormData() : boundary_(randomBoundary()) {}

std::string MultipartFormData::contentType() const {
  return "multipart/form-data; boundary=" + boundary_;
}

void MultipartFormData::append(std::string_view value, std::string_view name) {
  parts_.push_back({disposition(name).append("\r\n\r\n").append(value), std::nullopt});
}

void MultipartFormData::append(std::filesystem::path file, std::string_view name,
                               std::string_view fileName, std::string_view mimeType) {
  std::string head = disposition(name) + "; filename=" + quotedParameter(fileName);
  head.append("\r\nContent-Type: ").append(mimeType).append("\r\n\r\n");
  parts_.push_back({std::move(head), std::move(file)});
}

Result<std::shared_ptr<const TemporaryFile>> MultipartFormData::encode(
    const std::filesystem::path& directory) const {
  auto made = TemporaryFile::make(directory);
  if (!made) return made.error();
  auto& out = made.value();
  const std::string delimiter = "--" + boundary_;
  for (const auto& part : parts_) {
    const auto start = out.size();
    auto written = out.write(delimiter + "\r\n" + part.head);
    if (written && part.file) {
      const auto copied = FileManager::read(*part.file, [&](std::string_view block) {
        written = out.write(block);
        return written;
      });
      if (written && !copied) {
        if (const auto undone = out.truncate(start); !undone) return undone.error();
        continue;
      }
    }
    if (written) written = out.write("\r\n");
    if (!written) return written.error();
  }
  if (const auto written = out.write(delimiter + "--\r\n"); !written) return written.error();
  return std::make_shared<const TemporaryFile>(std::move(out));
}

}  // namespace kestrova::platform
