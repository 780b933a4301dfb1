#include "platform/network/MultipartFormData.h"

#include <fstream>

#include <gtest/gtest.h>

#include "platform/network/TemporaryFile.h"
#include "tests/support/TemporaryDirectory.h"

namespace kestrova::platform {
namespace {

std::string read(const TemporaryFile& file) {
  std::string text(file.size(), '\0');
  EXPECT_EQ(file.read(0, text).value(), text.size());
  return text;
}

TEST(MultipartFormData, WritesPartsAsTheStandardLaysThemOut) {
  const test::TemporaryDirectory directory;
  const std::string contents = std::string("\0\xff", 2) + std::string(600'000, 'x');
  MultipartFormData form;
  form.append("K\r\n1", "api_key");
  const auto picture = directory.path() / "local.png";
  std::ofstream(picture, std::ios::binary) << contents;
  form.append(picture, "picture", "picture.png", "image/png");
  const auto type = form.contentType();
  const std::string prefix = "multipart/form-data; boundary=";
  ASSERT_TRUE(type.starts_with(prefix));
  const auto delimiter = "--" + type.substr(prefix.size());

  const auto file = form.encode(directory.path());
  ASSERT_TRUE(file);
  EXPECT_EQ(read(*file.value()),
            delimiter + "\r\nContent-Disposition: form-data; name=\"api_key\"\r\n\r\nK\r\n1\r\n" +
                delimiter +
                "\r\nContent-Disposition: form-data; name=\"picture\"; filename=\"picture.png\"\r\n"
                "Content-Type: image/png\r\n\r\n" +
                contents + "\r\n" + delimiter + "--\r\n");
  std::filesystem::remove(picture);
  EXPECT_TRUE(std::filesystem::is_empty(directory.path()));
}

TEST(MultipartFormData, QuotesNamesSoThatTheyCannotBreakTheHeader) {
  const test::TemporaryDirectory directory;
  const auto empty = directory.path() / "empty";
  std::ofstream{empty};
  MultipartFormData form;
  form.append(empty, "a\"b\r\nX: y", "c\"\n", "t/t");
  const auto text = read(*form.encode({}).value());
  EXPECT_NE(text.find("name=\"a%22b%0D%0AX: y\"; filename=\"c%22%0A\"\r\n"), std::string::npos);
}

TEST(MultipartFormData, TakesBackAPartWhoseFileTurnsOutUnreadable) {
  const auto encoded = [](bool withFile) {
    MultipartFormData form;
    form.append("K", "api_key");
    // Announces 4096 bytes and gives fewer.
    if (withFile) form.append("/sys/devices/system/cpu/online", "picture", "p.png", "image/png");
    form.append("S", "step");
    return read(*form.encode({}).value());
  };
  EXPECT_EQ(encoded(true).size(), encoded(false).size());
  EXPECT_EQ(encoded(true).find("picture"), std::string::npos);
}

TEST(MultipartFormData, EveryFormHasABoundaryOfItsOwn) {
  EXPECT_NE(MultipartFormData().contentType(), MultipartFormData().contentType());
}

TEST(TemporaryFile, ReadsShortOnlyAtItsEnd) {
  auto file = TemporaryFile::make({}).value();
  ASSERT_TRUE(file.write("abcdef"));
  std::string buffer(4, '\0');
  EXPECT_EQ(file.read(4, buffer).value(), 2U);
  EXPECT_EQ(buffer.substr(0, 2), "ef");
  EXPECT_EQ(file.read(6, buffer).value(), 0U);
  EXPECT_FALSE(TemporaryFile::make("/nowhere/at/all"));
}

}  // namespace
}  // namespace kestrova::platform
