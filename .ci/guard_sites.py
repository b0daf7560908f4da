"""Checks that no number of a guard stands twice in a source file: log readers tell guards by file and number."""

import collections
import pathlib
import re
import sys

SITE = re.compile(r"\b(?:QRM_SITE|QRM_ASSERT_AT)\((\d+)")
root = pathlib.Path(__file__).resolve().parent.parent

failures = []
guards = 0
for source in sorted(path for path in (root / "QRMUtils").rglob("*") if path.suffix in (".cpp", ".h")):
    numbers = collections.Counter(SITE.findall(source.read_text()))
    guards += numbers.total()
    failures += [f"{source.relative_to(root)}: number {n} stands {count} times" for n, count in numbers.items() if count > 1]
if guards == 0:
    failures.append("no guards were found: they must be spelled in another way than this check knows")

print("\n".join(failures) or f"{guards} numbered guards, each number once in its file")
sys.exit(bool(failures))
