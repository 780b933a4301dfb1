#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <typeinfo>

#include "platform/uikit/UIResponder.h"

namespace kestrova::platform {

// The classes that storyboards and nibs may name. Those of this layer are there from the start,
// others are registered before the first file that names them is loaded. Main thread.
class UIClassRegistry {
 public:
  UIClassRegistry() = delete;

  // Made by its default constructor. Again under the same name: takes its place.
  template <typename Responder>
  static void registerClass(std::string_view name) {
    add(name, typeid(Responder), [] { return std::make_shared<Responder>(); });
  }
  static bool contains(std::string_view name);
  // A new object; null for a name that nobody has registered.
  static std::shared_ptr<UIResponder> make(std::string_view name);
  // What a class is registered as; empty where it is not.
  static std::string nameOf(const std::type_info& type);

 private:
  using Factory = std::function<std::shared_ptr<UIResponder>()>;
  static void add(std::string_view name, const std::type_info& type, Factory factory);
};

}  // namespace kestrova::platform
