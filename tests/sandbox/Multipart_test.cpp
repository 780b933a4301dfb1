#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "tests/sandbox/SandboxTest.h"

namespace kestrova::sandbox {
namespace {

using Strings = std::vector<std::string>;

class Multipart : public SandboxTest {
 protected:
  TestAnswer send(const std::string& body, std::string_view type = uploadType) const {
    return post("/api/v1/authentications/document_files", body, type);
  }

  static std::string replaced(std::string text, std::string_view from, std::string_view to) {
    const auto at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return text.replace(at, from.size(), to);
  }

  std::string key = runUpTo("signup");
  std::vector<std::pair<std::string, std::string>> fields{
      {"api_key", "k1"}, {"key", key}, {"step", "record_face_video"}};
  std::string right = uploadBody(fields, videoHead(), videoBytes);
};

TEST_F(Multipart, AFileIsStoredAsItCameAndTheRestOfTheBodyIsKept) {
  EXPECT_EQ(send(right).status, 200);
  const auto request = last();
  EXPECT_EQ(request.deviations, Strings{});
  EXPECT_EQ(request.body, uploadBody(fields, videoHead(), ""));
  ASSERT_TRUE(request.upload);
  EXPECT_EQ(request.upload->field, "video");
  EXPECT_EQ(request.upload->fileName, "video.mov");
  EXPECT_EQ(request.upload->contentType, "video/quicktime");
  EXPECT_EQ(request.upload->size, videoBytes.size());
  EXPECT_EQ(request.upload->sha256.size(), 64U);
  std::ifstream stored(request.upload->path, std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(stored), {}), videoBytes);
  EXPECT_EQ(std::filesystem::status(request.upload->path).permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(Multipart, TextFieldsMayComeInAnyOrder) {
  EXPECT_EQ(send(uploadBody({fields[2], fields[0], fields[1]}, videoHead(), videoBytes)).status,
            200);
  EXPECT_EQ(last().deviations, Strings{});
  EXPECT_EQ(send(right, "multipart/form-data; boundary=\"b0\"").status, 200);
  EXPECT_EQ(last().deviations, Strings{});
}

TEST_F(Multipart, EachDeviationIsFoundAndTheFormAnsweredAllTheSame) {
  const std::string field = "--b0\r\nContent-Disposition: form-data; name=\"a\"\r\n\r\n1\r\n";
  struct Case {
    std::string body;
    std::string type;
    std::string deviation;
  };
  const std::string type(uploadType);
  const std::vector<Case> cases{
      {right, "multipart/form-data;boundary=b0", "Content-Type: expected"},
      {right, "Multipart/form-data; boundary=b0", "Content-Type: expected"},
      {right, type + "; charset=utf-8", "Content-Type: expected"},
      {"preamble\r\n" + right, type, "expected the boundary at the start, came \"preamble\""},
      {right + "more", type, "nothing else after the closing boundary, came \"\\r\\nmore\""},
      {right.substr(0, right.size() - 2), type,
       "nothing else after the closing boundary, came \"\""},
      {replaced(right, "--b0\r\n", "--b0 \r\n"), type, "expected CR LF after the boundary"},
      {replaced(right, "Content-Disposition: form-data; name=\"key\"",
                "Content-Disposition: form-data; name=\"key\"\r\nContent-Type: text/plain"),
       type, "expected a part's head"},
      {replaced(right, "Content-Disposition", "content-disposition"), type,
       "expected a part's head"},
      {replaced(right, "Content-Type: video/quicktime", "Content-Type:video/quicktime"), type,
       "expected a part's head"},
      {replaced(right, "name=\"video\"", "name=\"picture\""), type,
       R"(expected field "video", came "picture")"},
      {replaced(right, "video.mov", "exported.mov"), type,
       R"(expected file name "video.mov", came "exported.mov")"},
      {replaced(right, "video/quicktime", "video/mp4"), type,
       R"(expected Content-Type "video/quicktime", came "video/mp4")"},
      {replaced(right, "ftyp", "moov"), type, "expected the first bytes of video/quicktime"},
      {uploadBody(fields, "", ""), type, "the file part is missing"},
      {replaced(right, "--b0--", field + "--b0--"), type, R"(field "a" came after the file part)"},
      {field + right, type, R"(field "a" is none of this request's)"},
      {uploadBody({fields[1], fields[2]}, videoHead(), videoBytes), type,
       R"(field "api_key" is missing)"},
      {uploadBody({fields[0], {"key", "0"}, fields[2]}, videoHead(), videoBytes), type,
       "no authentication has the key \"0\""},
      {replaced(right, "--b0--", "--b0\r\n" + videoHead() + "\r\n\r\nx\r\n--b0--"), type,
       R"(a second file part, field "video")"},
      {replaced(right, "name=\"api_key\"\r\n\r\nk1", "name=\"api_key\"\r\n\r\nk1\xff"), type,
       "expected well-formed UTF-8"}};
  for (const auto& [body, contentType, deviation] : cases) {
    EXPECT_EQ(send(body, contentType).status, 200) << deviation;
    const auto& found = last().deviations;
    EXPECT_TRUE(std::any_of(found.begin(), found.end(),
                            [&wanted = deviation](const std::string& one) {
                              return one.find(wanted) != std::string::npos;
                            }))
        << deviation << " not in " << testing::PrintToString(found);
    EXPECT_LE(found.size(), 2U) << testing::PrintToString(found);
  }
}

TEST_F(Multipart, APictureMustBeAPng) {
  const auto other = runUpTo("choose_authentication_document");
  fields = {{"api_key", "k1"}, {"key", other}, {"step", "record_authentication_document_video"}};
  send(uploadBody(fields, pictureHead(), pictureBytes));
  EXPECT_EQ(last().deviations, Strings{});
  send(uploadBody(fields, pictureHead(), "\xff\xd8\xff\xe0"));
  EXPECT_EQ(
      last().deviations,
      Strings{R"(file part: expected the first bytes of image/png, came "\xff\xd8\xff\xe0")"});
}

TEST_F(Multipart, BrokenFramingIsRefusedWithAnObject) {
  const Strings broken{"",
                       "--b0",
                       "--b0\r\n",
                       "--b0\r\nContent-Disposition: form-data; name=\"a\"\r\n\r\nnever closed",
                       "--b0\r\n\r\n\r\n",
                       right.substr(0, right.size() - 8),
                       "--b0--x"};
  for (const auto& body : broken) {
    const auto answer = send(body);
    EXPECT_EQ(answer.status, 400) << body;
    EXPECT_TRUE(answer.body.starts_with(R"({"error":)")) << answer.body;
    EXPECT_FALSE(last().deviations.empty());
  }
  EXPECT_EQ(send(right, "multipart/form-data").status, 400);
  EXPECT_EQ(send(right, "multipart/form-data; boundary=").status, 400);
  std::string endless;
  for (int part = 0; part < 1000; ++part) endless += "--b0\r\n\r\n\r\n";
  EXPECT_EQ(send(endless + "--b0--\r\n").status, 400);
}

}  // namespace
}  // namespace kestrova::sandbox
