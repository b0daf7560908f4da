"""Makes the code of a page a program, and compares what it prints with what the page says.

usage: snippets.py PAGE PROGRAM.cpp     each block of C++ becomes a function; the program runs them in turn
       snippets.py --check PAGE PROGRAM  runs it: a block of text that follows one of C++ is what that prints
"""

import pathlib
import re
import subprocess
import sys

BLOCK = re.compile(r"^```(\w*)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
MARK = "=== block "


def blocks(page):
    """Pairs of code and of what it prints, nothing where the page does not say."""
    found = []
    for kind, text in BLOCK.findall(pathlib.Path(page).read_text()):
        if kind == "cpp":
            found.append([text, None])
        elif kind == "text" and found:
            found[-1][1] = text
    return found


def write_program(page, target):
    root = pathlib.Path(__file__).resolve().parent.parent
    headers = sorted(path for folder in ("QRMCore", "WQSStreams", "QRMUtils/XML/DOMInterface")
                     for path in (root / folder).glob("*.h"))
    lines = [f"#include <{path.relative_to(root)}>" for path in headers]
    lines += [f"#include <{name}>" for name in ("filesystem", "fstream", "iostream", "map", "memory", "sstream", "thread", "vector",
                                                "xercesc/dom/DOM.hpp", "xercesc/framework/LocalFileFormatTarget.hpp",
                                                "xercesc/framework/MemBufInputSource.hpp",
                                                "xercesc/framework/MemBufFormatTarget.hpp",
                                                "xercesc/parsers/XercesDOMParser.hpp", "xercesc/sax/HandlerBase.hpp",
                                                "xercesc/sax2/DefaultHandler.hpp", "xercesc/sax2/SAX2XMLReader.hpp",
                                                "xercesc/sax2/XMLReaderFactory.hpp", "xercesc/util/PlatformUtils.hpp")]
    code = blocks(page)
    for number, (text, _) in enumerate(code):
        lines += [f"static void block{number}()", "{", text, "}"]
    lines += ["int main()", "{", "    QRMIDOM_DOMImplementation::initialize();"]
    for number in range(len(code)):
        lines += [f'    std::cout << "{MARK}{number}\\n" << std::flush;', f"    block{number}();",
                  "    std::cout << std::flush;"]
    lines += ["    QRMIDOM_DOMImplementation::terminate();", "}"]
    pathlib.Path(target).write_text("\n".join(lines) + "\n")


def check(page, program):
    run = subprocess.run([program], capture_output=True, text=True, cwd=pathlib.Path(__file__).resolve().parent.parent)
    if run.returncode != 0:
        sys.exit(f"{program} ends with {run.returncode}\n{run.stdout}{run.stderr}")
    printed = re.split(rf"^{MARK}\d+\n", run.stdout, flags=re.MULTILINE)[1:]
    expected = blocks(page)
    if len(printed) != len(expected) or not expected:
        sys.exit(f"{len(expected)} blocks, {len(printed)} outputs")
    for (code, said), shown in zip(expected, printed):
        if said is not None and shown.rstrip("\n") != said.rstrip("\n"):
            sys.exit(f"{code}\nprints\n{shown}\nand not\n{said}")
    print(f"{len(expected)} blocks, {sum(said is not None for _, said in expected)} compared")


if sys.argv[1] == "--check":
    check(sys.argv[2], sys.argv[3])
else:
    write_program(sys.argv[1], sys.argv[2])
