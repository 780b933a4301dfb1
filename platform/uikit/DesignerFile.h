#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "platform/uikit/NibFaults.h"

namespace kestrova::platform {

// A property that is set on a view rather than by the toolkit; the value as the file writes it.
struct DesignerProperty {
  std::string name;
  std::string text;
};

struct DesignerObject {
  // One of UIClassRegistry's; Designer's own plain classes stand for ours.
  std::string className;
  std::string name;
  std::vector<DesignerProperty> properties;
};

// A file of the toolkit's Designer, checked and taken apart: the form, which places the objects and
// goes to the toolkit's form builder, and what is set on the objects. A value.
class DesignerFile {
 public:
  // Bytes, objects, and objects and layouts within each other that a file may have.
  static constexpr std::size_t kMaximumSize = 1 << 20;
  static constexpr std::size_t kMaximumObjects = 2000;
  static constexpr int kMaximumDepth = 60;

  // What is wrong is added to `faults`, and the file is of no use then.
  static DesignerFile read(const std::filesystem::path& path, NibFaults& faults);
  static DesignerFile parse(std::string name, std::string_view bytes, NibFaults& faults);

  // The name in the folder, for messages.
  const std::string& name() const { return name_; }
  // Each name occurs once. The first object holds the others.
  const std::vector<DesignerObject>& objects() const { return objects_; }
  // Null where there is none of that name.
  const DesignerObject* object(std::string_view name) const;
  // XML with the classes, names and places alone.
  const std::string& form() const { return form_; }

 private:
  class Parser;

  std::string name_;
  std::vector<DesignerObject> objects_;
  std::string form_;
};

}  // namespace kestrova::platform
