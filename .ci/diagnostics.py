"""Checks the guards that log readers tell by file and number, and the page that lists them.

usage: diagnostics.py           checks that each number stands once in its file, and that docs/diagnostics.md is up to date
       diagnostics.py --update  writes the list anew
"""

import ast
import collections
import pathlib
import re
import sys

root = pathlib.Path(__file__).resolve().parent.parent
page = root / "docs/diagnostics.md"
START = "<!-- The tables below are made by .ci/diagnostics.py --update. -->\n"

SITE = re.compile(r"\b(?:QRM_SITE|QRM_ASSERT_AT)\((\d+)")
NAMED_ASSERTION = re.compile(r"\bQRM_CHECK\(([^,]+),\s*(\"(?:[^\"\\]|\\.|\"\s+\")*\"),\s*QRM_SITE")
ASSERTION = re.compile(r"\bQRM_ASSERT\(([^;]*?)\);")
FUNCTION = re.compile(r"^(?=\S)[\w:&*<> ,~]*?(\w+)::(~?\w+|operator[^\s(]+)\(", re.MULTILINE)

NULL_HANDLE = "`QRM_ASSERT(m_nodeImpl != NULL);`"
MEANINGS = {
    "m_nodeImpl != NULL": "the operation was called on a null handle",
    "searchNode != NULL": "the search was to begin at the null handle",
    "nodePrt == NULL": "a handle was assigned from, or compared with, a pointer that is not null",
    "nullPtr == NULL": "a handle was compared with a pointer that is not null",
    "refCountedNodeImpl": "a handle was to share what a null pointer stands for",
    "m_parserImpl": "the parser has no parser of Xerces behind it",
    "m_pOwner != NULL": "the handler belongs to no parser",
    "m_filter": "the adapter was asked before a filter was set",
    "importedNode != NULL": "the null handle was to be imported",
    "this->m_nodeImpl != NULL": "the operation was called on a null handle",
    "domConfiguration != NULL": "Xerces gave no configuration",
    "file != NULL": "there was no file to write to",
    "length <= static_cast<std::size_t>(std::numeric_limits<int>::max())": "the text is longer than a sink can take",
    "string.length <= static_cast<std::size_t>(std::numeric_limits<int>::max())":
        "the text of an event is longer than a callback can be given",
}


def sources():
    return sorted(path for path in (root / "QRMUtils").rglob("*") if path.suffix in (".cpp", ".h"))


def operation_at(text, position):
    found = None
    for found in FUNCTION.finditer(text, 0, position):
        pass
    if found is None:
        return ""
    owner, name = found.groups()
    return f"`{name}`" if name == owner or name.startswith("~") else f"`{owner}::{name}`"


def told_as(line_start, kind, condition):
    """What the guard says, and what it means."""
    if kind == "QRM_ASSERT_AT":
        return f"`QRM_ASSERT({condition});`", MEANINGS[condition]
    if re.search(r"\blive\(", line_start):
        return NULL_HANDLE, "the operation was called on a null handle"
    if re.search(r"allocated\(|makeParser\(|strings\.", line_start):
        return "no text, code 0", "there is no memory for what the operation makes"
    return "`Out of memory`, code 300", "Xerces ran out of memory"


def in_words(literals):
    """The text of C++ string literals one after the other."""
    return ast.literal_eval("(" + literals + ")")


def tables():
    lines = ["## With a number\n", "| file | number | operation | text | meaning |\n", "|---|---|---|---|---|\n"]
    assertions = ["\n## Without a number\n", "The number is the line in the source, which changes with the version.\n\n",
                  "| file | text | meaning |\n", "|---|---|---|\n"]
    for source in sources():
        text = re.sub(r"//.*", "", source.read_text())
        rows = []
        for match in re.finditer(r"\b(QRM_SITE|QRM_ASSERT_AT)\((\d+)(?:, ([^;]*?)\);)?", text):
            kind, number, condition = match.groups()
            before = text[max(text.rfind(";", 0, match.start()), text.rfind("{", 0, match.start())) + 1:match.start()]
            said, meaning = told_as(before, kind, condition)
            rows.append((int(number), operation_at(text, match.start()), said, meaning))
        lines += [f"| {source.name} | {number} | {operation} | {said} | {meaning} |\n"
                  for number, operation, said, meaning in sorted(rows)]
        conditions = sorted(set(ASSERTION.findall(text))) if source.parent.name != "internal" else []
        assertions += [f"| {source.name} | `QRM_ASSERT({condition});` | {MEANINGS[condition]} |\n" for condition in conditions]
        assertions += [f"| {source.name} | `{in_words(said)}` | {MEANINGS[condition]} |\n"
                       for condition, said in NAMED_ASSERTION.findall(text)]
    return "".join(["\n"] + lines + assertions)


def main():
    failures = []
    guards = 0
    for source in sources():
        numbers = collections.Counter(SITE.findall(source.read_text()))
        guards += numbers.total()
        failures += [f"{source.relative_to(root)}: number {n} stands {count} times" for n, count in numbers.items()
                     if count > 1]
    if guards == 0:
        failures.append("no guards were found: they must be spelled in another way than this check knows")
    text = page.read_text()
    head = text[:text.index(START) + len(START)]
    if sys.argv[1:] == ["--update"]:
        page.write_text(head + tables())
    elif text != head + tables():
        failures.append("docs/diagnostics.md is not what the code says: .ci/diagnostics.py --update writes it")
    print("\n".join(failures) or f"{guards} numbered guards, each number once in its file and all listed")
    sys.exit(bool(failures))


main()
