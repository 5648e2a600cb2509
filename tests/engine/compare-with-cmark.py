#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""compare-with-cmark.py TOMELET FILE...: compares the structure of our HTML with that of the program cmark.

Each file is cut at its headings, so that one difference does not hide the next. Both results are read into a list of
tags and words; white space, ids and what only one of the two can write are left out. Differences are counted by the first
place where the lists part, with one example each: every kind is either a rule of the dialect (docs/engine.md names them)
or a fault. --show N prints up to N examples of each kind, --kind TEXT only the kinds that contain the text."""
import argparse
import collections
import html.parser
import os
import re
import subprocess
import tempfile


class Structure(html.parser.HTMLParser):
    def __init__(self):
        super().__init__(convert_charrefs=True)
        self.items = []

    def handle_starttag(self, tag, attrs):
        if tag in ("figure", "figcaption", "p", "br"):
            return
        values = dict(attrs)
        self.items.append("<" + tag + (" " + (values.get("href") or values.get("src") or "")).rstrip() + ">")

    def handle_endtag(self, tag):
        if tag not in ("figure", "figcaption", "p", "br"):
            self.items.append("</" + tag + ">")

    def handle_data(self, data):
        self.items += data.split()


def structure(text):
    text = re.sub(r"\n<figcaption>.*?</figcaption>", "", text, flags=re.S)
    parser = Structure()
    parser.feed(text)
    parser.close()
    return parser.items


def sections(text):
    part = []
    fenced = False
    for line in text.splitlines(keepends=True):
        if re.match(r" {0,3}(```|~~~)", line):
            fenced = not fenced
        if not fenced and re.match(r"#{1,6} ", line) and part:
            yield "".join(part)
            part = []
        part.append(line)
    if part:
        yield "".join(part)


def kind_of(ours, theirs):
    for mine, other in zip(ours, theirs):
        if mine != other:
            name = lambda item: item.split(" ")[0].rstrip(">") if item.startswith("<") else "text"
            return f"{name(mine)} for {name(other)}"
    return "longer" if len(ours) > len(theirs) else "shorter"


def main():
    options = argparse.ArgumentParser()
    options.add_argument("tomelet")
    options.add_argument("files", nargs="+")
    options.add_argument("--show", type=int, default=1)
    options.add_argument("--kind", default="")
    args = options.parse_args()
    texts = set()
    for name in args.files:
        with open(name, encoding="utf-8", errors="ignore") as file:
            texts.update(sections(file.read().replace("\0", "")))
    texts = sorted(texts)
    kinds = collections.defaultdict(list)
    with tempfile.TemporaryDirectory() as folder:
        os.mkdir(folder + "/out")
        for start in range(0, len(texts), 500):
            batch = texts[start : start + 500]
            names = []
            for i, text in enumerate(batch):
                names.append(f"{folder}/{i}.md")
                with open(names[-1], "w", encoding="utf-8", newline="") as file:
                    file.write("\n" + text)  # a line before it: a document's first lines may be metadata
            subprocess.run([args.tomelet, "convert", "--snippet", "-o", folder + "/out", *names], check=True)
            for i, text in enumerate(batch):
                theirs = subprocess.run(["cmark", "--unsafe", names[i]], capture_output=True, check=True).stdout
                with open(f"{folder}/out/{i}.html", encoding="utf-8") as file:
                    ours = structure(file.read())
                theirs = structure(theirs.decode())
                if ours != theirs:
                    kinds[kind_of(ours, theirs)].append((text, ours, theirs))
    total = sum(len(cases) for cases in kinds.values())
    print(f"{len(texts)} sections, {total} differ")
    for kind, cases in sorted(kinds.items(), key=lambda entry: -len(entry[1])):
        if args.kind not in kind:
            continue
        print(f"--- {kind}: {len(cases)}")
        cases.sort(key=lambda case: len(case[0]))
        for text, ours, theirs in cases[: args.show]:
            at = next((i for i, (a, b) in enumerate(zip(ours, theirs)) if a != b), min(len(ours), len(theirs)))
            print(text[:600])
            print("   ours:  ", ours[max(0, at - 3) : at + 6])
            print("   theirs:", theirs[max(0, at - 3) : at + 6])


if __name__ == "__main__":
    main()
