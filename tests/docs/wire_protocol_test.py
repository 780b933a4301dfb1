#!/usr/bin/env python3
"""Sends every request and compares it and the first answer with the examples of docs/wire-protocol.md.

usage: wire_protocol_test.py DOCUMENT BIN SPECIMENS
"""
import pathlib
import re
import sqlite3
import ssl
import subprocess
import sys
import tempfile
import urllib.request

document, bin_folder, specimens = map(pathlib.Path, sys.argv[1:])
blocks = re.findall(r"^```(\w*)\n(.*?)^```$", document.read_text(), re.M | re.S)
examples = [text for language, text in blocks if language == "http"]
common = next(text for language, text in blocks if not language)
answer = next(text for language, text in blocks if language == "json").rstrip("\n")


def pattern(text):
    """A regular expression: {name} is a value that stays the same within the request."""
    parts = re.split(r"\{(\w+)\}", text)
    made, seen = "", set()
    for place, part in enumerate(parts):
        if place % 2 == 0:
            made += re.escape(part)
        elif part in seen:
            made += f"(?P={part})"
        else:
            seen.add(part)
            made += f"(?P<{part}>.*?)"
    return re.compile(made, re.S)


def text_of(value):
    return value if isinstance(value, str) else value.decode()


def kept(store):
    """The requests as the document writes them: without the headers that all have."""
    database = sqlite3.connect(store / "record.db")
    for head, body in database.execute("SELECT head, body FROM requests ORDER BY id"):
        lines = text_of(head).split("\r\n")
        assert lines[0].endswith(" HTTP/1.1"), lines[0]
        own = [line for line in lines[1:]
               if not any(pattern(each).fullmatch(line) for each in common.splitlines())]
        missing = len(common.splitlines()) - (len(lines) - 1 - len(own))
        assert missing == 0, f"{missing} headers of all requests are missing in {lines}"
        text = text_of(body).replace("\r\n", "\n").rstrip("\n")
        yield "\n".join([lines[0].removesuffix(" HTTP/1.1"), *own]).rstrip() + "\n\n" + text + "\n"


def opened(port, authority):
    """What the sandbox answers to an opening."""
    opener = urllib.request.build_opener(
        urllib.request.ProxyHandler({}),
        urllib.request.HTTPSHandler(context=ssl.create_default_context(cafile=authority)))
    url = f"https://localhost:{port}/api/v1/authentications"
    with opener.open(url, b"api_key=demo-key&step=initialize", timeout=10) as response:
        return response.read().decode()


with tempfile.TemporaryDirectory() as folder:
    store = pathlib.Path(folder) / "store"
    with subprocess.Popen([bin_folder / "kestrova-sandbox", "--port", "0", "--listing-port", "0",
                           "--store", store], stdout=subprocess.PIPE, text=True) as sandbox:
        try:
            port = re.search(r"https://localhost:(\d+)", sandbox.stdout.readline()).group(1)
            subprocess.run([bin_folder / "kestrova-wire", "--face", specimens / "face.mov",
                            "--front", specimens / "id-front.png",
                            "--back", specimens / "id-back.png",
                            "--port", port, "--authority", store / "authority.pem"],
                           check=True, timeout=50, stdout=subprocess.DEVNULL)
            requests = list(kept(store))
            answered = opened(port, store / "authority.pem")
        finally:
            sandbox.terminate()

assert pattern(answer).fullmatch(answered), f"answered was\n{answered}\nwritten is\n{answer}"
assert len(requests) == len(examples), f"{len(requests)} requests, {len(examples)} examples"
for request, example in zip(requests, examples):
    assert pattern(example).fullmatch(request), f"sent was\n{request}\nwritten is\n{example}"
print(f"{len(examples)} examples are what is sent")
