// Any keys and values through the form encoder: the sandbox, which reads forms on its own terms,
// finds the same pairs in the same order.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/network/FormEncoding.h"
#include "sandbox/FormContract.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kestrova;
  std::string_view rest(reinterpret_cast<const char*>(data), size);
  const auto take = [&rest] {
    const auto end = std::min(rest.find('\n'), rest.size());
    std::string piece(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return piece;
  };
  platform::JSONDictionary parameters;
  while (!rest.empty()) {
    auto key = take();
    parameters.insert_or_assign(std::move(key), take());
  }
  const auto body = platform::formEncoded(parameters);
  const auto fields = sandbox::readForm("application/x-www-form-urlencoded; charset=utf-8", body);
  if (fields.pairs.size() != parameters.size()) std::abort();
  auto expected = parameters.begin();
  for (const auto& [key, value] : fields.pairs) {
    if (key != expected->first || value != *expected->second.text()) std::abort();
    ++expected;
  }
  return 0;
}
