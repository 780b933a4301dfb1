#include "platform/graphics/UIImage.h"

#include <array>
#include <cmath>
#include <thread>

#include <sys/resource.h>

#include "platform/graphics/GraphicsError.h"
#include "platform/graphics/UIGraphicsImageContext.h"
#include "tests/platform/graphics/Pictures.h"
#include "tests/platform/graphics/WithApplication.h"

namespace kestrova::test {
namespace {

using namespace platform;
using namespace std::string_literals;

class ImageFileTest : public PictureTest {
 protected:
  static bool hasCode(const NSError& error, GraphicsErrorCode code) {
    return error.domain == kGraphicsErrorDomain && error.code == static_cast<int>(code);
  }

  // `isDeep` for files of 16 bits a channel.
  void expectSamePixels(const std::string& name, int tolerance, bool isDeep = false) const {
    const auto image = decode(name);
    ASSERT_TRUE(image) << image.error().localizedDescription;
    run("ffmpeg -v error -y -i " + name + " -f rawvideo -pix_fmt " +
        (isDeep ? "rgba64le" : "rgba") + " raw");
    const auto raw = bytes("raw");
    std::string rgba = isDeep ? "" : raw;
    for (std::size_t i = 0; isDeep && i + 1 < raw.size(); i += 2) {
      const auto value = static_cast<unsigned char>(raw[i]) +
                         256 * static_cast<unsigned>(static_cast<unsigned char>(raw[i + 1]));
      rgba += static_cast<char>((value * 255 + 32767) / 65535);
    }
    EXPECT_LE(greatestDifference(image.value()->pixels(), rgba), tolerance) << name;
  }

  // A JPEG file with an EXIF block that states an orientation in 16 or 32 bits.
  static std::string oriented(std::string jpeg, int orientation, bool bigEndian, bool isLong) {
    const auto value = std::string(1, static_cast<char>(orientation));
    auto exif = "\xff\xe1\0\x22"s + "Exif\0\0"s;
    if (bigEndian) {
      exif += "MM\0*\0\0\0\10\0\1\1\x12\0"s + (isLong ? "\4" : "\3") + "\0\0\0\1"s +
              (isLong ? "\0\0\0"s + value : "\0"s + value + "\0\0"s);
    } else {
      exif +=
          "II*\0\10\0\0\0\1\0\x12\1"s + (isLong ? "\4" : "\3") + "\0\1\0\0\0"s + value + "\0\0\0"s;
    }
    return jpeg.insert(2, exif + "\0\0\0\0"s);
  }
};

TEST_F(ImageFileTest, readsPNGFilesOfEveryKindAsAnotherDecoderDoes) {
  const std::array formats{"rgb24", "rgba",     "gray",   "ya8",     "pal8",
                           "monob", "gray16be", "ya16be", "rgb48be", "rgba64be"};
  run("convert -size 61x47 plasma:red-blue \\( -size 61x47 radial-gradient:white-black \\) "
      "-alpha off -compose CopyOpacity -composite source.png");
  for (const std::string format : formats) {
    const bool isDeep = format.ends_with("be");
    run("ffmpeg -v error -y -i source.png -pix_fmt " + format + " -pred mixed plain.png");
    expectSamePixels("plain.png", 0, isDeep);
    run("convert plain.png -interlace PNG interlaced.png");
    expectSamePixels("interlaced.png", 0, isDeep);
  }
}

TEST_F(ImageFileTest, readsPNGFilesWithPalettesAndTransparentColours) {
  for (const auto* const size : {"1x1", "3x200", "130x5"}) {
    run("convert -size "s + size + " plasma:red-blue -colors 13 PNG8:palette.png");
    expectSamePixels("palette.png", 0);
    run("convert -size "s + size +
        " pattern:checkerboard -colors 3 -transparent '#999999' -interlace PNG PNG8:clear.png");
    expectSamePixels("clear.png", 0);
    run("convert -size "s + size + " gradient:black-white -depth 2 -colorspace Gray grey.png");
    expectSamePixels("grey.png", 0);
  }
}

TEST_F(ImageFileTest, readsJPEGFilesAsAnotherDecoderDoes) {
  run("convert -size 83x61 plasma:red-blue -blur 0x2 source.png");
  const std::array settings{"-quality 95 -sampling-factor 4:4:4", "-quality 90",
                            "-quality 90 -interlace JPEG", "-colorspace Gray",
                            "-define jpeg:restart-interval=4"};
  for (const auto* const setting : settings) {
    run("convert source.png "s + setting + " picture.jpg");
    const auto image = decode("picture.jpg");
    ASSERT_TRUE(image);
    EXPECT_TRUE(image.value()->isOpaque());
    run("convert picture.jpg -depth 8 rgba:raw");
    EXPECT_LE(greatestDifference(image.value()->pixels(), bytes("raw")), 1) << setting;
  }
  // Of an independent decoder, colours at full resolution and rounding apart.
  run("convert source.png -quality 95 -sampling-factor 4:4:4 picture.jpg");
  expectSamePixels("picture.jpg", 4);
  run("convert source.png -colorspace CMYK -quality 95 inks.jpg");
  const auto inks = decode("inks.jpg");
  ASSERT_TRUE(inks);
  run("convert inks.jpg -colorspace sRGB -depth 8 rgba:raw");
  EXPECT_LE(greatestDifference(inks.value()->pixels(), bytes("raw")), 3);
}

TEST_F(ImageFileTest, turnsPicturesUprightAsTheirFilesSay) {
  run("convert -size 24x16 gradient:red-blue \\( -size 24x8 gradient:white-lime \\) -gravity north "
      "-composite \\( -size 8x16 xc:yellow \\) -gravity west -composite -sampling-factor 4:4:4 "
      "plain.jpg");
  const auto plain = bytes("plain.jpg");
  for (int orientation = 0; orientation <= 9; ++orientation) {
    std::ofstream(folder.path() / "turned.jpg") << oriented(plain, orientation, false, false);
    run("convert turned.jpg -auto-orient -depth 8 rgba:raw");
    for (const int form : {0, 1, 2, 3}) {
      SCOPED_TRACE(4 * orientation + form);
      const auto file = oriented(plain, orientation, form % 2 != 0, form >= 2);
      const auto image = UIImage::make(asData(file));
      ASSERT_TRUE(image);
      const auto size = image.value().size();
      auto context = UIGraphicsImageContext::begin(size, false, 1);
      ASSERT_TRUE(image.value().draw({{}, size}, *context));
      EXPECT_EQ(size.width, orientation >= 5 && orientation <= 8 ? 16 : 24);
      const auto drawn = *context->takeImage();
      EXPECT_LE(greatestDifference(drawn.cgImage().value()->pixels(), bytes("raw")), 1);
      const auto png = UIImagePNGRepresentation(image.value());
      EXPECT_EQ(pixelsOf(UIImage::make(asData(png.value().view())).value()), pixelsOf(drawn));
    }
  }
}

TEST_F(ImageFileTest, AcceptsJPEGWithoutEndMarkerIfAllRowsAreThere) {
  const auto streamed = [](const UIImage& image) {
    auto context = UIGraphicsImageContext::begin({20, 15}, false, 1);
    const bool isDrawn = static_cast<bool>(image.draw({{}, {20, 15}}, *context));
    return isDrawn ? pixelsOf(*context->takeImage()) : std::vector<std::uint32_t>();
  };
  for (const auto* const setting :
       {"", "-interlace JPEG", "-define jpeg:restart-interval=3", "-colorspace Gray"}) {
    run("convert -seed 7 -size 40x30 plasma:red-blue "s + setting + " a.jpg");
    const auto whole = bytes("a.jpg");
    const auto original = UIImage::make(asData(whole)).value();
    const auto scaled = streamed(original);
    ASSERT_FALSE(scaled.empty());
    const auto first = whole.find("\xff\xda");
    for (auto length = first; length < whole.size(); ++length) {
      for (const auto& filler : {""s, std::string(512, '\0')}) {
        const auto image = UIImage::make(asData(whole.substr(0, length) + filler));
        const bool isWhole = length + 2 >= whole.size();
        const auto what = setting + " cut to "s + std::to_string(length) + " of " +
                          std::to_string(whole.size()) + (filler.empty() ? "" : ", zeros");
        if (!image && !isWhole) continue;
        ASSERT_TRUE(image) << what;
        ASSERT_EQ(streamed(image.value()), isWhole ? scaled : std::vector<std::uint32_t>()) << what;
        ASSERT_EQ(pixelsOf(image.value()),
                  isWhole ? pixelsOf(original) : std::vector<std::uint32_t>())
            << what;
      }
    }
  }
}

TEST_F(ImageFileTest, failsInOrderOnFilesThatBreakOff) {
  run("convert -size 40x30 plasma:red-blue -interlace PNG -strip a.png");
  run("convert -size 40x30 plasma:red-blue -alpha set -strip b.png");
  run("convert -size 40x30 plasma:red-blue c.jpg");
  for (const auto* const name : {"a.png", "b.png", "c.jpg"}) {
    const auto whole = bytes(name);
    ASSERT_TRUE(decode(name));
    for (std::size_t length = 0; length + 40 < whole.size(); ++length) {
      const auto image = UIImage::make(asData(whole.substr(0, length)));
      if (!image) continue;
      const auto bitmap = image.value().cgImage();
      ASSERT_FALSE(bitmap) << name << " cut to " << length;
      EXPECT_TRUE(hasCode(bitmap.error(), GraphicsErrorCode::damaged));
      auto context = UIGraphicsImageContext::begin({40, 30}, false, 1);
      EXPECT_FALSE(image.value().draw({{}, {20, 15}}, *context));
      EXPECT_FALSE(context->takeImage());
      EXPECT_FALSE(UIImagePNGRepresentation(image.value()));
    }
  }
}

TEST_F(ImageFileTest, refusesForeignFilesAndSizesBeyondTheLimit) {
  for (const auto& other : {""s, "\xff\xd8\xff"s, "\x89PNG\r\n\x1a\n"s, "GIF89a"s}) {
    EXPECT_TRUE(hasCode(UIImage::make(asData(other)).error(), GraphicsErrorCode::unknownFormat));
  }
  run("ffmpeg -v error -f lavfi -i color=red:s=16x16 -frames:v 1 -bitexact small.jpg");
  auto jpeg = bytes("small.jpg");
  const auto frame = jpeg.find("\xff\xc0");
  jpeg.replace(frame + 5, 4, "\xff\xdc\xff\xdc");
  EXPECT_TRUE(hasCode(UIImage::make(asData(jpeg)).error(), GraphicsErrorCode::tooLarge));
  // 60000 pixels square with a right checksum, and a size that is allowed but not in the file.
  const auto head = [](const std::string& size, const std::string& sum) {
    return "\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR"s + size + "\10\2\0\0\0"s + sum +
           "\0\0\0\0IDAT\x35\xaf\6\x1e"s;
  };
  EXPECT_TRUE(
      hasCode(UIImage::make(asData(head("\0\0\xea\x60\0\0\xea\x60"s, "\x0f\xb0\xe2\x15"s))).error(),
              GraphicsErrorCode::tooLarge));
  EXPECT_TRUE(
      hasCode(UIImage::make(asData(head("\0\0\x17\x70\0\0\x17\x70"s, "\x6c\x36\x10\x14"s))).error(),
              GraphicsErrorCode::damaged));
}

TEST_F(ImageFileTest, takesNoMemoryForWhatItDoesNotShow) {
  // Compressed texts, of a megabyte each.
  run("convert -size 4x4 xc:red plain.png && python3 -c \"\nimport struct, zlib\n"
      "text = b'zTXtk' + bytes(2) + zlib.compress(bytes(1000000))\n"
      "chunk = struct.pack('>I', len(text) - 4) + text + struct.pack('>I', zlib.crc32(text))\n"
      "file = open('plain.png', 'rb').read()\n"
      "open('texts.png', 'wb').write(file[:33] + 900 * chunk + file[33:])\"");
  const auto peak = [] {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
  };
  const auto before = peak();
  ASSERT_TRUE(decode("texts.png"));
  EXPECT_LT(peak() - before, 100);
}

TEST_F(ImageFileTest, refusesScansWithoutEnd) {
  run("convert -size 40x30 plasma:red-blue -interlace JPEG a.jpg");
  const auto whole = bytes("a.jpg");
  const auto scan =
      whole.substr(whole.rfind("\xff\xda"), whole.size() - 2 - whole.rfind("\xff\xda"));
  auto file = whole.substr(0, whole.size() - 2);
  for (int i = 0; i < 60; ++i) file += scan;
  file += "\xff\xd9";
  EXPECT_FALSE(UIImage::make(asData(file)).value().cgImage());
}

TEST_F(ImageFileTest, survivesAnyFlippedByte) {
  run("convert -size 12x9 plasma:red-blue -interlace PNG a.png");
  run("convert -size 12x9 plasma:red-blue -interlace JPEG b.jpg");
  for (const auto* const name : {"a.png", "b.jpg"}) {
    const auto whole = bytes(name);
    for (std::size_t i = 0; i < whole.size(); ++i) {
      auto flipped = whole;
      flipped[i] = static_cast<char>(~flipped[i]);
      const auto image = UIImage::make(asData(flipped));
      if (image && image.value().size().width * image.value().size().height < 1e6) {
        (void)image.value().cgImage();
      }
    }
  }
}

TEST_F(ImageFileTest, writesPNGFilesThatAnotherDecoderReadsTheSame) {
  run("convert -size 61x47 plasma:red-blue -depth 8 PNG24:opaque.png");
  run("convert opaque.png \\( -size 61x47 radial-gradient:white-black \\) -alpha off -compose "
      "CopyOpacity -composite -depth 8 PNG32:clear.png");
  for (const auto* const name : {"opaque.png", "clear.png"}) {
    const auto image = UIImage::make(data(name));
    const auto file = UIImagePNGRepresentation(image.value());
    ASSERT_TRUE(file);
    std::ofstream(folder.path() / "written.png") << file.value().view();
    run("ffmpeg -v error -y -i written.png -f rawvideo -pix_fmt rgba raw");
    EXPECT_LE(greatestDifference(image.value().cgImage().value()->pixels(), bytes("raw")), 0);
    // The kind of colour in the file's head: 2 is RGB, 6 is RGBA.
    EXPECT_EQ(file.value().view()[25], name == "opaque.png"s ? 2 : 6);
  }
}

TEST_F(ImageFileTest, sharesDecodedPixelsAmongCopies) {
  run("convert -size 8x8 xc:red a.png");
  const auto image = UIImage::make(data("a.png"));
  const auto copy = image.value();
  EXPECT_EQ(image.value().cgImage().value(), copy.cgImage().value());
  EXPECT_EQ(UIImage::animatedImage({image.value(), copy}, 0.5)->images().size(), 2U);
  EXPECT_EQ(UIImage::animatedImage({copy}, 0.5)->duration(), 0.5);
  EXPECT_EQ(UIImage::animatedImage({copy}, 0.5)->size(), (CGSize{8, 8}));
  EXPECT_FALSE(UIImage::animatedImage({}, 0));
}

TEST_F(ImageFileTest, isDecodedOnceWhateverThreadsAskForIt) {
  run("convert -size 200x150 plasma:red-blue a.jpg");
  const auto image = UIImage::make(data("a.jpg")).value();
  std::array<std::shared_ptr<const CGImage>, 4> bitmaps;
  std::vector<std::thread> threads;
  for (auto& bitmap : bitmaps) {
    threads.emplace_back([&image, &bitmap] {
      EXPECT_TRUE(image.rendition(20, 15));
      bitmap = image.cgImage().value();
    });
  }
  for (auto& thread : threads) thread.join();
  for (const auto& bitmap : bitmaps) EXPECT_EQ(bitmap, bitmaps[0]);
}

class NamedImageTest : public WithApplication {
 protected:
  void add(const std::string& name, std::string_view contents) const {
    std::ofstream(folder.path() / name) << contents;
  }
  std::optional<UIImage> named(std::string_view name) const {
    return UIImage::named(name, *Bundle::at(folder.path()));
  }

  const TemporaryDirectory folder;
};

constexpr auto kFlag =
    R"(<svg xmlns="http://www.w3.org/2000/svg" width="8" height="4" viewBox="0 0 8 4">)"
    R"(<rect width="4" height="4" fill="#ff0000"/><rect x="4" width="4" height="4" fill="#00f"/>)"
    R"(</svg>)";

TEST_F(NamedImageTest, drawsAnSVGFileSharpAtAnySize) {
  add("flag.svg", kFlag);
  const auto flag = named("flag");
  ASSERT_TRUE(flag);
  EXPECT_EQ(flag->size(), (CGSize{8, 4}));
  const auto large = flag->rendition(800, 400).value();
  EXPECT_EQ(large->row(399)[399], 0xffff0000U);
  EXPECT_EQ(large->row(0)[400], 0xff0000ffU);
  auto context = UIGraphicsImageContext::begin({16, 8}, false, 2);
  ASSERT_TRUE(flag->draw({{}, {16, 8}}, *context));
  const auto pixels = context->takeImage()->cgImage().value();
  EXPECT_EQ(pixels->row(15)[15], 0xffff0000U);
  EXPECT_EQ(pixels->row(0)[16], 0xff0000ffU);
  EXPECT_FALSE(flag->rendition(1'000'000, 1'000'000));
}

TEST_F(NamedImageTest, readsNothingBesidesTheFileItself) {
  add("red.png", UIImagePNGRepresentation(picture(1, {0xffff0000})).value().view());
  add("red.css", "rect { fill: #ff0000 }");
  const auto at = [this](const std::string& name) { return (folder.path() / name).string(); };
  const auto drawing = [](const std::string& before, const std::string& within) {
    return before + R"(<svg xmlns="http://www.w3.org/2000/svg" width="8" height="4" )" +
           R"(xmlns:xlink="http://www.w3.org/1999/xlink">)" + within + "</svg>";
  };
  const auto place = R"( width="8" height="4"/>)"s;
  add("image.svg", drawing("", R"(<image xlink:href=")" + at("red.png") + "\"" + place));
  add("relative.svg", drawing("", R"(<image xlink:href="red.png")" + place));
  add("sheet.svg", drawing(R"(<?xml-stylesheet type="text/css" href=")" + at("red.css") + "\"?>",
                           "<rect" + place));
  add("entity.svg", drawing("<!DOCTYPE svg [<!ENTITY e SYSTEM \"" + at("red.css") + "\">]>",
                            "<rect" + place + "<text>&e;</text>"));
  for (const auto* const name : {"image", "relative", "sheet", "entity"}) {
    const auto image = named(name);
    if (!image) continue;
    for (const auto pixel : image->rendition(8, 4).value()->pixels()) EXPECT_NE(pixel, 0xffff0000U);
  }
}

TEST_F(NamedImageTest, refusesDrawingsThatGrowWithoutBounds) {
  const auto head = R"(<svg xmlns="http://www.w3.org/2000/svg" width="8" height="8" )"s +
                    R"(xmlns:xlink="http://www.w3.org/1999/xlink">)";
  std::string entities = "<!DOCTYPE svg [<!ENTITY e0 'x'>";
  std::string copies = head + R"(<g id="e0"><rect width="1" height="1"/></g>)";
  for (int i = 0; i < 40; ++i) {
    const auto last = "e" + std::to_string(i);
    const auto next = "e" + std::to_string(i + 1);
    entities += "<!ENTITY " + next + " '&" + last + ";&" + last + ";'>";
    const auto use = "<use xlink:href=\"#" + last + "\"/>";
    copies.append("<g id=\"").append(next).append("\">").append(use).append(use).append("</g>");
  }
  add("entities.svg", entities + "]>" + head + "<text>&e40;</text></svg>");
  add("copies.svg", copies + "</svg>");
  std::string nested = head;
  for (int i = 0; i < 200'000; ++i) nested += "<g>";
  nested += "<rect/>";
  for (int i = 0; i < 200'000; ++i) nested += "</g>";
  add("nested.svg", nested + "</svg>");
  for (const auto* const name : {"entities", "copies", "nested"}) EXPECT_FALSE(named(name)) << name;
}

TEST_F(NamedImageTest, drawsAnSVGFileAtNoSensiblePlace) {
  add("flag.svg", kFlag);
  const auto flag = named("flag");
  for (const double length : {std::nan(""), -1.0, 0.0, 1e-300}) {
    auto context = UIGraphicsImageContext::begin({2, 2}, false, 1);
    EXPECT_TRUE(flag->draw({{0, 0}, {length, 2}}, *context));
    EXPECT_TRUE(context->takeImage());
  }
}

TEST_F(NamedImageTest, prefersPNGAndYieldsNoneForWhatIsMissingOrBroken) {
  add("both.svg", kFlag);
  add("both.png", UIImagePNGRepresentation(picture(1, {0xff102030})).value().view());
  EXPECT_EQ(named("both")->size(), (CGSize{1, 1}));
  add("broken.png", "\x89PNG");
  add("broken.svg", kFlag);
  add("text.svg", "no drawing");
  EXPECT_FALSE(named("broken"));
  EXPECT_FALSE(named("text"));
  EXPECT_FALSE(named("missing"));
}

TEST(NamedImage, yieldsNoSVGFileWithoutAnApplication) {
  const TemporaryDirectory folder;
  std::ofstream(folder.path() / "flag.svg") << kFlag;
  EXPECT_FALSE(UIImage::named("flag", *Bundle::at(folder.path())));
}

}  // namespace
}  // namespace kestrova::test
