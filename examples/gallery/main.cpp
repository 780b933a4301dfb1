// Every component of the interface in every state: as a window, or as pictures without a display.

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <span>
#include <string>

#include <QtWidgets/QApplication>

#include "examples/gallery/GalleryPage.h"
#include "examples/gallery/GalleryStage.h"
#include "examples/gallery/HostileHost.h"
#include "platform/uikit/AnimationClock.h"
#include "platform/uikit/UIViewController.h"

namespace {

using namespace kestrova;

constexpr auto kUsage =
    "usage: kestrova-gallery [--hostile] [--page NAME] [--pictures DIRECTORY [--scale 1|2|3]]\n"
    "--pictures   writes every page, or one, at three sizes, and ends\n"
    "--hostile    the application has a style sheet, colours and a font of its own\n";

struct Size {
  const char* name;
  platform::CGSize points;
};
constexpr Size kSizes[] = {
    {"375x667", {375, 667}}, {"320x568", {320, 568}}, {"820x1180", {820, 1180}}};

struct Options {
  bool isValid = true;
  bool isHostile = false;
  std::string page;
  std::string pictures;
  std::string scale = "2";
};

Options parse(std::span<char*> arguments) {
  Options options;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string option = arguments[i];
    if (option == "--hostile") {
      options.isHostile = true;
      continue;
    }
    std::string* const value = option == "--page"       ? &options.page
                               : option == "--pictures" ? &options.pictures
                               : option == "--scale"    ? &options.scale
                                                        : nullptr;
    if (!value || ++i == arguments.size()) {
      options.isValid = false;
      break;
    }
    *value = arguments[i];
  }
  return options;
}

const gallery::GalleryPage* pageNamed(const std::string& name) {
  for (const auto& page : gallery::galleryPages()) {
    if (page.name == name) return &page;
  }
  return nullptr;
}

int writePictures(const Options& options) {
  platform::AnimationClock::shared().useManualTime();
  for (const auto& [sizeName, size] : kSizes) {
    const auto folder = std::filesystem::path(options.pictures) / sizeName;
    std::filesystem::create_directories(folder);
    for (const auto& page : gallery::galleryPages()) {
      if (!options.page.empty() && page.name != options.page) continue;
      const std::string file = (folder / (page.name + ".png")).string();
      gallery::GalleryStage stage(size, page.make());
      gallery::GalleryStage::settle(page.pictureAfter);
      if (!stage.save(file)) {
        std::fprintf(stderr, "kestrova-gallery: cannot write %s\n", file.c_str());
        return 1;
      }
    }
  }
  return 0;
}

}  // namespace

int main(int count, char** arguments) {
  const Options options = parse(std::span(arguments, std::size_t(count)).subspan(1));
  if (!options.isValid || (!options.page.empty() && !pageNamed(options.page))) {
    std::fputs(kUsage, stderr);
    return 2;
  }
  if (!options.pictures.empty()) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_SCALE_FACTOR", options.scale.c_str());
  }
  QApplication application(count, arguments);
  if (options.isHostile) gallery::makeHostile(application);
  if (!options.pictures.empty()) return writePictures(options);
  const auto* const page = pageNamed(options.page);
  gallery::GalleryStage stage(kSizes[0].points, page ? page->make() : nullptr);
  return QApplication::exec();
}
