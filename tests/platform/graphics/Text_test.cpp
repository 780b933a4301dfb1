#include <cmath>

#include <QtGui/QFont>
#include <QtGui/QFontDatabase>
#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtGui/QRawFont>

#include "platform/foundation/FileManager.h"
#include "platform/graphics/CTFontManager.h"
#include "platform/graphics/NSLayoutManager.h"
#include "platform/graphics/NSTextStorage.h"
#include "platform/graphics/QtBridge.h"
#include "tests/platform/graphics/Pictures.h"
#include "tests/platform/graphics/WithApplication.h"

namespace kestrova::test {
namespace {

using namespace platform;

TEST(Color, keepsItsComponentsAndConvertsForTheScreen) {
  const auto color = UIColor::displayP3(0.2, 0.4, 0.6, 0.5);
  EXPECT_EQ(color.colorSpace(), UIColor::ColorSpace::displayP3);
  EXPECT_EQ(color.greenComponent(), 0.4);
  EXPECT_EQ(color.withAlphaComponent(1).alphaComponent(), 1);
  // As derived from the primaries of the two spaces.
  EXPECT_NEAR(color.sRGB().redComponent(), 0.10406, 5e-5);
  EXPECT_NEAR(color.sRGB().greenComponent(), 0.40593, 5e-5);
  EXPECT_NEAR(color.sRGB().blueComponent(), 0.61700, 5e-5);
  EXPECT_EQ(UIColor::displayP3(0, 1, 0, 1).sRGB().redComponent(), 0);
  EXPECT_NEAR(UIColor::displayP3(0.5, 0.5, 0.5, 1).sRGB().blueComponent(), 0.5, 1e-6);
  EXPECT_EQ(UIColor::white(0.25, 1), UIColor(0.25, 0.25, 0.25, 1));
  EXPECT_EQ(UIColor(2, -1, 0.5, 1).sRGB(), UIColor(1, 0, 0.5, 1));
}

TEST(AttributedString, mergesAttributesByRangesOfCodeUnits) {
  const auto small = UIFont::systemFont(10);
  const auto bold = UIFont::boldSystemFont(10);
  NSMutableAttributedString text("a😀bc", {small, UIColor::black(), {}});
  EXPECT_EQ(text.length(), 5U);
  text.addAttributes({bold, {}, {}}, {1, 2});
  text.addAttributes({{}, UIColor::blue(), {}}, {2, 2});
  ASSERT_EQ(text.runs().size(), 5U);
  EXPECT_EQ(text.runs()[1], (NSAttributedString::Run{{1, 1}, {bold, UIColor::black(), {}}}));
  EXPECT_EQ(text.runs()[2], (NSAttributedString::Run{{2, 1}, {bold, UIColor::blue(), {}}}));
  EXPECT_EQ(text.attributes(3).font, small);
  EXPECT_EQ(text.attributes(5), NSAttributes{});
  // Runs of the same attributes become one again.
  text.addAttributes({small, UIColor::black(), {}}, {0, NSNotFound});
  EXPECT_EQ(text, NSMutableAttributedString("a😀bc", {small, UIColor::black(), {}}));
  text.addAttributes({bold, {}, {}}, {NSNotFound, 0});
  text.addAttributes({bold, {}, {}}, {9, 4});
  EXPECT_EQ(text.runs().size(), 1U);
}

class TextLayoutTest : public WithApplication {
 protected:
  static NSAttributedString attributed(const std::string& text, double size = 20) {
    return NSAttributedString(text, {UIFont::systemFont(size), UIColor::black(), {}});
  }
  void lay(const NSAttributedString& text, const NSTextContainer& container) {
    NSTextStorage(text).addLayoutManager(manager);
    manager.addTextContainer(container);
  }
  QImage drawn(int width, int height) const {
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    QtBridge::paint(manager, painter, {0, 0});
    return image;
  }
  // The horizontal extent of what is drawn in some rows: first and last column with ink.
  static std::pair<int, int> ink(const QImage& image, int top, int bottom) {
    std::pair<int, int> extent{image.width(), -1};
    for (int y = top; y < std::min(bottom, image.height()); ++y) {
      for (int x = 0; x < image.width(); ++x) {
        if (qGray(image.pixel(x, y)) > 128) continue;
        extent = {std::min(extent.first, x), std::max(extent.second, x)};
      }
    }
    return extent;
  }

  NSLayoutManager manager;
  static constexpr double kWide = 2000;
};

TEST_F(TextLayoutTest, findsTheCharacterThatIsDrawnUnderAPoint) {
  const std::string text = "iWi😀éx";
  for (const auto alignment :
       {NSTextAlignment::left, NSTextAlignment::center, NSTextAlignment::right}) {
    for (const std::size_t target : {0U, 1U, 2U, 6U}) {
      NSMutableAttributedString colored(attributed(text, 30));
      colored.addAttributes({{}, {}, alignment}, {0, colored.length()});
      colored.addAttributes({{}, UIColor::clear(), {}}, {0, colored.length()});
      colored.addAttributes({{}, UIColor::black(), {}}, {target, 1});
      lay(colored, {{300, 60}, 0, 0, NSLineBreakMode::byWordWrapping});
      const auto [left, right] = ink(drawn(300, 60), 0, 60);
      ASSERT_LE(left, right);
      EXPECT_EQ(manager.characterIndex({(left + right) / 2.0, 10}), target);
    }
  }
}

TEST_F(TextLayoutTest, answersTheNearestCharacterOutsideTheText) {
  lay(attributed("first\nlast😀"), {{400, 400}, 0, 0, NSLineBreakMode::byWordWrapping});
  EXPECT_EQ(manager.characterIndex({-50, -50}), 0U);
  EXPECT_EQ(manager.characterIndex({390, 2}), 4U);
  EXPECT_EQ(manager.characterIndex({-5, 390}), 6U);
  // A character of two code units is one character.
  EXPECT_EQ(manager.characterIndex({390, 390}), 10U);
  lay(attributed(""), {{400, 400}, 0, 0, NSLineBreakMode::byWordWrapping});
  EXPECT_EQ(manager.characterIndex({5, 5}), 0U);
}

TEST_F(TextLayoutTest, wrapsAtWordsCharactersOrNotAtAll) {
  const std::string text = "mmmm mmmm mmmm";
  lay(attributed(text), {{kWide, 400}, 0, 0, NSLineBreakMode::byWordWrapping});
  const double lineHeight = manager.usedRect().size.height;
  const double width = manager.usedRect().size.width;
  ASSERT_GT(lineHeight, 20);
  const double narrow = width * 0.6;
  lay(attributed(text), {{narrow, 400}, 0, 0, NSLineBreakMode::byWordWrapping});
  EXPECT_NEAR(manager.usedRect().size.height, 3 * lineHeight, 1);
  EXPECT_EQ(manager.characterIndex({1, lineHeight * 1.5}), 5U);
  EXPECT_EQ(manager.characterIndex({1, lineHeight * 2.5}), 10U);
  lay(attributed(text), {{narrow, 400}, 0, 0, NSLineBreakMode::byCharWrapping});
  EXPECT_NEAR(manager.usedRect().size.height, 2 * lineHeight, 1);
  lay(attributed(text), {{narrow, 400}, 0, 0, NSLineBreakMode::byClipping});
  EXPECT_NEAR(manager.usedRect().size.height, lineHeight, 1);
  // The padding narrows lines and moves them.
  lay(attributed(text), {{width + 1, 400}, 5, 0, NSLineBreakMode::byWordWrapping});
  EXPECT_NEAR(manager.usedRect().size.height, 2 * lineHeight, 1);
  EXPECT_NEAR(manager.usedRect().origin.x, 5, 0.01);
}

TEST_F(TextLayoutTest, keepsToItsLinesAndHeight) {
  const std::string text = "mmmm mmmm mmmm mmmm";
  lay(attributed("mmmm"), {{kWide, 400}, 0, 0, NSLineBreakMode::byWordWrapping});
  const double lineHeight = manager.usedRect().size.height;
  const double narrow = manager.usedRect().size.width + 2;
  lay(attributed(text), {{narrow, 400}, 0, 2, NSLineBreakMode::byWordWrapping});
  EXPECT_TRUE(manager.isTruncated());
  EXPECT_NEAR(manager.usedRect().size.height, 2 * lineHeight, 1);
  EXPECT_EQ(manager.characterIndex({1, 399}), 5U);
  lay(attributed(text), {{narrow, 2.9 * lineHeight}, 0, 0, NSLineBreakMode::byWordWrapping});
  EXPECT_NEAR(manager.usedRect().size.height, 3 * lineHeight, 1);
  lay(attributed(text), {{narrow, 1}, 0, 0, NSLineBreakMode::byWordWrapping});
  EXPECT_NEAR(manager.usedRect().size.height, lineHeight, 1);
  lay(attributed(text), {{narrow, 400}, 0, 4, NSLineBreakMode::byWordWrapping});
  EXPECT_FALSE(manager.isTruncated());
}

TEST_F(TextLayoutTest, endsATruncatedLineInAnEllipsis) {
  const std::string text = "mmmmmmmmmmmmmmmmmmmm";
  for (const double width : {60.0, 123.0, 200.0}) {
    lay(attributed(text), {{width, 100}, 0, 1, NSLineBreakMode::byTruncatingTail});
    EXPECT_TRUE(manager.isTruncated());
    const auto used = manager.usedRect();
    EXPECT_LE(used.maxX(), width);
    EXPECT_GT(used.maxX(), width - 25);
    // The ellipsis is ink at the bottom of the line, where no letter has any at its end.
    const auto [left, right] = ink(drawn(static_cast<int>(width), 40), 17, 22);
    EXPECT_GT(right, used.maxX() - 8);
    EXPECT_LT(manager.characterIndex({width - 1, 10}), text.size());
  }
  lay(attributed("short"), {{200, 100}, 0, 1, NSLineBreakMode::byTruncatingTail});
  EXPECT_FALSE(manager.isTruncated());
  lay(attributed(text), {{3, 100}, 0, 1, NSLineBreakMode::byTruncatingTail});
  EXPECT_LT(manager.characterIndex({1, 1}), text.size());
}

TEST_F(TextLayoutTest, truncatesWhereTheCutWordWouldFitTheLineBefore) {
  // Every small text of wide, narrow and tiny characters at every width.
  for (unsigned shape = 0; shape < 256; ++shape) {
    std::string text;
    for (unsigned i = 0; i < 8; ++i) text += (shape >> i & 1U) != 0 ? "m" : i % 3 == 0 ? "i" : " ";
    NSMutableAttributedString mixed(attributed(text));
    mixed.addAttributes({UIFont::systemFont(2), {}, {}}, {5, 3});
    for (double width = 8; width < 70; width += 3) {
      lay(mixed, {{width, 400}, 0, 2, NSLineBreakMode::byTruncatingTail});
      (void)drawn(2, 2);
      EXPECT_LT(manager.characterIndex({width, 399}), text.size());
    }
  }
}

TEST(TextLayout, isMissingWithoutAnApplication) {
  NSLayoutManager manager;
  NSTextStorage(NSAttributedString("text")).addLayoutManager(manager);
  manager.addTextContainer({{100, 100}});
  EXPECT_EQ(manager.characterIndex({1, 1}), NSNotFound);
  EXPECT_EQ(manager.usedRect(), CGRect{});
}

// A face that no other test registers: the process keeps them.
Result<CGFont> face(const std::string& name) {
  auto data = FileManager::contents(std::filesystem::path(TYPEFACES) / name);
  if (!data) return data.error();
  return CGFont::make(CGDataProvider(std::move(data).value()));
}

TEST(FontRegistry, takesAFontOnceAndWithoutAnApplication) {
  EXPECT_FALSE(UIFont::make("Exo-Thin", 12));
  const auto thin = face("100Thin/Exo_100Thin.ttf");
  ASSERT_TRUE(thin) << thin.error().localizedDescription;
  EXPECT_EQ(thin.value().postScriptName(), "Exo-Thin");
  EXPECT_TRUE(CTFontManagerRegisterGraphicsFont(thin.value()));
  EXPECT_FALSE(CTFontManagerRegisterGraphicsFont(thin.value()));
  const auto font = UIFont::make("Exo-Thin", 12.5);
  ASSERT_TRUE(font);
  EXPECT_EQ(font->pointSize(), 12.5);
}

TEST(FontRegistry, refusesWhatIsNoFont) {
  const auto file =
      FileManager::contents(std::filesystem::path(TYPEFACES) / "100Thin/Exo_100Thin.ttf");
  const std::string whole(file.value().view());
  for (const std::string& bytes : {std::string(), std::string(500, 'x'), whole.substr(0, 40)}) {
    EXPECT_FALSE(CGFont::make(CGDataProvider(asData(bytes))));
  }
  // Any cut of the directory and any flipped byte of it: an error or a name, never a crash.
  for (std::size_t i = 0; i < 400; ++i) {
    auto flipped = whole;
    flipped[i] = static_cast<char>(~flipped[i]);
    (void)CGFont::make(CGDataProvider(asData(flipped)));
    EXPECT_FALSE(CGFont::make(CGDataProvider(asData(whole.substr(0, i)))));
  }
}

class QtFontTest : public WithApplication {};

TEST_F(QtFontTest, drawsWithTheVeryFaceThatIsNamed) {
  for (const auto* const style :
       {"300Light", "400Regular", "600SemiBold", "800ExtraBold", "900Black"}) {
    const auto font = face(std::string(style) + "/Exo_" + style + ".ttf").value();
    (void)CTFontManagerRegisterGraphicsFont(font);
    for (const double size : {14.0, 16.6}) {
      const auto made = QtBridge::font(*UIFont::make(font.postScriptName(), size));
      const auto raw = QRawFont::fromFont(made);
      const QRawFont wanted(
          QByteArray(font.file().data(), static_cast<qsizetype>(font.file().size())), size);
      EXPECT_EQ(raw.fontTable("name"), wanted.fontTable("name")) << style;
      EXPECT_EQ(raw.fontTable("glyf"), wanted.fontTable("glyf")) << style;
      EXPECT_EQ(raw.pixelSize(), std::round(size));
    }
  }
}

TEST_F(QtFontTest, mapsTheSystemsWeights) {
  EXPECT_EQ(QtBridge::font(UIFont::systemFont(14)).weight(), QFont::Normal);
  EXPECT_EQ(QtBridge::font(UIFont::systemFont(14, 0.3)).weight(), QFont::DemiBold);
  EXPECT_EQ(QtBridge::font(UIFont::boldSystemFont(14)).weight(), QFont::Bold);
  EXPECT_EQ(QtBridge::font(UIFont::systemFont(14, -5)).weight(), QFont::Thin);
  EXPECT_EQ(QtBridge::font(UIFont::systemFont(14, 5)).weight(), QFont::Black);
  const auto between = QtBridge::font(UIFont::systemFont(14, 0.35)).weight();
  EXPECT_TRUE(between > QFont::DemiBold && between < QFont::Bold);
  EXPECT_EQ(QtBridge::font(UIFont::systemFont(14)).pixelSize(), 14);
}

TEST_F(QtFontTest, paintsPicturesOnTheDevicesPixels) {
  QImage image(8, 4, QImage::Format_ARGB32_Premultiplied);
  image.setDevicePixelRatio(2);
  image.fill(Qt::white);
  QPainter painter(&image);
  painter.translate(1, 0);
  QtBridge::paint(picture(2, {0xffff0000, 0xff0000ff}), painter, {{0.1, 0}, {2, 1}});
  painter.end();
  EXPECT_EQ(image.pixel(1, 0), 0xffffffff);
  EXPECT_EQ(image.pixel(2, 1), 0xffff0000);
  EXPECT_EQ(image.pixel(5, 0), 0xff0000ff);
  EXPECT_EQ(image.pixel(6, 0), 0xffffffff);
  EXPECT_EQ(image.pixel(2, 2), 0xffffffff);
}

}  // namespace
}  // namespace kestrova::test
