#!/usr/bin/env python3
"""Compares the lines that the code writes with those that docs/troubleshooting.md explains.

usage: log_lines_test.py ROOT
"""
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])
LITERAL = r'"((?:[^"\\]|\\.)*)"'
# Where a line begins: in a call that writes it, or where it is put together.
BEGINS = re.compile(
    r'(?:\bprint\(|\bNSLog\(|failure_ =|answerHandler\(|const missing =.*?\?|return)'
    rf'\s*(?:std::string\()?{LITERAL}')


def written():
    for folder in ("sdk", "platform"):
        for path in sorted((root / folder).rglob("*.cpp")):
            text = re.sub(r'"\s*\n\s*"', "", path.read_text())
            for match in BEGINS.finditer(text):
                is_return = match.group(0).startswith("return")
                line = match.group(1).replace('\\"', '"')
                if not is_return or line.startswith("sessionID"):
                    yield line, path.name


document = (root / "docs/troubleshooting.md").read_text()
# What a documented line begins with, and whether it is all of it.
explained = [(line.split("…")[0].rstrip(), "…" not in line)
             for line in re.findall(r"^\| `([^`]+)` \|", document, re.M)]
lines = list(written())
faults = []
for line, where in lines:
    begins = line.split('"')[0].rstrip()
    if not any(begins == text if whole else begins.startswith(text) for text, whole in explained):
        faults.append(f"{where} writes what is not explained: {line}")
for text, _ in explained:
    if not any(line.rstrip().startswith(text) for line, _ in lines):
        faults.append(f"nobody writes what is explained: {text}")
print("\n".join(faults) if faults else f"{len(lines)} places, {len(explained)} lines explained")
sys.exit(1 if faults or len(lines) < 60 else 0)
