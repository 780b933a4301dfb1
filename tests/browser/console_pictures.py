#!/usr/bin/env python3
"""Writes pictures of every page of the console, narrow and wide, light and dark.

usage: console_pictures.py PROGRAMS SPECIMEN DIRECTORY
"""
import os
import sys

from sandbox import Sandbox
from webdriver import Browser


def feed(sandbox):
    """Runs as an integrator has them; the key of the one with deviations."""
    sandbox.verify("grace.hopper@example.org", "passport")
    sandbox.play("status-503-object", "check_face_video", "once")
    sandbox.verify("katherine.johnson@example.net", "licence")
    wrong = sandbox.sign_up("a very long address of somebody@with.a.very.long.domain.example.com")
    sandbox.step(wrong, "choose_authentication_document", authentication_method="LIBRARY_CARD")
    sandbox.step(wrong, "check_face_video", colour="<b>blue</b>\x1b[31m\u202e", api_key="other")
    sandbox.step(wrong, "signup", identifier="<script>alert(1)</script>", identifier_type="phone")
    sandbox.post("/api/v1/authentications/step", "nothing here")
    sandbox.open()
    sandbox.verify("ada.lovelace@example.com")
    return wrong


def main():
    programs, specimen, directory = sys.argv[1:]
    os.makedirs(directory, exist_ok=True)
    sandbox = Sandbox(programs, specimen)
    try:
        with Browser() as browser:
            def take(name, prepare=None):
                for width, height in ((1280, 900), (360, 780)):
                    for dark in (False, True):
                        browser.resize(width, height, dark)
                        if prepare:
                            prepare()
                        shade = "dark" if dark else "light"
                        browser.picture(os.path.join(directory, f"{name}-{width}-{shade}.png"))

            browser.open(sandbox.address + "/")
            take("empty")
            wrong = feed(sandbox)
            browser.open(sandbox.address + "/")
            take("list")
            browser.open(sandbox.address + "/?email=nobody")
            take("nothing-found")
            browser.open(sandbox.address + "/")
            complete = browser.run("return document.querySelector('.row').href")
            browser.open(complete)
            browser.wait("return document.querySelector('video').readyState >= 2")
            browser.run("const v = document.querySelector('video');"
                        "return new Promise(done => { v.onseeked = () => done(); v.currentTime = 1 })")
            browser.run("document.querySelectorAll('img').forEach(i => { i.loading = 'eager' })")
            browser.wait("return [...document.images].every(i => i.complete)")
            take("timeline")
            picture = browser.run("return document.querySelector('a.picture').href")
            take("confirm", lambda: browser.run(
                "document.getElementById('delete-this').showPopover()"))
            browser.open(f"{sandbox.address}/authentications/{wrong}")
            take("deviations")
            browser.open(sandbox.address + "/strays")
            take("strays")
            browser.open(picture)
            take("picture")
            sandbox.play("status-503-text", "signup", "once")
            sandbox.play("unknown-authority")
            browser.open(sandbox.address + "/scenarios")
            browser.run("document.getElementById('fault-stall').click()")
            take("scenarios")
            browser.open(sandbox.address + "/nowhere")
            take("nowhere")
    finally:
        sandbox.close()


if __name__ == "__main__":
    main()
