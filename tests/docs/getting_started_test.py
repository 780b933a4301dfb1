#!/usr/bin/env python3
"""Does what docs/getting-started.md says, from an installed build to a window that opens a verification.

usage: getting_started_test.py ROOT BUILD
Every block stands behind a comment <!-- test: ... --> and is written to the file, compiled, or run in the new
project, but for the scripts that are tested elsewhere; build/demo stands for the build under test, and the sandbox
runs at the ports of the document with a home of the test's. Then does the same with the program in README.md.
"""
import os
import pathlib
import re
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time
import urllib.request

root, build = (pathlib.Path(argument).resolve() for argument in sys.argv[1:])
document = (root / "docs/getting-started.md").read_text()
blocks = re.findall(r"^<!-- test: (.*?) -->\n```\w+\n(.*?)^```$", document, re.M | re.S)
assert document.count("\n```") == 2 * len(blocks), "a block does not say how it is tested"
record = "http://localhost:8480/record"
opener = urllib.request.build_opener(urllib.request.ProxyHandler({}))


def wait_for(condition, what, process=None):
    deadline = time.monotonic() + 30
    while time.monotonic() < deadline:
        if condition():
            return
        if process and process.poll() is not None:
            break
        time.sleep(0.05)
    sys.exit(f"{what} did not happen")


def is_listening(port):
    with socket.socket() as probe:
        return probe.connect_ex(("127.0.0.1", port)) == 0


def openings():
    return opener.open(record, timeout=5).read().count(b" initialize  200")


def pressed(program):
    """The program with a timer that presses its button: what a person would do."""
    lines = program.replace("  return QApplication::exec();",
                            "  QTimer::singleShot(0, &button, &QPushButton::click);\n"
                            "  return QApplication::exec();")
    assert lines != program
    return "#include <QtCore/QTimer>\n" + lines


def end(process):
    if process.poll() is None:
        os.killpg(process.pid, signal.SIGTERM)
    process.wait(10)


work = pathlib.Path(tempfile.mkdtemp())
started = []
try:
    environment = {**os.environ, "HOME": str(work), "QT_QPA_PLATFORM": "offscreen"}
    environment.pop("XDG_DATA_HOME", None)
    project = work / "my-kiosk"
    project.mkdir()

    def shell(text, **options):
        text = text.replace("build/demo", str(build))
        return subprocess.Popen(["bash", "-euo", "pipefail", "-c", text], cwd=project, env=environment,
                                start_new_session=True, stdout=subprocess.DEVNULL, **options)

    def opens_a_verification(text):
        before = openings()
        process = shell(text)
        started.append(process)
        wait_for(lambda: openings() > before, f"the first request of {text.strip()}", process)
        end(process)

    for how, text in blocks:
        if how.startswith("file "):
            name = how.removeprefix("file ")
            (project / name).write_text(pressed(text) if name == "main.cpp" else text)
        elif how == "compiles":
            (project / "part.cpp").write_text(text)
            headers = '-I"$HOME/kestrova/include/kestrova"'
            assert shell(f"c++ -std=c++20 -fsyntax-only {headers} part.cpp").wait(120) == 0, text
        elif how == "elsewhere":
            continue
        elif how == "background":
            assert not is_listening(8443) and not is_listening(8480), "the usual ports are taken"
            started.append(shell(text))
            wait_for(lambda: is_listening(8443) and is_listening(8480), "the sandbox's start", started[-1])
        elif how == "window":
            opens_a_verification(text)
            opens_a_verification("./my-kiosk")  # what pkg-config made
        else:
            status = shell(text).wait(240)
            # The doctor finds no camera where there is none.
            assert status == 0 or (how == "run may fail" and status in (1, 2)), f"{status}: {text}"

    readme = re.search(r"^```cpp\n(.*?)^```$", (root / "README.md").read_text(), re.M | re.S).group(1)
    (project / "main.cpp").write_text(pressed(readme))
    assert shell("cmake --build build").wait(120) == 0, "the README's program does not compile"
    opens_a_verification("build/my-kiosk")
    print(f"{len(blocks)} blocks do what they say")
finally:
    for process in started:
        end(process)
    shutil.rmtree(work)
