#include "sandbox/console/Upload.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>
#include <string>
#include <utility>

namespace kestrova::sandbox {

namespace {

struct Range {
  std::uint64_t first = 0;
  std::uint64_t count = 0;
};

enum class Wanted { whole, range, impossible };

bool readNumber(std::string_view text, std::uint64_t& number) {
  const auto* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc{} && stop == end;
}

// One range of bytes; what HTTP lets a server ignore asks for the whole file.
Wanted readRange(std::string_view header, std::uint64_t size, Range& range) {
  constexpr std::string_view unit = "bytes=";
  if (!header.starts_with(unit)) return Wanted::whole;
  header.remove_prefix(unit.size());
  const auto dash = header.find('-');
  if (dash == header.npos || header.find(',') != header.npos) return Wanted::whole;
  const auto from = header.substr(0, dash);
  const auto to = header.substr(dash + 1);
  std::uint64_t first = 0;
  std::uint64_t last = 0;
  if (from.empty()) {  // the last bytes
    std::uint64_t count = 0;
    if (!readNumber(to, count)) return Wanted::whole;
    if (count == 0 || size == 0) return Wanted::impossible;
    count = std::min(count, size);
    range = {size - count, count};
    return Wanted::range;
  }
  if (!readNumber(from, first)) return Wanted::whole;
  if (to.empty()) {
    last = size;
  } else if (!readNumber(to, last) || last < first) {
    return Wanted::whole;
  }
  if (first >= size) return Wanted::impossible;
  last = std::min(last, size - 1);
  range = {first, last - first + 1};
  return Wanted::range;
}

std::string_view contentType(const UploadKind& kind) {
  if (kind.form == UploadKind::Form::picture) return "image/png";
  if (kind.form == UploadKind::Form::video) return "video/quicktime";
  return "application/octet-stream";
}

}  // namespace

UploadKind uploadKind(const Upload& upload) {
  std::ifstream file(upload.path, std::ios::binary);
  std::array<char, 24> bytes{};
  file.read(bytes.data(), bytes.size());
  const std::string_view head(bytes.data(), static_cast<std::size_t>(file.gcount()));
  UploadKind kind;
  if (head.starts_with("\x89PNG\r\n\x1a\n")) {
    kind.form = UploadKind::Form::picture;
    const auto number = [&](std::size_t at) {
      std::uint32_t value = 0;
      for (const char c : head.substr(at, 4)) value = value << 8U | static_cast<unsigned char>(c);
      return value;
    };
    if (head.size() == bytes.size() && head.substr(12, 4) == "IHDR") {
      kind.width = number(16);
      kind.height = number(20);
    }
  } else if (head.size() >= 8 && head.substr(4, 4) == "ftyp") {
    kind.form = UploadKind::Form::video;
  }
  return kind;
}

HttpAnswer uploadAnswer(const HttpRequest& request, const Upload& upload) {
  std::ifstream file(upload.path, std::ios::binary | std::ios::ate);
  if (!file) return errorAnswer(404, "this file is gone");
  const auto size = static_cast<std::uint64_t>(file.tellg());
  const auto kind = uploadKind(upload);
  const auto tag = '"' + upload.sha256 + '"';

  HttpAnswer answer;
  answer.contentType = contentType(kind);
  answer.headers = {{"Accept-Ranges", "bytes"}, {"ETag", tag}};
  if (kind.form == UploadKind::Form::other) {
    answer.headers.emplace_back("Content-Disposition", "attachment; filename=\"upload.bin\"");
  }
  Range range{0, size};
  const auto condition = request.header("If-Range");
  const auto wanted = condition.empty() || condition == tag
                          ? readRange(request.header("Range"), size, range)
                          : Wanted::whole;
  if (wanted == Wanted::impossible) {
    answer = errorAnswer(416, "the file ends before this range");
    answer.headers = {{"Content-Range", "bytes */" + std::to_string(size)}};
    return answer;
  }
  if (wanted == Wanted::range) {
    answer.status = 206;
    answer.headers.emplace_back("Content-Range", "bytes " + std::to_string(range.first) + '-' +
                                                     std::to_string(range.first + range.count - 1) +
                                                     '/' + std::to_string(size));
  }
  answer.body.resize(range.count);
  file.seekg(static_cast<std::streamoff>(range.first));
  file.read(answer.body.data(), static_cast<std::streamsize>(range.count));
  if (!file) return errorAnswer(500, "this file cannot be read");
  return answer;
}

}  // namespace kestrova::sandbox
