#include "artwork/Specimens.h"

#include <array>
#include <cmath>
#include <filesystem>
#include <stdexcept>

#include <QtGui/QFontDatabase>
#include <QtGui/QImage>
#include <QtGui/QPainter>

#include "artwork/Head.h"
#include "artwork/SpecimenDocument.h"
#include "artwork/Strokes.h"

namespace kestrova::artwork {

namespace {

constexpr const char* kCountry = "REPUBLIC OF ALDERMERE";
constexpr double kWidth = 1240;
constexpr double kCardHeight = 782;      // of a card, 85.6 by 54 millimetres
constexpr double kPassportHeight = 873;  // 125 by 88

void save(const QImage& image, const std::filesystem::path& file) {
  if (!image.save(QString::fromStdString(file.string()), "PNG")) {
    throw std::runtime_error("cannot write " + file.string());
  }
}

std::string registerTypeface(const std::string& typefaces) {
  std::string family;
  for (const auto* face : {"500Medium/Exo_500Medium.ttf", "600SemiBold/Exo_600SemiBold.ttf",
                           "700Bold/Exo_700Bold.ttf", "900Black/Exo_900Black.ttf"}) {
    const std::string file = typefaces + "/" + face;
    const int found = QFontDatabase::addApplicationFont(QString::fromStdString(file));
    if (found < 0) throw std::runtime_error("cannot read " + file);
    if (family.empty()) family = "Exo";
  }
  return family;
}

void drawDocument(const SpecimenDocument& document, const std::string& family,
                  const std::filesystem::path& file) {
  QImage image(1500, 2000, QImage::Format_RGB32);
  QPainter painter(&image);
  painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
  QLinearGradient desk(0, 0, 1500, 2000);
  desk.setColorAt(0, QColor(0xDE, 0xD3, 0xC4));
  desk.setColorAt(1, QColor(0xC9, 0xBA, 0xA6));
  painter.fillRect(image.rect(), desk);
  // Held as the camera's outline asks for it.
  constexpr double kSize = 0.88;
  painter.translate(750, 1000);
  painter.scale(kSize, kSize);
  drawSpecimen(painter, document, family);
  painter.end();
  save(image, file);
}

void drawFaces(const std::filesystem::path& folder) {
  constexpr int kFrames = 40;
  constexpr double kFarthest = 0.55;
  std::filesystem::create_directories(folder);
  for (int frame = 0; frame < kFrames; ++frame) {
    QImage image(720, 1280, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient wall(0, 0, 720, 1280);
    wall.setColorAt(0, QColor(0xF4, 0xF1, 0xEA));
    wall.setColorAt(1, QColor(0xD8, 0xDF, 0xE8));
    painter.fillRect(image.rect(), wall);
    // The shoulders go on below the picture.
    painter.translate(360, 690);
    painter.scale(5.2, 5.2);
    drawHead(painter, kFarthest * std::sin(2 * M_PI * frame / kFrames));
    painter.end();
    const auto name = QString("%1.png").arg(frame, 2, 10, QChar('0')).toStdString();
    save(image, folder / name);
  }
}

}  // namespace

void drawSpecimens(const std::string& folder, const std::string& typefaces) {
  const std::filesystem::path place(folder);
  std::filesystem::create_directories(place);
  const std::string family = registerTypeface(typefaces);
  const std::vector<SpecimenField> person{
      {"Surname", "WINTER"},        {"Given names", "ADA MARIE"}, {"Date of birth", "14 MAR 1991"},
      {"Nationality", "ALDERMERE"}, {"Document no.", "X0000000"}, {"Valid until", "01 JAN 2031"}};
  const SpecimenDocument documents[] = {
      {kCountry,
       "PASSPORT",
       kWidth,
       kPassportHeight,
       0xF3ECF4,
       0x5B2A5E,
       true,
       person,
       {"P<ALDWINTER<<ADA<MARIE<<<<<<<<<<<<<<<<<<<<<<",
        "X0000000<0ALD9103140F3101018<<<<<<<<<<<<<<00"}},
      {kCountry, "DRIVING LICENCE", kWidth, kCardHeight, 0xFBEFEF, 0xA23B4E, true, person, {}},
      {kCountry,
       "DRIVING LICENCE",
       kWidth,
       kCardHeight,
       0xFBEFEF,
       0xA23B4E,
       false,
       {{"Class AM", "14 MAR 2007"},
        {"Conditions", "NONE"},
        {"Class B", "02 JUN 2009"},
        {"Issued by", "CITY OF LOWMERE"}},
       {}},
      {kCountry, "IDENTITY CARD", kWidth, kCardHeight, 0xEAF3F0, 0x1E5F57, true, person, {}},
      {kCountry,
       "IDENTITY CARD",
       kWidth,
       kCardHeight,
       0xEAF3F0,
       0x1E5F57,
       false,
       {{"Place of birth", "LOWMERE"},
        {"Height", "1.68 M"},
        {"Address", "1 HARBOUR LANE"},
        {"Issued by", "CITY OF LOWMERE"}},
       {"IDALDX0000000<0<<<<<<<<<<<<<<<", "9103140F3101018ALD<<<<<<<<<<<0",
        "WINTER<<ADA<MARIE<<<<<<<<<<<<<"}}};
  const char* const names[] = {"passport.png", "licence-front.png", "licence-back.png",
                               "id-front.png", "id-back.png"};
  static_assert(std::size(documents) == std::size(names));
  for (std::size_t i = 0; i < std::size(names); ++i) {
    drawDocument(documents[i], family, place / names[i]);
  }
  drawFaces(place / "face");
}

}  // namespace kestrova::artwork
