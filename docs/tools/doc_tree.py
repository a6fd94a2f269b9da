"""What the documents consist of: Markdown pages, and programs whose sources say what they print."""
import pathlib
import re
import textwrap

DOCS = pathlib.Path(__file__).resolve().parent.parent
TREE = DOCS.parent


def pages():
    return sorted(p for p in DOCS.rglob("*.md"))


def programs():
    return sorted([*DOCS.glob("guide/*.cpp"), *DOCS.glob("cookbook/*.cpp")])


class Program:
    """A source: its opening comment, its code, and the lines it prints, which end it."""

    def __init__(self, path):
        self.path = path
        source, _, printed = path.read_text().partition("\n// Prints:\n")
        lines = source.split("\n")
        head = next(i for i, line in enumerate(lines) if not line.startswith("//"))
        comment = [line[3:] for line in lines[:head]]
        self.title = comment[0]
        self.text = "\n".join(comment[2:])
        self.code = "\n".join(lines[head:]).strip("\n")
        self.printed = "\n".join(line[5:] for line in printed.rstrip("\n").split("\n"))


def blocks(page, language):
    """The fenced blocks of a page in a language, as (line number, text without common indentation)."""
    for match in re.finditer(r"^```" + language + r"\n(.*?)^```$", page, re.M | re.S):
        yield page.count("\n", 0, match.start()) + 1, textwrap.dedent(match.group(1)).rstrip("\n")


def links(page):
    """The targets of a page's links and pictures that lie in the tree; code is no link."""
    prose = re.sub(r"^```.*?^```$|`[^`\n]*`", "", page, flags=re.M | re.S)
    return [t for t in re.findall(r"\]\(([^)\s]+)\)", prose) if not re.match(r"[a-z]+:|#", t)]
