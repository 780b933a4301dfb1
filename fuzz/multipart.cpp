// Any names and contents through the multipart encoder: the sandbox, which reads forms strictly and
// on its own terms, makes out the same parts.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "platform/network/MultipartFormData.h"
#include "platform/network/TemporaryFile.h"
#include "sandbox/MultipartContract.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kestrova;
  std::string_view rest(reinterpret_cast<const char*>(data), size);
  platform::MultipartFormData form;
  std::vector<std::string_view> values;
  // More parts the sandbox does not read.
  constexpr std::size_t kMaximumParts = 64;
  while (!rest.empty() && values.size() < kMaximumParts) {
    const auto nameEnd = std::min(rest.find('\t'), rest.size());
    const auto name = rest.substr(0, nameEnd);
    rest.remove_prefix(std::min(nameEnd + 1, rest.size()));
    const auto valueEnd = std::min(rest.find('\t'), rest.size());
    values.push_back(rest.substr(0, valueEnd));
    rest.remove_prefix(std::min(valueEnd + 1, rest.size()));
    form.append(values.back(), name);
  }
  const auto file = form.encode({});
  if (!file) return 0;
  std::string body(file.value()->size(), '\0');
  if (!file.value()->read(0, body)) std::abort();
  const auto read = sandbox::readMultipart(form.contentType(), body);
  if (values.empty()) return 0;
  if (!read.understood || read.parts.size() != values.size()) std::abort();
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (read.parts[i].data != values[i]) std::abort();
  }
  // What a peer may send: arbitrary bytes under that boundary.
  sandbox::readMultipart(form.contentType(),
                         std::string_view(reinterpret_cast<const char*>(data), size));
  return 0;
}
