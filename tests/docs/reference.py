#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Looks over the pages of the reference: reference.py HTML_FOLDER AGREED_TEXTS

No link leads nowhere, no text was left as markdown, and every agreed code, flag and key is on a page.
"""

import os
import re
import sys
from html.parser import HTMLParser
from urllib.parse import unquote

MARKDOWN = re.compile(r"\]\(\S|\*\*\w[^*]*\w\*\*|```|(?:^|\n)#{1,6} \w")
VERBATIM = {"code", "pre", "script", "style", "tt"}


class Page(HTMLParser):
    def __init__(self, path):
        super().__init__()
        self.anchors, self.links, self.text, self.verbatim, self.fragment = set(), [], [], 0, 0
        with open(path, encoding="utf-8") as file:
            self.feed(file.read())

    def handle_starttag(self, tag, attributes):
        attributes = dict(attributes)
        self.anchors.update(attributes[key] for key in ("id", "name") if attributes.get(key))
        self.links += [attributes[key] for key in ("href", "src") if attributes.get(key)]
        self.verbatim += tag in VERBATIM
        if tag == "div" and (self.fragment or attributes.get("class") == "fragment"):
            self.fragment += 1

    def handle_endtag(self, tag):
        self.verbatim -= tag in VERBATIM
        self.fragment -= tag == "div" and self.fragment > 0

    def handle_data(self, data):
        if not self.verbatim and not self.fragment:
            self.text.append(data)


def dead_links(folder, pages):
    for name, page in pages.items():
        for link in set(page.links):
            if re.match(r"[a-z]+:", link):
                continue
            path, _, anchor = unquote(link).partition("#")
            path = path.partition("?")[0] or name
            if not os.path.exists(os.path.join(folder, path)):
                yield f"{name}: {link} is no file"
            elif anchor and path in pages and anchor not in pages[path].anchors:
                yield f"{name}: {link} is no place of that page"


def raw_markdown(pages):
    for name, page in pages.items():
        for text in page.text:
            if found := MARKDOWN.search(text):
                yield f"{name}: markdown is left in {text[max(0, found.start() - 30):found.end() + 30]!r}"


def missing_constants(folder, texts):
    listed = ""
    for name in ("error_codes", "enumerations", "bit_masks", "configuration_keys"):
        with open(os.path.join(folder, name + ".html"), encoding="utf-8") as file:
            cells = re.findall(r"<(?:td|li)[^>]*>(.*?)(?=</(?:td|li)>)", file.read(), re.S)
            listed += "".join("\n" + re.sub(r"<[^>]*>|\s*\n", "", cell).strip() + "\n" for cell in cells)
    listed = re.sub(r"&#160;|&nbsp;", " ", listed).replace("&amp;", "&").replace("&lt;", "<").replace("&gt;", ">")
    with open(texts, encoding="utf-8") as file:
        for line in file:
            row = re.fullmatch(r"\d+ (.+?): (.*)\n", line)
            for text in row.groups() if row else re.findall(r"^QRX_\w+", line):
                if f"\n{text}\n" not in listed:
                    yield f"{text} is on no page of constants"


def main():
    folder, texts = sys.argv[1:]
    pages = {name: Page(os.path.join(folder, name)) for name in sorted(os.listdir(folder)) if name.endswith(".html")}
    faults = [*dead_links(folder, pages), *raw_markdown(pages), *missing_constants(folder, texts)]
    print("\n".join(faults), end="\n" if faults else "")
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
