#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Markdown to HTML to Markdown to HTML: what the second page has lost of the first.

    round_trip.py TOMELET FOLDER [--engine 0|1] [--show N]

Takes every Markdown file below the folder. A page's headings, list items, links, images and table cells are compared in
order. The rules of docs/conversion.md explain a difference when it is gone after what they are about was taken out of the
first page, one rule after the other. Ends with status 1 when a difference is left that no rule explains."""
import argparse
import difflib
import html.parser
import json
import os
import re
import subprocess
import sys
import tempfile

KINDS = ("headings", "items", "links", "images", "cells")
VOID = {"img", "br", "hr", "input", "meta", "link", "source", "col", "wbr", "area", "base", "embed", "track"}
CLOSES = {"li": {"li"}, "td": {"td", "th"}, "th": {"td", "th"}, "tr": {"td", "th"}}


class Page(html.parser.HTMLParser):
    """The parts of a page that a reader would miss. Texts are those of the part itself, without what nests in it."""

    def __init__(self, page):
        super().__init__()
        self.found = {kind: [] for kind in KINDS}
        self.open = []  # (tag, kind, words, extra)
        body = page.find("<body")
        self.feed(page[max(body, 0):])
        self.close()

    def handle_starttag(self, tag, attributes):
        attributes = dict(attributes)
        if tag == "img" and attributes.get("src"):
            self.found["images"].append(attributes["src"])
        if tag in VOID:
            return
        while self.open and tag in CLOSES and self.open[-1][0] in CLOSES[tag]:
            self.end(-1)
        kind = "headings" if tag in ("h1", "h2", "h3", "h4", "h5", "h6") else {"li": "items", "td": "cells", "th": "cells"}.get(tag)
        if tag == "a" and attributes.get("href"):
            kind = "links"
        extra = attributes.get("href") if kind == "links" else tag if kind == "headings" else ""
        if kind:  # in the order in which they begin
            self.found[kind].append(None)
        self.open.append((tag, kind, [], extra, len(self.found[kind]) - 1 if kind else 0))

    def handle_endtag(self, tag):
        for place in range(len(self.open) - 1, -1, -1):
            if self.open[place][0] == tag:
                while len(self.open) > place:
                    self.end(-1)
                return

    def end(self, place):
        _, kind, words, extra, number = self.open.pop(place)
        if kind:
            self.found[kind][number] = (extra + " " if extra else "") + "".join("".join(words).split())

    def handle_data(self, data):
        for tag, kind, words, _, _ in reversed(self.open):
            if tag in ("script", "style"):
                return
            if kind:
                words.append(data)
            if kind in ("items", "cells"):
                return

    def close(self):
        super().close()
        while self.open:
            self.end(-1)


def documents(folder):
    for where, folders, names in os.walk(folder):
        folders.sort()
        for name in sorted(names):
            if name.lower().endswith((".md", ".markdown")):
                path = os.path.join(where, name)
                with open(path, encoding="utf-8", errors="replace") as file:
                    yield os.path.relpath(path, folder), file.read()


def ops(program, lines):
    with tempfile.TemporaryDirectory() as home:
        env = dict(os.environ, HOME=home, **{f"XDG_{name}_HOME": home for name in ("CONFIG", "DATA", "CACHE")})
        text = "".join(json.dumps(line) + "\n" for line in lines)
        result = subprocess.run([program, "--root", home, "ops"], input=text.encode(), capture_output=True, env=env, check=True)
    return [json.loads(line).get("result") for line in result.stdout.splitlines()]


def converted(program, engine, operation, texts):
    return ops(program, [["$set", "MarkdownConverter", engine]] + [[operation, text] for text in texts])[1:]


def differences(first, second):
    """For each kind the lines that one page alone has."""
    for kind in KINDS:
        lines = [line for line in difflib.ndiff(first.found[kind], second.found[kind]) if line[0] in "+-"] \
            if first.found[kind] != second.found[kind] else []
        if lines:
            yield kind, lines


KNOWN = set("""html head body title meta style p div br hr h1 h2 h3 h4 h5 h6 ul ol li a img table colgroup thead tbody tr th
    td b strong i em code pre blockquote dl dt dd span del strike mark input""".split())


def without_other_tags(page):
    """Only tags that a step knows, each on one line and in lower case; none for what the notebook itself reads."""
    page = re.sub(r"(?s)<!--.*?-->|<caption.*?</caption>", "", page)
    page = re.sub(r"</?([A-Za-z][\w:-]*)[^>]*>", lambda tag: " ".join(tag[0].split()) if tag[1] in KNOWN else "", page)
    return re.sub(r"(?i) (align|valign|name|target|rel|width|height|style|class)=(\"[^\"]*\"|'[^']*'|[^\s\">]+)(?=[^<]*>)", "", page)


def without_code(page):
    page = re.sub(r"(?s)<pre>.*?</pre>", "<p>code</p>", page)
    return re.sub(r"(?s)<code>.*?</code>", "code", page)


def in_texts(change):
    return lambda page: re.sub(r"(?s)(^|>)([^<>]+)", lambda text: text[1] + change(text[2]), page)


def without_blocks_in_items(page):
    """Texts in items, cells, links and headings on one line, without blocks in them; none behind a list in an item."""
    page = re.sub(r"(</[uo]l>)(?:[^<]|</?(?:p|br|a|b|i|em|strong|img)\b[^>]*>)*(?=</li>)", r"\1", page)
    page = re.sub(r"(?s)<li>(.*?)(?=<li>|</?[uo]l>|</li>)",
                  lambda item: "<li>" + " ".join(re.sub(r"</?(p|div|br|hr|blockquote|h[1-6]|dl|dt|dd)\b[^>]*>", " ", item[1]).split()), page)
    return re.sub(r"(?s)<(td|th|a|h[1-6])\b([^>]*)>(.*?)</\1>",
                  lambda part: f"<{part[1]}{part[2]}>" + " ".join(re.sub(r"</?(p|div|br|hr|ul|ol|li|h[1-6])\b[^>]*>", " ", part[3]).split())
                  + f"</{part[1]}>", page)


def without_empty_parts(page):
    """No empty cell, no row of one cell, no empty item."""
    page = re.sub(r"<(t[dh])\b([^>]*)>\s*</", r"<\1\2>x</", page)
    page = re.sub(r"(<tr>\s*<td\b(?:(?!<t[dr]).)*</td>)(?=\s*</tr>)", r"\1<td>x</td>", page)
    return re.sub(r"<li>\s*</li>", "", page)


def plain_address(address):
    return re.sub(r"[^\w./#-]", "x", html.unescape(address))


# Each rule takes what it is about out of a page.
RULES = (
    ("other tags", without_other_tags),
    ("code", without_code),
    ("entities", in_texts(lambda text: re.sub(r"&#?\w+;|…", "x", text))),
    ("signs", in_texts(lambda text: re.sub(r"[*_\[\]#|`~^=\\{}$:+<>!@-]|\d+\.|//", "x", text))),
    ("indents", lambda page: re.sub(r"(?m)^[ \t]+|[ \t]+$", "", page)),
    ("blocks in items", without_blocks_in_items),
    ("tables without a head", lambda page: re.sub(r"(?s)<table((?!</table>).)*</table>",
                                                  lambda table: table[0] if "</thead>" in table[0] else "", page)),
    ("empty cells and items", without_empty_parts),
    ("addresses", lambda page: re.sub(r'((?:href|src)=")([^"]*)"', lambda a: a[1] + plain_address(a[2]) + '"', page)),
)


def main():
    arguments = argparse.ArgumentParser()
    arguments.add_argument("program")
    arguments.add_argument("folder")
    arguments.add_argument("--engine", type=int, default=1)
    arguments.add_argument("--show", type=int, default=3, help="lines to show of each difference")
    options = arguments.parse_args()
    names, texts = zip(*documents(options.folder))
    pages = dict(zip(names, converted(options.program, options.engine, "tm_markdownToHTML", texts)))
    totals = {kind: sum(len(Page(page).found[kind]) for page in pages.values()) for kind in KINDS}
    open_ = {(name, kind): None for name in names for kind in KINDS}
    explained = {}
    for rule, change in (("none", lambda page: page), *RULES):
        pages = {name: change(page) for name, page in pages.items() if any((name, kind) in open_ for kind in KINDS)}
        if not pages:
            break
        back = converted(options.program, options.engine, "tm_markdownifyHTML", list(pages.values()))
        second = converted(options.program, options.engine, "tm_markdownToHTML", back)
        left = {}
        for (name, page), after in zip(pages.items(), second):
            left.update({(name, kind): lines for kind, lines in differences(Page(page), Page(after)) if (name, kind) in open_})
        explained[rule] = len(open_) - len(left)
        open_ = left
    for (name, kind), lines in open_.items():
        print(f"{name}\t{kind}\t{len(lines)} differ")
        print("".join(f"    {line[:150]}\n" for line in lines[:options.show]), end="")
    print(f"{len(names)} documents with " + ", ".join(f"{count} {kind}" for kind, count in totals.items()))
    print(f"of {len(names) * len(KINDS)} comparisons {explained.pop('none')} are equal; by rules: "
          + ", ".join(f"{count} {rule}" for rule, count in explained.items()) + f"; without: {len(open_)}")
    return 1 if open_ else 0


if __name__ == "__main__":
    sys.exit(main())
