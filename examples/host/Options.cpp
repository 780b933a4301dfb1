#include "examples/host/Options.h"

#include <cstdio>
#include <filesystem>
#include <functional>
#include <map>
#include <string_view>

namespace host {

namespace {

constexpr std::pair<std::string_view, const char*> kDocuments[] = {
    {"passport", "PASSPORT"}, {"licence", "DRIVERS_LICENSE"}, {"id", "NATIONAL_ID_CARD"}};

std::nullopt_t complain(const std::string& about) {
  std::fprintf(stderr, "kestrova-host: %s\n%s", about.c_str(), Options::kUsage);
  return std::nullopt;
}

}  // namespace

const char* const Options::kUsage =
    "usage: kestrova-host [--camera DEVICE | --face FILE --front FILE --back FILE]\n"
    "                     [--specimens DIRECTORY]\n"
    "                     [--port PORT --authority FILE] [--pictures DIRECTORY]\n"
    "                     [--scripted [--document passport|licence|id] [--country CODE]\n"
    "                                 [--email ADDRESS]]\n"
    "FILE of a camera: a picture, a folder of pictures or a video; without one the drawing in the\n"
    "directory of specimens stands for the camera, without that one the machine's own does. PORT "
    "and\n"
    "FILE: a sandbox elsewhere than at its usual port and store.\n";

std::optional<Options> Options::parse(std::span<char*> arguments) {
  Options options;
  std::string document = "passport";
  std::string camera;
  std::string face;
  std::string front;
  std::string back;
  std::string specimens;
  const std::map<std::string_view, std::string*> texts{
      {"--camera", &camera},
      {"--face", &face},
      {"--front", &front},
      {"--back", &back},
      {"--specimens", &specimens},
      {"--port", &options.port},
      {"--authority", &options.authority},
      {"--pictures", &options.pictures},
      {"--document", &document},
      {"--country", &options.person.country},
      {"--email", &options.person.email},
  };
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string_view argument = arguments[i];
    if (argument == "--scripted") {
      options.isScripted = true;
      continue;
    }
    const auto text = texts.find(argument);
    if (text == texts.end()) return complain("unknown option " + std::string(argument));
    if (++i == arguments.size()) return complain(std::string(argument) + " needs a value");
    *text->second = arguments[i];
  }
  if (!camera.empty() && !(face + front + back).empty()) {
    return complain("--camera and a file that stands for one exclude each other");
  }
  if (!camera.empty()) face = front = back = camera;
  for (const auto& path : {face, front, back, specimens}) {
    if (!path.empty() && !std::filesystem::exists(path)) return complain("there is no " + path);
  }
  options.cameras.face = face;
  options.cameras.front = front;
  options.cameras.back = back;
  options.cameras.specimens = specimens;
  options.person.document.clear();
  for (const auto& [name, identifier] : kDocuments) {
    if (name == document) options.person.document = identifier;
  }
  if (options.person.document.empty()) {
    return complain("the document is passport, licence or id");
  }
  return options;
}

}  // namespace host
