#!/usr/bin/env python3
"""Compares the lines that the code writes with those that docs/troubleshooting.md explains.

A line's form is its literal text with … for each part that is computed. Both sides must have the same forms.
usage: log_lines_test.py ROOT
"""
import pathlib
import re
import sys

LITERAL = r'"(?:[^"\\]|\\.)*"'
# What puts a line together where the call that writes it does not.
ELSEWHERE = re.compile(r"\bfailure_ = |\bconst missing = |\banswerHandler\((?=\")|\breturn (?=\"sessionID: )")
# The calls that write such a line.
INDIRECT = {"failure_", "missing", "failureLine", "lineOf(result, metrics, liveScore)"}
CALL = re.compile(r"(?<!void )\b(?:print|NSLog)\(")


def expression(text, start):
    """From `start` to where the argument or the statement ends."""
    depth = 0
    for token in re.finditer(rf"{LITERAL}|[(\[{{]|[)\]}}]|[,;]", text[start:]):
        if token.group() in "([{":
            depth += 1
        elif token.group() in ")]}":
            depth -= 1
        if depth < 0 or (depth == 0 and token.group() in ",;"):
            return text[start : start + token.start()].strip()
    raise ValueError(text[start : start + 60])


def forms(line):
    """The forms of an expression: one, or that of each branch which is a text alone."""
    if re.search(rf"\?\s*{LITERAL}\s*:", line):
        return [literal[1:-1] for literal in re.findall(LITERAL, line)]
    form, depth = "", 0
    for token in re.finditer(rf"{LITERAL}|[(\[{{]|[)\]}}]|\+|[^\s\"()\[\]{{}}+]+", line):
        if token.group() in ")]}":
            depth -= 1
        elif depth == 0 and token.group().startswith('"'):
            form += token.group()[1:-1]
        elif depth == 0 and token.group() != "+" and not form.endswith("…"):
            form += "…"
        if token.group() in "([{":
            depth += 1
    return [form]


def plain(form):
    return form.replace('\\"', '"')


def written(root):
    """Pairs of a form and the file that writes it."""
    for path in sorted(p for folder in ("sdk", "platform") for p in (root / folder).rglob("*.[ch]*")):
        text = re.sub(r"(?<!:)//[^\n]*", "", path.read_text())
        text = re.sub(r'"\s*\n\s*"', "", text)
        text = re.sub(rf"std::string\(({LITERAL})\)", r"\1", text)
        for call in CALL.finditer(text):
            line = expression(text, call.end())
            if line.startswith("std::string_view "):  # the declaration
                continue
            if '"' in line:
                yield from ((plain(form), path.name) for form in forms(line))
            elif line not in INDIRECT:
                yield f"what this test cannot follow: {line}", path.name
        for place in ELSEWHERE.finditer(text):
            yield from ((plain(form), path.name) for form in forms(expression(text, place.end())))


def main(root):
    document = (root / "docs/troubleshooting.md").read_text()
    explained = re.findall(r"^\| `([^`]+)` \|", document, re.M)
    places = list(written(root))
    lines = {form for form, _ in places}
    faults = [f"{where} writes what is not explained: {form}" for form, where in places if form not in explained]
    faults += [f"nobody writes what is explained: {form}" for form in explained if form not in lines]
    faults += [f"explained twice: {form}" for form in set(explained) if explained.count(form) > 1]
    if len(places) < 70:
        faults.append(f"only {len(places)} places were found")
    print("\n".join(faults) if faults else f"{len(places)} places write {len(lines)} lines, all explained")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1])))
