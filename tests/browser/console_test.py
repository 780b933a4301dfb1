#!/usr/bin/env python3
"""The console in a real browser, over a sandbox that real requests feed.

usage: console_test.py PROGRAMS SPECIMEN [TEST...]
"""
import contextlib
import http.server
import signal
import sys
import threading
import unittest

import audit
from sandbox import Sandbox
from webdriver import Browser

PROGRAMS, SPECIMEN = sys.argv[1:3]
ROWS = ".rows li"
HOSTILE = "<script>document.title='owned'</script>\"'><img src=x onerror=alert(1)>\x00\x1b[31m\u202e"
SHOWN = "<script>document.title='owned'</script>\"'><img src=x onerror=alert(1)>"


class ConsoleTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.browser = Browser()
        cls.addClassCleanup(cls.browser.close)

    def setUp(self):
        self.sandbox = Sandbox(PROGRAMS, SPECIMEN)
        self.addCleanup(self.sandbox.close)
        # Before the sandbox ends: its page would go on asking.
        self.addCleanup(self.browser.open, "about:blank")
        self.browser.resize(1280, 900)
        self.browser.complaints()

    def go(self, path="/"):
        self.browser.open(self.sandbox.address + path)

    def wait_for_count(self, css, count, browser=None):
        (browser or self.browser).wait(
            "return document.querySelectorAll(arguments[0]).length === arguments[1]", css, count)

    def wait_for_text(self, css, text, browser=None):
        (browser or self.browser).wait(
            "return document.querySelector(arguments[0])?.innerText.includes(arguments[1])",
            css, text)

    def test_the_list_follows_what_arrives(self):
        self.go()
        self.wait_for_text("main", "Nothing received yet")
        self.assertEqual(self.sandbox.verify("ada@example.com", "passport"), 0)
        self.wait_for_text(ROWS, "Complete")
        self.assertIn("ada@example.com", self.browser.text(ROWS))
        self.assertIn("1 received", self.browser.text(".count"))
        self.assertEqual(self.browser.text("#live"), "1 new entry")
        self.browser.run("document.querySelector('.row').focus()")
        self.sandbox.sign_up("grace@example.com")
        self.wait_for_text(ROWS, "grace@example.com")
        self.assertIn("ada@example.com", self.browser.run("return document.activeElement.innerText"))
        self.assertEqual(self.browser.complaints(), [])

    def test_a_run_is_a_timeline_with_pictures_and_a_video_that_seeks(self):
        self.assertEqual(self.sandbox.verify("ada@example.com"), 0)
        self.go()
        self.browser.click(".row")
        self.assertEqual(self.browser.title(), "ada@example.com \u00b7 Kestrova sandbox")
        self.assertEqual(self.browser.count(".timeline > li"), 12)
        self.assertEqual(self.browser.count(".timeline > li.wrong, .deviations"), 0)
        self.assertIn("0.99", self.browser.text(".facts"))
        self.browser.run("document.querySelector('video').scrollIntoView()")
        self.browser.wait("return document.querySelector('video').readyState >= 2")
        self.browser.run("return document.querySelector('video').play()")
        place = self.browser.run(
            "const v = document.querySelector('video'); v.pause();"
            "return new Promise(done => { v.onseeked = () => done([v.currentTime, v.videoWidth]);"
            "  v.currentTime = 1.5 })")
        self.assertAlmostEqual(place[0], 1.5, places=2)
        statuses = self.browser.run(
            "return performance.getEntriesByName(document.querySelector('video').src)"
            ".map(entry => entry.responseStatus)")
        self.assertEqual(set(statuses), {206})
        self.assertGreater(place[1], 0)

        # What goes on meanwhile leaves the video and what is open alone.
        self.browser.run("document.querySelector('video').mine = true;"
                         "document.querySelector('details').open = true")
        key = self.browser.url().rsplit("/", 1)[1]
        self.sandbox.step(key, "check_face_video", colour="blue")
        self.wait_for_text(".timeline > li.wrong", "colour")
        self.wait_for_text(".states", "1 deviation")
        self.assertTrue(self.browser.run("const v = document.querySelector('video');"
                                         "return v.mine && v.currentTime > 1.4"))
        self.assertTrue(self.browser.run("return document.querySelector('details').open"))

        self.browser.click("a.picture")
        self.browser.wait("return document.querySelector('.large img').complete")
        width, height = self.browser.run(
            "const i = document.querySelector('.large img');"
            "return [i.naturalWidth, i.naturalHeight]")
        self.assertIn(f"{width} \u00d7 {height} pixels", self.browser.text("figcaption"))
        size = self.browser.run("return fetch(document.querySelector('.large img').src)"
                                ".then(a => a.arrayBuffer()).then(b => b.byteLength)")
        self.assertIn(f"{size:,} bytes", self.browser.text("figcaption"))
        self.browser.click(".crumbs a:last-child")
        self.assertEqual(self.browser.count(".timeline > li:target"), 1)
        self.assertEqual(self.browser.complaints(), [])

    def test_deviations_stand_beside_what_was_expected(self):
        key = self.sandbox.sign_up("ada@example.com")
        self.sandbox.step(key, "signup", identifier="ada@example.com", identifier_type="phone")
        self.sandbox.post("/api/v1/authentication", "x=1")
        self.go(f"/authentications/{key}")
        row = self.browser.run("return [...document.querySelectorAll('.deviations tbody tr')]"
                               ".map(r => r.innerText.trim())")
        self.assertEqual(row, ["identifier_type", '"email"\t"phone"'])
        self.go("/strays")
        self.assertIn("/api/v1/authentication", self.browser.text(".timeline"))

    def test_what_clients_send_stays_text_on_every_page(self):
        key = self.sandbox.open(HOSTILE)
        self.sandbox.step(key, "signup", identifier=HOSTILE, identifier_type=HOSTILE)
        self.sandbox.step(key, "set_nationality", country_code=HOSTILE, **{HOSTILE: HOSTILE})
        self.sandbox.step(key, "choose_authentication_document", authentication_method=HOSTILE)
        self.sandbox.step(key, HOSTILE)
        self.sandbox.step(HOSTILE, "signup")
        part = ('--b\r\nContent-Disposition: form-data; name="%s"\r\n\r\n%s\r\n')
        file = ('--b\r\nContent-Disposition: form-data; name="<i>"; filename="<b>x</b>.mov"\r\n'
                'Content-Type: text/html\r\n\r\n<script>document.title="owned"</script>\r\n--b--\r\n')
        fields = part % ("api_key", HOSTILE) + part % ("key", key) + part % ("step", "record_face_video")
        self.sandbox.post("/api/v1/authentications/document_files", (fields + file).encode(),
                          "multipart/form-data; boundary=b")
        for path in ("/", f"/authentications/{key}", "/strays", "/uploads/7",
                     "/?email=%3Cscript%3Ealert(1)%3C/script%3E"):
            self.go(path)
            self.assertNotEqual(self.browser.title(), "owned", path)
            self.assertEqual(self.browser.count("script"), 1, path)
            self.assertEqual(self.browser.count("main img, main b script, main i, [onerror]"), 0, path)
            self.assertEqual(self.browser.complaints(), [], path)
        self.go()
        self.assertEqual(self.browser.text(".who"), SHOWN + "\\x00\\x1b[31m\\xe2\\x80\\xae")
        # The same over an update instead of a load.
        self.sandbox.sign_up(HOSTILE)
        self.wait_for_count(ROWS, 2)
        self.assertEqual(self.browser.count("main img, main script"), 0)
        self.assertEqual(self.browser.complaints(), [])

    def test_a_huge_field_is_cut(self):
        key = self.sandbox.sign_up("x" * (16 << 20))
        self.go(f"/authentications/{key}")
        self.assertIn("cut, 16,777,216 bytes in all", self.browser.text(".timeline"))
        self.assertLess(self.browser.run("return document.documentElement.outerHTML.length"), 40000)
        self.assertEqual(audit.overflow(self.browser), [])

    def test_the_search_is_used_by_keyboard(self):
        for name in ("ada", "grace"):
            self.sandbox.sign_up(f"{name}@example.com")
        self.sandbox.open()
        self.go()
        self.browser.type("#email", "GRACE@\ue007")
        self.wait_for_count(ROWS, 1)
        self.assertIn("grace@example.com", self.browser.text(ROWS))
        self.go("/?step=set_nationality")
        self.assertEqual(self.browser.count(ROWS), 2)
        self.go("/?email=nobody")
        self.wait_for_text("main", "Nothing fits")

    def test_two_browsers_and_a_deletion_that_asks_first(self):
        gone = self.sandbox.sign_up("ada@example.com")
        self.sandbox.sign_up("grace@example.com")
        with Browser() as other:
            other.resize(1280, 900)
            other.open(f"{self.sandbox.address}/authentications/{gone}")
            self.go(f"/authentications/{gone}")
            self.browser.click("[popovertarget=delete-this]")
            self.wait_for_text("#delete-this", "cannot be undone")
            self.assertEqual(self.browser.run("return document.activeElement.innerText"), "Keep")
            self.browser.press("\ue00c")
            self.browser.wait("return !document.querySelector('#delete-this').matches(':popover-open')")
            self.browser.click("[popovertarget=delete-this]")
            self.browser.press("\ue004", "\ue007")
            self.wait_for_count(ROWS, 1)
            self.assertNotIn("ada@", self.browser.text(ROWS))
            self.wait_for_text("main", "No such authentication", other)

            other.open(self.sandbox.address + "/")
            self.wait_for_count(ROWS, 1, other)
            self.browser.click("[popovertarget=delete-all]")
            self.browser.click("#delete-all .danger")
            for browser in (self.browser, other):
                self.wait_for_text("main", "Nothing received yet", browser)
            self.sandbox.sign_up("new@example.com")
            for browser in (self.browser, other):
                self.wait_for_text(ROWS, "new@example.com", browser)

    def test_faults_are_played_from_the_page(self):
        self.go("/scenarios")
        self.browser.click("[for=fault-status-NUMBER-object]")
        self.browser.run("document.getElementById('step').value = 'check_face_video'")
        self.browser.click("#once")
        self.browser.click(".primary")
        self.wait_for_text(".playing", "Selfie check, once")
        self.assertIn("1", self.browser.text("nav"))
        self.sandbox.verify("ada@example.com")
        self.wait_for_text(".playing", "None. The sandbox answers")
        self.go()
        self.assertIn("1 fault", self.browser.text(ROWS))
        self.browser.click(".row")
        self.assertIn("status-503-object", self.browser.text(".timeline .played"))

        self.go("/scenarios")
        self.browser.click("[for=fault-refuse]")
        self.assertTrue(self.browser.run("return document.getElementById('narrow').disabled"))
        self.browser.press("\ue007")
        self.wait_for_text(".playing", "Dead network")
        with self.assertRaises(OSError):
            self.sandbox.connect()
        self.browser.click(".playing button")
        self.wait_for_text(".playing", "None. The sandbox answers")
        self.sandbox.connect().close()
        self.assertEqual(self.browser.complaints(), [])

    def test_a_killed_sandbox_comes_back_with_what_it_answered(self):
        self.assertEqual(self.sandbox.verify("ada@example.com"), 0)
        self.go()
        self.wait_for_count(ROWS, 1)
        upload = self.sandbox.connect()
        upload.sendall(b"POST /api/v1/authentications/document_files HTTP/1.1\r\nHost: localhost\r\n"
                       b"Content-Type: multipart/form-data; boundary=b\r\n"
                       b"Content-Length: 9000000\r\n\r\n" + b"x" * 8000000)
        self.sandbox.kill()
        upload.close()
        self.wait_for_text("#live", "does not answer")
        self.sandbox.start()
        self.wait_for_text("#live", "Connected again")
        self.assertEqual(self.browser.count(ROWS), 1)
        self.assertEqual(self.browser.count(".strays"), 0)
        self.sandbox.sign_up("grace@example.com")
        self.wait_for_count(ROWS, 2)
        self.browser.click(ROWS + ":last-child a")
        self.assertEqual(self.browser.count(".timeline > li"), 12)

    def test_pages_of_other_sites_neither_read_nor_change_anything(self):
        self.assertEqual(self.sandbox.verify("ada@example.com"), 0)
        with foreign_site() as site:
            self.browser.open(site)
            attacks = self.browser.run("""
                const to = arguments[0];
                const post = { method: "POST", body: new URLSearchParams({ all: "yes" }) };
                const loads = (element) => new Promise((done) => {
                  element.onload = () => done("read");
                  element.onerror = () => done("refused");
                  document.body.append(element);
                });
                const image = Object.assign(new Image(), { src: to + "/files/9" });
                const script = Object.assign(document.createElement("script"),
                                             { src: to + "/console/console.js" });
                return Promise.all([
                  fetch(to + "/").then(() => "read", () => "refused"),
                  fetch(to + "/control/authentications/delete", post).then(() => "read", () => "refused"),
                  fetch(to + "/control/authentications/delete", { ...post, mode: "no-cors" })
                    .then(() => "sent", () => "refused"),
                  loads(image), loads(script)]);""", self.sandbox.address)
            self.assertEqual(attacks[0:2] + attacks[3:], ["refused"] * 4)
            self.browser.run("document.body.innerHTML = `<form method=post action=${arguments[0]}"
                             "/control/authentications/delete><input name=all value=yes></form>`;"
                             "document.forms[0].submit()", self.sandbox.address)
            self.wait_for_text("body", "have no say here")
        self.go()
        self.assertEqual(self.browser.count(ROWS), 1)

    def test_every_page_can_be_used_narrow_dark_by_keyboard_and_by_ear(self):
        self.sandbox.play("status-503-object", "signup", "once")
        self.sandbox.verify("a.very.long.address.of.somebody.who.likes.letters@sub.example.com")
        key = self.sandbox.sign_up("ada@example.com")
        self.sandbox.step(key, "check_face_video", colour="x" * 300)
        self.sandbox.post("/" + "y" * 300, "x")
        self.sandbox.play("cut", "signup")
        self.go()
        complete = self.browser.run("return document.querySelector('.rows li:last-child a').pathname")
        self.go(complete)
        self.browser.wait("return document.querySelector('video') === null ||"
                          " document.querySelector('video').readyState > 0")
        pages = ["/", "/?email=nobody", complete, f"/authentications/{key}", "/strays",
                 "/scenarios", "/nowhere"]
        pages += self.browser.run("return [...document.querySelectorAll('a.picture')]"
                                  ".map(a => a.pathname)")[:1]
        for path in pages:
            with self.subTest(path):
                self.go(path)
                for width in (360, 1280):
                    for dark in (False, True):
                        self.browser.resize(width, 800, dark)
                        self.assertEqual(audit.overflow(self.browser), [])
                        self.assertEqual(audit.faint_text(self.browser), [])
                self.assertEqual(audit.structure(self.browser), [])
                self.assertEqual(audit.unnamed(self.browser), [])
                self.assertEqual(audit.focus_path(self.browser), [])
                self.assertEqual(audit.foreign_resources(self.browser), [])


@contextlib.contextmanager
def foreign_site():
    """The address of a page that is not the console's."""

    class Page(http.server.BaseHTTPRequestHandler):
        def do_GET(self):
            self.send_response(200)
            self.send_header("Content-Type", "text/html")
            self.end_headers()
            self.wfile.write(b"<!doctype html><title>another site</title><body>")

        def log_message(self, *_):
            pass

    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Page)
    server.daemon_threads = True
    thread = threading.Thread(target=server.serve_forever)
    thread.start()
    try:
        yield f"http://127.0.0.1:{server.server_port}/"
    finally:
        server.shutdown()
        thread.join()
        server.server_close()


def interrupt(*_):
    """Ends the run; what it started is ended at exit."""
    raise KeyboardInterrupt


if __name__ == "__main__":
    # Before the test driver's own limit, which would leave the browser behind.
    signal.signal(signal.SIGALRM, interrupt)
    signal.signal(signal.SIGTERM, interrupt)
    signal.alarm(160)
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]])
