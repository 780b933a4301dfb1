#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrova::sandbox {

// One part of a form of type multipart/form-data; views into its body.
struct Part {
  std::string_view head;  // without the empty line
  std::string name;
  std::optional<std::string> fileName;     // of a file's part
  std::optional<std::string> contentType;  // where the part has one
  std::string_view data;
};

struct Multipart {
  std::vector<Part> parts;
  std::vector<std::string> deviations;
  bool understood = true;  // false: no parts could be made out
};

// Reads a body strictly by RFC 7578, boundary and line ends included, and notes what deviates. What
// the parts hold is not judged here.
Multipart readMultipart(std::string_view contentType, std::string_view body);

// The head that the contract gives a part of this kind.
std::string expectedHead(const Part& part);

}  // namespace kestrova::sandbox
