#include <array>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QRegularExpression>
#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtSvg/QSvgRenderer>
#include <gtest/gtest.h>

namespace {

const std::string kBundle = KESTROVA_BUNDLE_DIR "/";

struct Closer {
  void operator()(FILE* pipe) const { ::pclose(pipe); }
};

std::string outputOf(const std::string& command) {
  const std::unique_ptr<FILE, Closer> pipe(::popen(command.c_str(), "r"));
  std::string output;
  std::array<char, 4096> part{};
  while (pipe && std::fgets(part.data(), part.size(), pipe.get())) output += part.data();
  return output;
}

// What the groups of `pattern` hold, wherever it matches.
std::vector<double> numbers(const std::string& text, const char* pattern) {
  std::vector<double> found;
  for (const auto& match : QRegularExpression(pattern).globalMatch(QString::fromStdString(text))) {
    for (const auto& group : match.capturedTexts().mid(1)) found.push_back(group.toDouble());
  }
  return found;
}

std::vector<std::pair<std::string, std::string>> countries() {
  QFile file(QString::fromStdString(kBundle + "countries.json"));
  EXPECT_TRUE(file.open(QIODevice::ReadOnly));
  std::vector<std::pair<std::string, std::string>> found;
  for (const auto& each : QJsonDocument::fromJson(file.readAll()).array()) {
    found.emplace_back(each.toObject()["code"].toString().toStdString(),
                       each.toObject()["name"].toString().toStdString());
  }
  return found;
}

QImage rendered(const std::string& file, int side) {
  QSvgRenderer renderer(QString::fromStdString(file));
  QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  if (!renderer.isValid()) return image;
  QPainter painter(&image);
  renderer.render(&painter);
  return image;
}

class Animations : public testing::TestWithParam<std::string> {};

}  // namespace

// Read back by a decoder that shares nothing with the one that the SDK uses.
TEST_P(Animations, AreSmallPlayAtOnceAndLoopForEver) {
  const auto file = kBundle + GetParam() + ".gif";
  const auto listing = outputOf("gifsicle --info '" + file + "' 2>&1");
  const auto screen = numbers(listing, R"(logical screen (\d+)x(\d+))");
  const auto images = numbers(listing, R"((\d+) images)");
  const auto delays = numbers(listing, R"(delay ([\d.]+)s)");
  ASSERT_EQ(2U, screen.size()) << listing;
  ASSERT_EQ(1U, images.size()) << listing;
  EXPECT_GE(images[0], 24);
  EXPECT_LE(screen[0] * screen[1] * images[0], 2'000'000);
  EXPECT_LE(std::filesystem::file_size(file), 250'000U);
  EXPECT_EQ(static_cast<std::size_t>(images[0]), delays.size());
  for (const double delay : delays) EXPECT_GE(delay, 0.1);
  EXPECT_NE(std::string::npos, listing.find("loop forever"));
}

INSTANTIATE_TEST_SUITE_P(Bundle, Animations,
                         testing::Values("headGIF", "IDGIF", "backsideIDGIF", "photoPageGIF",
                                         "verifiedBadge"),
                         [](const auto& each) { return each.param; });

// Every frame that the independent decoder composes has the ground in its corner.
TEST(Animations, StandOnTheColourOfTheirPlace) {
  for (const auto& [name, ground] :
       {std::pair{"headGIF", "E8F0FF"}, {"IDGIF", "E8F0FF"}, {"verifiedBadge", "FFFFFF"}}) {
    const auto corners =
        outputOf("convert '" + kBundle + name +
                 ".gif' -coalesce -crop 1x1+0+0 -depth 8 txt:- | grep -c '#" + ground + "'");
    const auto frames = outputOf("identify '" + kBundle + name + ".gif' | wc -l");
    EXPECT_EQ(std::stoi(frames), std::stoi(corners)) << name;
  }
}

TEST(Animations, OfTheBadgeRestInTheEnd) {
  const auto delays =
      numbers(outputOf("gifsicle --info '" + kBundle + "verifiedBadge.gif'"), R"(delay ([\d.]+)s)");
  ASSERT_FALSE(delays.empty());
  EXPECT_GE(delays.back() * 0.3, 30);
}

TEST(Countries, AreAllThatHaveACodeEachOnce) {
  std::set<std::string> codes;
  std::set<std::string> names;
  for (const auto& [code, name] : countries()) {
    codes.insert(code);
    names.insert(name);
    EXPECT_TRUE(QRegularExpression("^[a-z]{2}$").match(QString::fromStdString(code)).hasMatch());
    EXPECT_EQ(QString::fromStdString(name).toLower().toStdString(), name);
  }
  EXPECT_EQ(249U, countries().size());
  EXPECT_EQ(249U, codes.size());
  EXPECT_EQ(249U, names.size());
}

TEST(Countries, ArePinnedInTheOrderThatIsShown) {
  const std::set<std::string> pinned{"de", "gb", "us", "fr", "es"};
  std::vector<std::string> shown;
  for (const auto& [code, name] : countries()) {
    if (pinned.contains(code)) shown.insert(shown.begin(), code);
  }
  EXPECT_EQ((std::vector<std::string>{"us", "gb", "de", "fr", "es"}), shown);
}

TEST(Countries, HaveARoundFlagEach) {
  constexpr int kSide = 56;
  for (const auto& [code, name] : countries()) {
    const auto flag = rendered(kBundle + code + ".svg", kSide);
    // Areas that meet leave a faint seam.
    EXPECT_LE(220, qAlpha(flag.pixel(kSide / 2, kSide / 2))) << code;
    EXPECT_LE(220, qAlpha(flag.pixel(kSide / 2, 1))) << code;
    EXPECT_LE(220, qAlpha(flag.pixel(1, kSide / 2))) << code;
    EXPECT_EQ(0, qAlpha(flag.pixel(6, 6))) << code;
    EXPECT_EQ(0, qAlpha(flag.pixel(kSide - 7, kSide - 7))) << code;
  }
}

TEST(Drawings, AllRender) {
  for (const auto& entry : std::filesystem::directory_iterator(kBundle)) {
    if (entry.path().extension() != ".svg") continue;
    const auto image = rendered(entry.path(), 48);
    bool isEmpty = true;
    for (int i = 0; i < 48 * 48; ++i) isEmpty = isEmpty && qAlpha(image.pixel(i % 48, i / 48)) == 0;
    EXPECT_FALSE(isEmpty) << entry.path();
  }
}

TEST(CameraOutlines, AreTransparentInsideAndDiffer) {
  const QImage front(QString::fromStdString(kBundle + "iddocument.png"));
  const QImage back(QString::fromStdString(kBundle + "backsideiddocument.png"));
  for (const auto& image : {front, back}) {
    EXPECT_EQ(QSize(900, 1200), image.size());
    EXPECT_EQ(0, qAlpha(image.pixel(10, 10)));
    EXPECT_EQ(0, qAlpha(image.pixel(800, 580)));
    EXPECT_EQ(qRgba(255, 255, 255, 255), image.pixel(100, 332));
  }
  EXPECT_NE(front, back);
}
