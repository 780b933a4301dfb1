#include <cstdio>
#include <exception>
#include <filesystem>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtGui/QGuiApplication>

#include "artwork/AnimatedFile.h"
#include "artwork/BadgeAnimation.h"
#include "artwork/CameraOutline.h"
#include "artwork/CardAnimation.h"
#include "artwork/HeadAnimation.h"
#include "artwork/RoundFlag.h"
#include "artwork/Specimens.h"
#include "artwork/WrittenFile.h"

namespace kestrova::artwork {

namespace {

void drawPictures(const std::string& folder) {
  std::filesystem::create_directories(folder);
  writeGIF(HeadAnimation(), folder + "/headGIF.gif");
  writeGIF(CardAnimation(DocumentSide::front), folder + "/IDGIF.gif");
  writeGIF(CardAnimation(DocumentSide::back), folder + "/backsideIDGIF.gif");
  writeGIF(CardAnimation(DocumentSide::photoPage), folder + "/photoPageGIF.gif");
  writeGIF(BadgeAnimation(), folder + "/verifiedBadge.gif");
  writeCameraOutline(CardSide::front, folder + "/iddocument.png");
  writeCameraOutline(CardSide::back, folder + "/backsideiddocument.png");
}

void cutFlags(const std::string& countries, const std::string& flags, const std::string& folder) {
  QFile file(QString::fromStdString(countries));
  if (!file.open(QIODevice::ReadOnly)) throw std::runtime_error("cannot read " + countries);
  const auto entries = QJsonDocument::fromJson(file.readAll()).array();
  if (entries.isEmpty()) throw std::runtime_error("no countries in " + countries);
  std::filesystem::create_directories(folder);
  for (const auto& entry : entries) {
    const auto name = entry.toObject()["code"].toString().toStdString() + ".svg";
    const auto source = std::filesystem::path(flags) / name;
    if (!std::filesystem::is_regular_file(source)) {
      throw std::runtime_error("a country has no flag, missing is " + source.string());
    }
    writeFile(std::filesystem::path(folder) / name, roundFlag(source));
  }
}

int run(std::span<char*> arguments) {
  const std::string_view word = arguments.size() > 1 ? arguments[1] : "";
  if (word == "pictures" && arguments.size() == 3) {
    drawPictures(arguments[2]);
  } else if (word == "flags" && arguments.size() == 5) {
    cutFlags(arguments[2], arguments[3], arguments[4]);
  } else if (word == "specimens" && arguments.size() == 4) {
    // The texts need the toolkit's fonts; nothing is shown.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    int count = 1;
    const QGuiApplication application(count, arguments.data());
    drawSpecimens(arguments[2], arguments[3]);
  } else {
    std::fputs(
        "usage: kestrova-artwork pictures FOLDER\n"
        "       kestrova-artwork flags COUNTRIES.json FLAGS FOLDER\n"
        "       kestrova-artwork specimens FOLDER TYPEFACES\n",
        stderr);
    return 2;
  }
  return 0;
}

}  // namespace

}  // namespace kestrova::artwork

int main(int argc, char** argv) {
  try {
    return kestrova::artwork::run({argv, static_cast<std::size_t>(argc)});
  } catch (const std::exception& error) {
    std::fprintf(stderr, "kestrova-artwork: %s\n", error.what());
    return 1;
  }
}
