#!/usr/bin/env python3
"""Turns a page of docs/ into a manual page, so that both have one source.

The title, or what follows a colon in it, becomes the page's NAME, and what comes before the first
heading its DESCRIPTION. A table that fits into a terminal of 80 columns stays one; any other becomes a
list of terms, the first column, with what the other columns say below.
"""
import argparse
import datetime
import os
import re

from markdown_it import MarkdownIt
from markdown_it.tree import SyntaxTreeNode

# Widest table that stays one, in characters: the terminal's 80 less the page's indentation.
TABLE_WIDTH = 72

SPECIAL = {"\\": r"\e", "^": r"\(ha", "~": r"\(ti", "`": r"\(ga"}


def escape(text):
    """Text as roff writes it."""
    return "".join(
        SPECIAL.get(letter, letter if ord(letter) < 128 else rf"\[u{ord(letter):04X}]")
        for letter in text)


def escape_code(text):
    """The same for what a reader may type: hyphens are minus signs and quotes are straight."""
    return escape(text).replace("-", r"\-").replace("'", r"\(aq")


def text_lines(text):
    """Roff text in which no line is taken for a request."""
    lines = (line.strip() for line in text.split("\n"))
    return [r"\&" + line if line.startswith((".", "'")) else line for line in lines if line]


class Renderer:
    """Writes the blocks of one page; `pages` says which documents are manual pages themselves."""

    def __init__(self, pages):
        self.pages = pages
        self.lines = []

    def add(self, *lines):
        self.lines.extend(lines)

    # ---- Inside a line.

    def inline(self, node, font="R"):
        """Roff text of an inline node and its children; `font` is what follows an emphasis."""
        return "".join(self.span(child, font) for child in node.children)

    def span(self, node, font):
        if node.type == "text":
            return escape(node.content)
        if node.type == "code_inline":
            return rf"\fB{escape_code(node.content)}\f{font}"
        if node.type in ("strong", "em"):
            inner = "B" if node.type == "strong" else "I"
            return rf"\f{inner}{self.inline(node, inner)}\f{font}"
        if node.type == "link":
            return self.link(node, font)
        if node.type == "softbreak":
            return "\n"
        if node.type == "hardbreak":
            return "\n.br\n"
        raise ValueError(f"nothing is known of {node.type} inside a line")

    def link(self, node, font):
        """A document that is named by its file is named as a page where it is one."""
        page = self.pages.get(os.path.basename(node.attrs["href"].partition("#")[0]))
        text = self.inline(node, font)
        if page and text.endswith(".md"):
            return page_name(page, font)
        return text

    def paragraph(self, text):
        for index, piece in enumerate(text.split("\n.br\n")):
            if index > 0:
                self.add(".br")
            self.add(*text_lines(piece))

    # ---- Blocks.

    def block(self, node):
        handler = getattr(self, "block_" + node.type, None)
        if handler is None:
            raise ValueError(f"nothing is known of the block {node.type}")
        handler(node)

    def block_heading(self, node):
        title = self.inline(node.children[0])
        if node.tag == "h2":
            # Capitals, as sections have them, but for what has to be typed as it stands.
            parts = re.split(r"(\\fB.*?\\fR)", title)
            title = "".join(part if part.startswith(r"\fB") else part.upper() for part in parts)
        self.add((".SH " if node.tag == "h2" else ".SS ") + re.sub(r"\\f[BIR]", "", title))

    def block_paragraph(self, node):
        self.add(".PP")
        self.paragraph(self.inline(node.children[0]))

    def block_fence(self, node):
        self.add(".PP", ".RS 4", ".EX")
        for line in escape_code(node.content.rstrip("\n")).split("\n"):
            self.add(r"\&" + line if line.startswith((".", r"\(aq")) else line)
        self.add(".EE", ".RE")

    def block_bullet_list(self, node):
        for item in node.children:
            self.list_item(item, r"\(bu")

    def block_ordered_list(self, node):
        for number, item in enumerate(node.children, start=1):
            self.list_item(item, f"{number}.")

    def list_item(self, item, mark):
        self.add(f".IP {mark} 3")
        first, *rest = item.children
        self.paragraph(self.inline(first.children[0]))
        for child in rest:
            self.add(".RS 3")
            self.block(child)
            self.add(".RE")

    def block_table(self, node):
        rows = [[self.inline(cell.children[0]) if cell.children else "" for cell in row.children]
                for part in node.children for row in part.children]
        titles, *body = rows
        widths = [max(printed_width(row[i]) for row in rows) for i in range(len(titles))]
        if sum(widths) + 3 * (len(widths) - 1) <= TABLE_WIDTH:
            self.narrow_table(titles, body)
        else:
            text = titles.index("meaning") if "meaning" in titles else widest(widths)
            for row in body:
                self.term(titles, row, text)
        self.add(".PP")

    def narrow_table(self, titles, body):
        columns = len(titles)
        self.add(".PP", ".TS", "tab(|);", " ".join(["lb"] * columns), " ".join(["l"] * columns) + ".")
        self.add(*("|".join(row) for row in [titles, *body]))
        self.add(".TE")

    def term(self, titles, row, text):
        """One row as a term: the first column, then the one that is text, then the others."""
        others = [f"{titles[i]}: {row[i]}" for i in range(1, len(row)) if i != text and row[i]]
        self.add(".TP 7", *text_lines(row[0]), *text_lines(row[text]))
        if row[text] and others:
            self.add(".br")
        self.add(*text_lines("; ".join(others)))


def widest(widths):
    """The widest column but the first."""
    return max(range(1, len(widths)), key=lambda i: widths[i])


def printed_width(text):
    """Characters that roff text takes on paper."""
    return len(re.sub(r"\\\(..|\\\[.*?\]|\\[e-]", "x", re.sub(r"\\f[BIR]|\\&", "", text)))


def page_name(page, font="R"):
    name, section = page
    return rf"\fB{escape_code(name)}\f{font}({section})"


def parse_page(text):
    """`kxhost.toml.5=docs/configuration.md` as the document's file name and (name, section)."""
    page, _, document = text.partition("=")
    name, _, section = page.rpartition(".")
    return os.path.basename(document), (name, section)


def date_of(document):
    """When the document changed last, or the build's own date where one is laid down."""
    seconds = os.environ.get("SOURCE_DATE_EPOCH", os.path.getmtime(document))
    return datetime.datetime.fromtimestamp(int(seconds), datetime.timezone.utc).date().isoformat()


def manual_page(document, page, pages, release, date):
    """The manual page of a document's text, as a string."""
    tree = SyntaxTreeNode(MarkdownIt("commonmark").enable("table").parse(document))
    title, *blocks = tree.children
    if title.tag != "h1":
        raise ValueError("a page begins with its title")
    renderer = Renderer(pages)
    name, section = page
    volume = {"1": "User Commands", "5": "File Formats"}[section]
    purpose = renderer.inline(title.children[0]).split(": ")[-1]
    renderer.add(r"'\" t", rf'.TH {name.upper()} {section} {date} "{release}" "{volume}"',
                 ".SH NAME", rf"{escape_code(name)} \- {purpose[0].lower()}{purpose[1:]}")
    if blocks[0].tag != "h2":
        renderer.add(".SH DESCRIPTION")
    for block in blocks:
        renderer.block(block)
    others = sorted(other for other in pages.values() if other != page)
    renderer.add(".SH SEE ALSO", ",\n".join(page_name(other) for other in others))
    return without_idle_requests(renderer.lines)


def without_idle_requests(lines):
    """Drops the paragraphs that begin where one has begun already, or that never come."""
    kept = []
    for line in lines:
        if kept and kept[-1] == ".PP" and line.startswith((".PP", ".SH", ".SS", ".TP", ".IP", ".RE")):
            kept.pop()
        if line == ".PP" and kept[-1].startswith((".SH", ".SS")):
            continue
        kept.append(line)
    return "\n".join(kept) + "\n"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--page", required=True, help="name and section, such as kxhost.1")
    parser.add_argument("--release", required=True, help="product and version")
    parser.add_argument("--output", required=True)
    parser.add_argument("pages", nargs="+", metavar="PAGE=DOCUMENT", help="all the pages there are")
    arguments = parser.parse_args()
    documents = dict(page.split("=", 1) for page in arguments.pages)
    pages = dict(parse_page(page) for page in arguments.pages)
    document = documents[arguments.page]
    with open(document, encoding="utf-8") as file:
        text = file.read()
    page = manual_page(text, pages[os.path.basename(document)], pages, arguments.release,
                       date_of(document))
    with open(arguments.output, "w", encoding="ascii") as file:
        file.write(page)


if __name__ == "__main__":
    main()
