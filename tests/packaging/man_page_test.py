"""How Markdown becomes a manual page: man_page_test.py FOLDER_OF_MAN_PAGE_PY."""
import os
import sys
import tempfile
import unittest

sys.path.insert(0, sys.argv.pop(1))
import man_page  # pylint: disable=wrong-import-position

PAGES = {"tool.md": ("tool", "1"), "tool-conf.md": ("tool.conf", "5")}


def made(text, page=("tool", "1")):
    return man_page.manual_page(text, page, PAGES, "product 1.2", "2020-02-03")


def body(text):
    """The lines between the page's head and SEE ALSO."""
    lines = made("# Tool: do it\n\n" + text).splitlines()
    start = lines.index(r"tool \- do it") + 1
    return lines[start:lines.index(".SH SEE ALSO")]


class ManPage(unittest.TestCase):
    def test_title_gives_name_and_header(self):
        lines = made("# Tool: Do it\n\nText.\n").splitlines()
        self.assertEqual(lines[:4], ["'\\\" t", '.TH TOOL 1 2020-02-03 "product 1.2" "User Commands"',
                                     ".SH NAME", r"tool \- do it"])

    def test_title_without_colon_is_the_purpose(self):
        self.assertIn(r"tool.conf \- settings of tool",
                      made("# Settings of tool\n\nText.\n", ("tool.conf", "5")).splitlines())

    def test_other_pages_are_named_at_the_end(self):
        self.assertEqual(made("# Tool\n\nText.\n").splitlines()[-2:],
                         [".SH SEE ALSO", r"\fBtool.conf\fR(5)"])

    def test_text_before_the_first_heading_is_the_description(self):
        self.assertEqual(body("Text.\n\n## More\n\nOther.\n"),
                         [".SH DESCRIPTION", "Text.", ".SH MORE", "Other."])

    def test_headings_have_capitals_but_for_code(self):
        self.assertEqual(body("## The `[camera]` table\n\nA.\n\n### Small `x`\n\nB.\n"),
                         [".SH THE [camera] TABLE", "A.", ".SS Small x", "B."])

    def test_fonts(self):
        self.assertEqual(body("## S\n\nUse `-c` *FILE* or **both `a`**.\n")[1:],
                         [r"Use \fB\-c\fR \fIFILE\fR or \fBboth \fBa\fB\fR."])

    def test_paragraphs_and_hard_breaks(self):
        self.assertEqual(body("## S\n\none\\\ntwo\n\nthree\n")[1:],
                         ["one", ".br", "two", ".PP", "three"])

    def test_what_roff_would_take_for_its_own(self):
        self.assertEqual(body("## S\n\n.dot\n'quote' a\\\\b x^2 ~ \u00b2\n")[1:],
                         [r"\&.dot", r"\&'quote' a\eb x\(ha2 \(ti \[u00B2]"])

    def test_code_block(self):
        self.assertEqual(body("## S\n\n```sh\n.x 'a'\n  kx --y\n```\n")[1:],
                         [".RS 4", ".EX", r"\&.x \(aqa\(aq", r"  kx \-\-y", ".EE", ".RE"])

    def test_lists(self):
        self.assertEqual(body("## S\n\n- one\n  more\n- two\n\n1. first\n")[1:],
                         [r".IP \(bu 3", "one", "more", r".IP \(bu 3", "two", ".IP 1. 3", "first"])

    def test_list_within_a_list(self):
        self.assertEqual(body("## S\n\n- one\n  - inner\n")[1:],
                         [r".IP \(bu 3", "one", ".RS 3", r".IP \(bu 3", "inner", ".RE"])

    def test_narrow_table_stays_one(self):
        self.assertEqual(body("## S\n\n| a | b |\n| --- | --- |\n| `1` | 2 |\n\nText.\n")[1:],
                         [".TS", "tab(|);", "lb lb", "l l.", "a|b", r"\fB1\fR|2", ".TE", ".PP", "Text."])

    def test_wide_table_becomes_terms(self):
        wide = "w" * 80
        self.assertEqual(
            body(f"## S\n\n| key | value | meaning |\n| --- | --- | --- |\n| `k` | v | {wide} |\n")[1:],
            [".TP 7", r"\fBk\fR", wide, ".br", "value: v"])

    def test_table_turns_at_the_width_of_the_terminal(self):
        def table(length):
            return body(f"## S\n\n| key | meaning |\n| --- | --- |\n| k | {'w' * length} |\n")
        self.assertIn(".TS", table(72 - 3 - 3))
        self.assertNotIn(".TS", table(72 - 3 - 3 + 1))

    def test_width_is_that_on_paper(self):
        self.assertEqual(man_page.printed_width(r"\fBa\-b\fR\(ha\[u00B2]\&\e"), 6)

    def test_without_a_meaning_the_widest_column_is_the_text(self):
        wide = "w" * 80
        self.assertEqual(
            body(f"## S\n\n| state | does | set by |\n| --- | --- | --- |\n| s | {wide} | me |\n")[1:],
            [".TP 7", "s", wide, ".br", "set by: me"])

    def test_link_to_a_document_that_is_a_page(self):
        self.assertEqual(body("## S\n\nSee [tool-conf.md](tool-conf.md#x), [here](tool-conf.md) and "
                              "[other.md](other.md).\n")[1:],
                         [r"See \fBtool.conf\fR(5), here and other.md."])

    def test_what_is_not_known_is_refused(self):
        for text in ("> quote\n", "![picture](a.png)\n"):
            with self.assertRaisesRegex(ValueError, "nothing is known of"):
                body("## S\n\n" + text)

    def test_page_without_title_is_refused(self):
        with self.assertRaisesRegex(ValueError, "begins with its title"):
            made("## S\n\nText.\n")

    def test_date_is_the_documents_or_the_one_laid_down(self):
        with tempfile.NamedTemporaryFile() as file:
            os.utime(file.name, (86400 * 365, 86400 * 365))
            os.environ.pop("SOURCE_DATE_EPOCH", None)
            self.assertEqual(man_page.date_of(file.name), "1971-01-01")
            os.environ["SOURCE_DATE_EPOCH"] = "0"
            self.assertEqual(man_page.date_of(file.name), "1970-01-01")


if __name__ == "__main__":
    unittest.main()
