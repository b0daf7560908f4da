"""Prints what the benchmarks found as ratios, each side's median over that of the other side in the same run, and draws
them.

usage: summary.py RESULT.json RAW_KIB HANDLES_KIB [FOLDER]

In the folder go figures.md, ratios.svg, beside other libraries, and growth.svg.
"""

import json
import statistics
import sys

# work, our side, the other side, the most that the ratio should be
TARGETS = [
    ("parse a buffer", "parse/buffer", "parse/raw", 0.60),
    ("parse a file", "parse/file", "parse/raw", 0.60),
    ("parse a std::istream", "parse/stream", "parse/raw", 0.60),
    ("walk without strings", "walk/links", "walk/raw_links", 1.25),
    ("walk with strings, filled", "walk/fill", "walk/raw_strings", 1.15),
    ("walk with strings, by value", "walk/value", "walk/raw_strings", 1.50),
    ("write UTF-8 to a stream", "serialize/utf8", "serialize/raw_utf8", 0.45),
    ("write ISO-8859-1 to a stream", "serialize/latin1", "serialize/raw_latin1", 0.45),
    ("write with namespaces", "write_ns/write_ns", "serialize/raw_utf8", 0.50),
    ("the same", "write_ns/write_ns", "write_ns/write", 1.25),
    ("build a million elements", "build/handles", "build/raw", 1.10),
    ("100,000 documents, one parser", "small/one_parser", "small/raw", 0.80),
    ("100,000 documents, a parser each", "small/parser_each", "small/raw", 1.00),
    ("find the last by tag name", "find_tag/helper", "find_tag/walker", 0.60),
    ("find by namespace", "find_ns/helper", "find_ns/raw", 1.20),
    ("find by attribute", "find_attribute/helper", "find_attribute/raw", 1.20),
    ("find by text", "find_text/helper", "find_text/raw", 1.20),
    ("find five present steps", "present_path/helper", "present_path/raw", 1.30),
    ("make five steps", "new_path/helper", "new_path/raw", None),
    ("events, counted", "events/buffer", "events/raw", 1.25),
    ("events against a converter each", "events/buffer", "events/raw_icu_each", 0.65),
    ("events against TranscodeToStr", "events/buffer", "events/raw_transcoder", None),
    ("events from a stream", "events/stream", "events/buffer", 1.05),
    ("events from a file", "events/file", "events/buffer", 1.05),
    ("make a string of 12 units", "strings/I18NString", "strings/u16string", 0.30),
    ("60 ASCII units to UTF-8", "strings/toBytes_ascii", "strings/icu_ascii", 0.60),
    ("60 Cyrillic units to UTF-8", "strings/toBytes_cyrillic", "strings/icu_cyrillic", 1.00),
]

# work, the side that is 1, and all sides by name
PEERS = [
    ("parse and release", "parse/raw", {"Xerces": "parse/raw", "this library": "parse/buffer",
                                        "libxml2": "parse/libxml2", "pugixml": "parse/pugixml"}),
    ("write UTF-8", "serialize/raw_utf8", {"Xerces": "serialize/raw_utf8", "this library": "serialize/utf8",
                                           "libxml2": "serialize/libxml2", "pugixml": "serialize/pugixml"}),
    ("events", "events/raw", {"Xerces": "events/raw", "this library": "events/buffer",
                              "libxml2": "events/libxml2", "expat": "events/expat"}),
]

GROWTH = {"parse": "parse", "raw_parse": "parse, Xerces", "find": "find", "write_ns": "write with namespaces",
          "events": "events", "clone": "clone and release", "raw_clone": "clone and release, Xerces",
          "import": "import", "normalize": "normal form of cut text",
          "raw_normalize": "normal form of cut text, Xerces"}


def read_medians(result):
    """The median time of each side on each document, in nanoseconds."""
    unit = {"ns": 1, "us": 1e3, "ms": 1e6}
    times = {}
    for run in json.load(open(result))["benchmarks"]:
        if run["run_type"] == "iteration" and not run.get("error_occurred"):
            name = run["run_name"].split("/")
            times.setdefault(("/".join(name[:2]), name[2]), []).append(run["cpu_time"] * unit[run["time_unit"]])
    return {key: statistics.median(values) for key, values in times.items()}


def ratios_of(medians, ours, other):
    return {on: medians[ours, on] / medians[other, on]
            for side, on in medians if side == ours and (other, on) in medians}


def row(work, against, on, ratio, target):
    verdict = "" if target is None else "ok" if ratio <= target else "OVER"
    limit = "" if target is None else f"{target:.2f}"
    print(f"{work:34} {against:22} {on:10} {ratio:7.3f} {limit:>8} {verdict}")


def print_targets(medians):
    print(f"{'work':34} {'against':22} {'on':10} {'ratio':>7} {'at most':>8}")
    for work, ours, other, target in TARGETS:
        ratios = ratios_of(medians, ours, other)
        for on, ratio in ratios.items():
            row(work, other, on, ratio, None if len(ratios) > 1 else target)
        if len(ratios) > 1:
            row(work, other, "median", statistics.median(ratios.values()), target)


def print_peers(medians):
    for work, one, sides in PEERS:
        for name, side in sides.items():
            ratios = ratios_of(medians, side, one)
            if side != one and ratios:
                row(work, name, "median", statistics.median(ratios.values()), None)


def print_growth(medians):
    print("\nnanoseconds a record, by the number of records")
    for work, name in GROWTH.items():
        points = growth_of(medians, work)
        print(f"{name:34}" + "".join(f"{records:>10}: {time:7.0f}" for records, time in points))


def growth_of(medians, work):
    return sorted((int(on), time / int(on)) for (side, on), time in medians.items() if side == "growth/" + work)


def write_figures(medians, path):
    """The figures as Markdown tables."""
    with open(path, "w") as page:
        page.write("# Figures\n\nWritten by `./bench.sh`; `docs/performance.md` tells what they mean.\n\n")
        page.write("| work | side | against | median | single documents |\n|---|---|---|---|---|\n")
        for work, ours, other, _ in TARGETS:
            ratios = sorted(ratios_of(medians, ours, other).values())
            spread = f"{ratios[0]:.2f} to {ratios[-1]:.2f}" if len(ratios) > 1 else ""
            page.write(f"| {work} | `{ours}` | `{other}` | {statistics.median(ratios):.2f} | {spread} |\n")
        page.write("\nAs ratios to Xerces:\n\n| work | library | median |\n|---|---|---|\n")
        for work, one, sides in PEERS:
            for name, side in sides.items():
                if side != one:
                    median = statistics.median(ratios_of(medians, side, one).values())
                    page.write(f"| {work} | {name} | {median:.2f} |\n")
        sizes = [records for records, _ in growth_of(medians, "parse")]
        page.write("\nNanoseconds a record, for documents of so many records:\n\n")
        page.write("| work |" + "".join(f" {size:,} |" for size in sizes) + "\n|---|" + "---|" * len(sizes) + "\n")
        for work, name in GROWTH.items():
            page.write(f"| {name} |" + "".join(f" {time:.0f} |" for _, time in growth_of(medians, work)) + "\n")


def draw(medians, folder):
    import matplotlib
    matplotlib.use("svg")
    matplotlib.rcParams["svg.hashsalt"] = "bench"
    import matplotlib.pyplot as plt

    figure, panels = plt.subplots(1, len(PEERS), figsize=(11, 3.2))
    for panel, (work, one, sides) in zip(panels, PEERS):
        values = {name: statistics.median(ratios_of(medians, side, one).values()) for name, side in sides.items()}
        colors = ["tab:blue" if name == "this library" else "lightgray" for name in values]
        panel.barh(list(values), list(values.values()), color=colors)
        for position, value in enumerate(values.values()):
            panel.text(value, position, f" {value:.2f}", va="center")
        panel.set_title(work)
        panel.set_xlim(0, 1.25 * max(values.values()))
        panel.invert_yaxis()
    figure.suptitle("time as a ratio to Xerces, median over the documents")
    figure.tight_layout()
    figure.savefig(f"{folder}/ratios.svg", metadata={"Date": None})

    figure, panel = plt.subplots(figsize=(8.5, 4))
    for work, name in GROWTH.items():
        points = growth_of(medians, work)
        panel.plot([x for x, _ in points], [y for _, y in points], marker="o", label=name)
    panel.set_xscale("log")
    panel.set_yscale("log")
    panel.set_xlabel("records in the document")
    panel.set_ylabel("nanoseconds a record")
    panel.legend(fontsize="x-small", loc="center left", bbox_to_anchor=(1, 0.5))
    figure.tight_layout()
    figure.savefig(f"{folder}/growth.svg", metadata={"Date": None})


def main(result, raw_kib, handles_kib, folder=None):
    medians = read_medians(result)
    print_targets(medians)
    print_peers(medians)
    row("peak memory of a parse", "raw, own process", "records", int(handles_kib) / int(raw_kib), 1.00)
    print_growth(medians)
    if folder is not None:
        write_figures(medians, f"{folder}/figures.md")
        draw(medians, folder)


main(*sys.argv[1:])
