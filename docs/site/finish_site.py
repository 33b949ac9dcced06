"""finish_site.py HTML_DIR: each link of the site leads to a file and a place in it that are there.

Nothing may be loaded from elsewhere; links to elsewhere are left to the reader. Doxygen indexes some
members that it shows nowhere, private classes and friends: their links become plain text first.
"""

import html.parser
import pathlib
import re
import sys
import urllib.parse


class Page(html.parser.HTMLParser):
    def __init__(self, text):
        super().__init__()
        self.names = set()
        self.links = []
        self.loaded = []
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        given = dict(attributes)
        self.names.update(given[word] for word in ("id", "name") if given.get(word))
        if tag in ("a", "area") and given.get("href"):
            self.links.append(given["href"])
        self.loaded += [given[word] for word in ("src", "data") if given.get(word)]
        if tag == "link" and given.get("href"):
            self.loaded.append(given["href"])


def target_of(path, link):
    """The file that a link of a page leads to, and the place in it."""
    parts = urllib.parse.urlsplit(link)
    name = urllib.parse.unquote(parts.path)
    return (path.parent / name).resolve() if name else path, urllib.parse.unquote(parts.fragment)


def unlink_hidden_members(pages):
    """Changes the files, and the pages with them."""
    hidden = re.compile(r"#(nested-classes|a[0-9a-f]{32})$")

    def is_dead(path, link):
        target, place = target_of(path, link)
        return target in pages and place not in pages[target].names

    for path, page in pages.items():
        dead = {link for link in page.links if hidden.search(link) and is_dead(path, link)}
        if not dead:
            continue
        text = path.read_text()
        for link in dead:
            text = re.sub(rf'<a [^>]*href="{re.escape(link)}"[^>]*>(.*?)</a>', r"\1", text)
        path.write_text(text)
        pages[path] = Page(text)


def fault_of(pages, path, link, is_loaded):
    """What is wrong with a link; empty if nothing is."""
    scheme = urllib.parse.urlsplit(link).scheme
    if scheme in ("http", "https") and is_loaded:
        return "is loaded from elsewhere"
    if scheme:
        return ""
    target, place = target_of(path, link)
    if not target.is_file():
        return "leads to nothing"
    if place and target in pages and place not in pages[target].names:
        return "leads to no such place"
    return ""


def main():
    folder = pathlib.Path(sys.argv[1]).resolve()
    pages = {path: Page(path.read_text()) for path in sorted(folder.rglob("*.html"))}
    unlink_hidden_members(pages)
    count = 0
    faults = []
    for path, page in pages.items():
        links = [(link, False) for link in page.links] + [(link, True) for link in page.loaded]
        count += len(links)
        for link, is_loaded in links:
            if fault := fault_of(pages, path, link, is_loaded):
                faults.append(f"{path.name}: {link} {fault}")
    print(f"{len(pages)} pages, {count} links")
    if faults or not pages:
        sys.exit("\n".join(faults) or "no pages")


main()
