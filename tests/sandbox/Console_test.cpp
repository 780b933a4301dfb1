#include <algorithm>
#include <string>
#include <vector>

#include "sandbox/console/DeviationText.h"
#include "sandbox/console/Html.h"
#include "sandbox/console/Names.h"
#include "tests/sandbox/SandboxTest.h"

namespace kestrova::sandbox {
namespace {

class ConsoleTest : public SandboxTest {
 protected:
  std::string host() const { return "localhost:" + std::to_string(sandbox->listingPort()); }

  TestAnswer send(const std::string& method, const std::string& target,
                  const std::string& headers = "Accept: text/html\r\n",
                  const std::string& body = {}) const {
    auto connection = TestClient::plain(sandbox->listingPort());
    connection.send(method + ' ' + target + " HTTP/1.1\r\nHost: " + host() + "\r\n" + headers +
                    "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
    return connection.receive().value_or(TestAnswer{});
  }
  TestAnswer get(const std::string& target,
                 const std::string& headers = "Accept: text/html\r\n") const {
    return send("GET", target, headers);
  }
  TestAnswer postForm(const std::string& target, const std::string& body,
                      const std::string& headers = "Accept: text/html\r\n") const {
    return send("POST", target, headers, body);
  }

  // The first thing of the page that follows the text, up to a quote or a markup character.
  static std::string after(const std::string& page, const std::string& text) {
    const auto at = page.find(text);
    if (at == page.npos) return {};
    const auto begin = at + text.size();
    return page.substr(begin, page.find_first_of("\"<", begin) - begin);
  }
  static std::size_t count(const std::string& page, std::string_view text) {
    std::size_t found = 0;
    for (auto at = page.find(text); at != page.npos; at = page.find(text, at + 1)) ++found;
    return found;
  }
  static bool has(const TestAnswer& answer, std::string_view text) {
    return answer.body.find(text) != answer.body.npos;
  }

  void signUp(const std::string& escapedEmail) const {
    postStep("api_key=k1&identifier=" + escapedEmail +
             "&identifier_type=email&key=" + initialize() + "&step=signup");
  }
};

TEST_F(ConsoleTest, ABrowserGetsPagesAndAToolTheRecord) {
  initialize();
  EXPECT_TRUE(has(get("/"), "<!doctype html>"));
  EXPECT_EQ(get("/", "Accept: */*\r\n").body, sandbox->listing());
  EXPECT_EQ(get("/record").body, sandbox->listing());
  EXPECT_EQ(get("/nowhere").status, 404);
  EXPECT_EQ(get("/console/embed.cmake").status, 404);
  EXPECT_EQ(get("/console/../record.db").status, 404);
}

TEST_F(ConsoleTest, EveryAnswerKeepsOtherPagesAndInlineScriptOut) {
  for (const auto& target : {"/", "/scenarios", "/strays", "/console/console.js", "/nowhere",
                             "/record", "/files/1", "/console/revision"}) {
    const auto head = get(target).head;
    for (const auto* const line :
         {"Content-Security-Policy: default-src 'none'; ", "frame-ancestors 'none'\r\n",
          "X-Content-Type-Options: nosniff\r\n", "Referrer-Policy: no-referrer\r\n",
          "Cross-Origin-Resource-Policy: same-origin\r\n", "Cache-Control: no-store\r\n"}) {
      EXPECT_NE(head.find(line), head.npos) << target << "\n" << head;
    }
    EXPECT_EQ(head.find("unsafe"), head.npos);
  }
}

TEST_F(ConsoleTest, OtherSitesSeeAndChangeNothing) {
  const auto key = initialize();
  const std::string foreign[]{"Origin: https://example.org\r\n", "Origin: null\r\n",
                              "Sec-Fetch-Site: cross-site\r\n", "Sec-Fetch-Site: same-site\r\n",
                              "Origin: null\r\nSec-Fetch-Site: cross-site\r\n"};
  for (const auto& headers : foreign) {
    EXPECT_EQ(get("/", headers).status, 403) << headers;
    EXPECT_EQ(postForm("/control/authentications/delete", "all=yes", headers).status, 403);
  }
  const std::string link = "Sec-Fetch-Site: cross-site\r\nSec-Fetch-Mode: navigate\r\n";
  EXPECT_EQ(get("/", link).status, 200);
  EXPECT_EQ(postForm("/control/authentications/delete", "all=yes", link).status, 403);
  EXPECT_EQ(sandbox->requests().size(), 1U);
  EXPECT_EQ(postForm("/control/authentications/delete", "key=" + key,
                     "Origin: null\r\nSec-Fetch-Site: same-origin\r\n")
                .status,
            200);
  EXPECT_TRUE(sandbox->requests().empty());
}

TEST_F(ConsoleTest, AListRowTellsAddressDocumentStateAndTime) {
  const auto key = runUpTo("check_authentication_document_video_success", "PASSPORT");
  assess(key);
  postStep("api_key=k1&key=" + initialize() + "&step=check_face_video");
  const auto list = get("/");
  EXPECT_TRUE(has(list, "a+b@example.org"));
  EXPECT_TRUE(has(list, "Passport · de"));
  EXPECT_TRUE(has(list, "Complete"));
  EXPECT_TRUE(has(list, "No e-mail yet"));
  EXPECT_TRUE(has(list, "1 deviation"));
  EXPECT_TRUE(has(list, "2 received"));
  const auto timeline = get("/authentications/" + key);
  EXPECT_TRUE(has(timeline, "<dt>Liveness</dt><dd>0.99</dd>"));
  EXPECT_EQ(count(timeline.body, "<li id=\"request-"), 10U);
}

TEST_F(ConsoleTest, TheSearchFindsPartsOfAddressesAndSteps) {
  signUp("Ada%40Example.org");
  signUp("100%25_sure%40example.net");
  runUpTo("record_face_video");
  const auto found = [&](const std::string& query) {
    return count(get("/?" + query).body, "<li data-key=");
  };
  EXPECT_EQ(found(""), 3U);
  EXPECT_EQ(found("email=ADA%40example"), 1U);
  EXPECT_EQ(found("email=example&step=signup"), 3U);
  EXPECT_EQ(found("email=example&step=record_face_video"), 1U);
  EXPECT_EQ(found("email=0%25_s"), 1U);
  EXPECT_EQ(found("email=a%25e"), 0U);
  EXPECT_EQ(found("email=' OR 1=1 --"), 0U);
  EXPECT_EQ(found("step=nowhere"), 0U);
  EXPECT_TRUE(has(get("/?email=%22%3E%3Cb%3E"), "value=\"&quot;&gt;&lt;b&gt;\""));
}

TEST_F(ConsoleTest, APageHoldsFiftyAndLeadsToTheOlderOnes) {
  for (int i = 0; i < 120; ++i) initialize();
  std::string address = "/";
  std::string all;
  std::vector<std::size_t> sizes;
  while (!address.empty()) {
    const auto answer = get(address);
    all += answer.body;
    sizes.push_back(count(answer.body, "<li data-key="));
    address = after(answer.body, "rel=\"next\" href=\"");
  }
  EXPECT_EQ(sizes, (std::vector<std::size_t>{50, 50, 20}));
  for (const auto& request : sandbox->requests()) {
    EXPECT_EQ(count(all, "data-key=\"" + request.authentication + '"'), 1U);
  }
  EXPECT_TRUE(has(get("/?before=71"), "<a href=\"/\">Newest</a>"));
}

TEST_F(ConsoleTest, WhatClientsSendStaysText) {
  const std::string hostile = "%3Cscript%3Ealert(1)%3C%2Fscript%3E%22%27%26%00%1B%FF%E2%80%AE";
  const std::string shown = "&lt;script&gt;alert(1)&lt;/script&gt;&quot;&#39;&amp;";
  const std::string raw = "\\x00\\x1b\\xff\\xe2\\x80\\xae";
  const auto key = jsonValue(
      post("/api/v1/authentications", "api_key=" + hostile + "&step=initialize").body, "key");
  postStep("api_key=" + hostile + "&identifier=" + hostile + "&identifier_type=" + hostile +
           "&key=" + key + "&step=signup&" + hostile + "=1");
  postStep("api_key=k1&authentication_method=" + hostile + "&country_code=" + hostile +
           "&key=" + key + "&step=set_nationality");
  post("/api/v1/authentication_assessments",
       "api_key=k1&authentication_assessments%5B%5D%5Bvalue%5D=" + hostile +
           "&authentication_key=" + key);
  postStep("api_key=k1&key=" + key + "&step=" + hostile);
  post("/<b>?<i>", "x");
  post("/api/v1/authentications/document_files",
       uploadBody({{"key", key}, {"step", "record_face_video"}},
                  "Content-Disposition: form-data; name=\"<b>\"; filename=\"<i>.mov\"\r\n"
                  "Content-Type: text/<u>",
                  "<html>"),
       uploadType);
  const auto pages = {get("/"), get("/authentications/" + key), get("/strays"), get("/uploads/7")};
  for (const auto& page : pages) {
    EXPECT_EQ(page.status, 200);
    for (const auto* const tag :
         {"<script>", "<b><", "<i>", "<u>", "\x1b", "\xff", "\xe2\x80\xae"}) {
      EXPECT_FALSE(has(page, tag)) << tag << "\n" << page.body;
    }
    EXPECT_EQ(page.body.find('\0'), std::string::npos);
  }
  EXPECT_EQ(count(get("/").body, shown), 1U);
  EXPECT_TRUE(has(get("/authentications/" + key), shown + "<span class=\"raw\">" + raw));
  const auto download = get("/files/7");
  EXPECT_EQ(download.body, "<html>");
  EXPECT_NE(download.head.find("Content-Type: application/octet-stream\r\n"), std::string::npos);
  EXPECT_NE(download.head.find("Content-Disposition: attachment"), std::string::npos);
}

TEST_F(ConsoleTest, AHugeFieldIsCutAndItsSizeTold) {
  const auto key = initialize();
  const std::string huge(std::size_t{16} << 20U, 'x');
  EXPECT_EQ(postStep("api_key=k1&identifier=" + huge + "&identifier_type=email&key=" + key +
                     "&step=signup")
                .status,
            200);
  const auto timeline = get("/authentications/" + key);
  EXPECT_TRUE(has(timeline, "cut, 16,777,216 bytes in all"));
  EXPECT_LT(timeline.body.size(), 20000U);
  EXPECT_LT(get("/").body.size(), 20000U);
  EXPECT_EQ(sandbox->requests()[1].parameters[1].second.size(), huge.size());
}

TEST_F(ConsoleTest, FilesComeWholeOrByRanges) {
  runUpTo("record_authentication_document_video");
  const auto whole = get("/files/4");
  EXPECT_EQ(whole.status, 200);
  EXPECT_EQ(whole.body, videoBytes);
  EXPECT_NE(whole.head.find("Content-Type: video/quicktime\r\n"), std::string::npos);
  EXPECT_NE(whole.head.find("Accept-Ranges: bytes\r\n"), std::string::npos);
  EXPECT_NE(get("/files/7").head.find("Content-Type: image/png\r\n"), std::string::npos);

  const auto size = std::to_string(videoBytes.size());
  const auto last = std::to_string(videoBytes.size() - 1);
  const auto tag = after(whole.head, "ETag: \"");
  struct Case {
    std::string headers;
    int status;
    std::string range;
    std::string body;
  };
  const std::vector<Case> cases{
      {"Range: bytes=0-\r\n", 206, "bytes 0-" + last + '/' + size, videoBytes},
      {"Range: bytes=4-7\r\n", 206, "bytes 4-7/" + size, "ftyp"},
      {"Range: bytes=4-9999\r\n", 206, "bytes 4-" + last + '/' + size, videoBytes.substr(4)},
      {"Range: bytes=-3\r\n", 206,
       "bytes " + std::to_string(videoBytes.size() - 3) + '-' + last + '/' + size,
       videoBytes.substr(videoBytes.size() - 3)},
      {"Range: bytes=-9999\r\n", 206, "bytes 0-" + last + '/' + size, videoBytes},
      {"If-Range: \"" + tag + "\"\r\nRange: bytes=4-7\r\n", 206, "bytes 4-7/" + size, "ftyp"},
      {"If-Range: \"other\"\r\nRange: bytes=4-7\r\n", 200, "", videoBytes},
      {"Range: bytes=0-1,4-7\r\n", 200, "", videoBytes},
      {"Range: bytes=7-4\r\n", 200, "", videoBytes},
      {"Range: bytes=x-\r\n", 200, "", videoBytes},
      {"Range: lines=1-2\r\n", 200, "", videoBytes},
  };
  for (const auto& [headers, status, range, body] : cases) {
    const auto answer = get("/files/4", headers);
    EXPECT_EQ(answer.status, status) << headers;
    EXPECT_EQ(answer.body, body) << headers;
    if (!range.empty()) {
      EXPECT_NE(answer.head.find("Content-Range: " + range + "\r\n"), std::string::npos)
          << answer.head;
    }
  }
  for (const auto* const beyond : {"bytes=9999-", "bytes=-0", "bytes=18446744073709551615-"}) {
    const auto answer = get("/files/4", std::string("Range: ") + beyond + "\r\n");
    EXPECT_EQ(answer.status, 416) << beyond;
    EXPECT_NE(answer.head.find("Content-Range: bytes */" + size + "\r\n"), std::string::npos);
  }
  for (const auto* const none :
       {"/files/1", "/files/999", "/files/-4", "/files/4x", "/uploads/1"}) {
    EXPECT_EQ(get(none).status, 404) << none;
  }
}

TEST_F(ConsoleTest, DeletingRemovesRowsAndFilesAndNothingElse) {
  const auto gone = runUpTo("record_face_video");
  const auto kept = runUpTo("record_face_video");
  post("/nowhere", "x");
  const auto requests = sandbox->requests();
  const auto answer = postForm("/control/authentications/delete", "key=" + gone);
  EXPECT_EQ(answer.status, 303);
  EXPECT_NE(answer.head.find("Location: /\r\n"), std::string::npos);
  EXPECT_EQ(get("/authentications/" + gone).status, 404);
  EXPECT_FALSE(std::filesystem::exists(requests[3].upload->path));
  EXPECT_TRUE(std::filesystem::exists(requests[7].upload->path));
  EXPECT_EQ(sandbox->requests().size(), 5U);
  EXPECT_TRUE(sandbox->waitForRequests(5, std::chrono::milliseconds(0)));
  EXPECT_FALSE(sandbox->waitForRequests(6, std::chrono::milliseconds(0)));

  perform("check_face_video", gone);  // comes as one of an unknown authentication
  EXPECT_TRUE(has(get("/strays"), "an authentication opened here"));
  EXPECT_EQ(postForm("/control/authentications/delete", "strays=yes", "").body,
            R"({"status":"ok"})");
  EXPECT_EQ(sandbox->requests().size(), 4U);
  EXPECT_EQ(get("/authentications/" + kept).status, 200);
  for (const auto* const wrong : {"", "key=", "all=no", "all=yes2"}) {
    EXPECT_EQ(postForm("/control/authentications/delete", wrong).status, 400) << wrong;
  }
  EXPECT_EQ(postForm("/control/authentications/delete", "all=yes").status, 303);
  EXPECT_TRUE(sandbox->requests().empty());
  EXPECT_TRUE(std::filesystem::is_empty(directory.path() / "store" / "files"));
  start();
  EXPECT_TRUE(sandbox->requests().empty());
}

TEST_F(ConsoleTest, TheRevisionChangesWithWhatPagesShow) {
  std::vector<std::string> seen{get("/console/revision").body};
  EXPECT_EQ(get("/console/revision").body, seen.back());
  const auto expectChange = [&] {
    const auto now = get("/console/revision").body;
    EXPECT_EQ(std::count(seen.begin(), seen.end(), now), 0) << now;
    seen.push_back(now);
  };
  const auto key = initialize();
  expectChange();
  sandbox->setScenario({.fault = Fault::noContent, .step = "signup", .once = true});
  expectChange();
  perform("signup", key);
  expectChange();
  postForm("/control/authentications/delete", "key=" + key);
  expectChange();
  start();
  expectChange();
  EXPECT_EQ(after(get("/").body, "data-revision=\""), seen.back());
}

TEST_F(ConsoleTest, ScenariosAreChosenAndClearedInABrowser) {
  const auto form = get("/scenarios").body;
  for (const auto& name : faultNames()) {
    EXPECT_EQ(count(form, "value=\"" + name + '"'), 1U) << name;
  }
  const auto chosen =
      postForm("/control/scenarios", "fault=status-NUMBER-text&status=418&step=signup&times=once");
  EXPECT_EQ(chosen.status, 303);
  EXPECT_NE(chosen.head.find("Location: /scenarios\r\n"), std::string::npos);
  postForm("/control/scenarios", "fault=refuse&status=503");
  const auto page = get("/scenarios");
  EXPECT_TRUE(has(page, "<code>status-418-text</code><span>E-mail, once</span>"));
  EXPECT_TRUE(has(page, "Dead network"));
  EXPECT_TRUE(has(page, ">2<span class=\"unseen\"> playing"));
  EXPECT_EQ(postForm("/control/scenarios/clear", "").status, 303);
  EXPECT_TRUE(has(get("/scenarios"), "None. The sandbox answers"));

  const auto wrong =
      postForm("/control/scenarios", "fault=status-NUMBER-object&status=%3Cb%3E&times=once");
  EXPECT_EQ(wrong.status, 400);
  EXPECT_TRUE(has(wrong, "role=\"alert\""));
  EXPECT_TRUE(has(wrong, "data-revision=\"\""));
  EXPECT_TRUE(has(wrong, "value=\"&lt;b&gt;\""));
  EXPECT_TRUE(has(wrong, "id=\"once\" checked"));
  EXPECT_EQ(postForm("/control/scenarios", "fault=refuse&times=once").status, 400);
}

TEST(DeviationTextTest, TellsTheTwoSidesOfEverySentence) {
  struct Case {
    const char* text;
    const char* where;
    const char* expected;
    const char* came;
  };
  const Case cases[]{
      {R"("a": expected "b, came ", came "c, came d")", "a", R"("b, came ")", R"("c, came d")"},
      {R"(file part: expected field "video", came "v\", came ")", "file part", R"(field "video")",
       R"("v\", came ")"},
      {R"(expected no query, came "/x?expected ")", "", "no query", R"("/x?expected ")"},
      {R"(field "step" is missing)", "", R"(field "step")", "nothing"},
      {R"(field "x is missing" is none of this request's)", "", "no such field",
       R"(field "x is missing")"},
      {R"(field "key" came 2 times)", "", R"(field "key" once)", "2 times"},
      {"signup came before initialize", "", "initialize first", "signup before it"},
      {"signup belongs to /a, came to /b", "signup", "/a", "/b"},
      {R"(no step is called "x")", "", "the name of a step", R"("x")"},
      {"HTTP: bad method", "HTTP", "a request that HTTP allows", "bad method"},
      {"3 further deviations", "", "", "3 further deviations"},
  };
  for (const auto& [text, where, expected, came] : cases) {
    const auto sides = readDeviation(text);
    EXPECT_EQ(sides.where, where) << text;
    EXPECT_EQ(sides.expected, expected) << text;
    EXPECT_EQ(sides.came, came) << text;
  }
}

TEST(HtmlTest, TextAndNumbersAreWrittenForPeople) {
  EXPECT_EQ(Html().text("<a href='\"&").string(), "&lt;a href=&#39;&quot;&amp;");
  EXPECT_EQ(Html().text("\xc3\xa4\n\xc2\x85", 4).string(), "\xc3\xa4\\x0a\\xc2\xe2\x80\xa6");
  EXPECT_EQ(Html().value("a\\x1b\x1b\x1b").string(), "a\\x1b<span class=\"raw\">\\x1b\\x1b</span>");
  EXPECT_EQ(grouped(999), "999");
  EXPECT_EQ(grouped(1234567), "1,234,567");
  EXPECT_EQ(inUnits(999), "999 bytes");
  EXPECT_EQ(inUnits(41720), "42 kB");
  EXPECT_EQ(inUnits(1234567), "1.2 MB");
  EXPECT_EQ(elapsed("2026-01-31T23:59:59.900Z", "2026-02-01T00:00:00.150Z"), "+0.250 s");
  EXPECT_EQ(elapsed("2026-01-31T00:00:00.000Z", "2026-01-31T00:05:00.000Z"), "+5.0 min");
  EXPECT_EQ(elapsed("", "2026-01-31T00:05:00.000Z"), "");
}

}  // namespace
}  // namespace kestrova::sandbox
