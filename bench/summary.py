"""Prints what the benchmarks found as ratios: each side's median over that of the other side in the same run.

usage: summary.py RESULT.json RAW_KIB HANDLES_KIB
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
    ("build a million elements", "build/handles", "build/raw", 1.10),
    ("100,000 documents, one parser", "small/one_parser", "small/raw", 0.80),
    ("100,000 documents, a parser each", "small/parser_each", "small/raw", 1.00),
    ("find the last by tag name", "find_tag/helper", "find_tag/walker", 0.60),
    ("find by namespace", "find_ns/helper", "find_ns/raw", 1.20),
    ("find by attribute", "find_attribute/helper", "find_attribute/raw", 1.20),
    ("find by text", "find_text/helper", "find_text/raw", 1.20),
    ("find five present steps", "present_path/helper", "present_path/raw", 1.30),
    ("make five steps", "new_path/helper", "new_path/raw", None),
    ("write with namespaces", "write_ns/write_ns", "write_ns/write", 1.25),
    ("the same", "write_ns/write_ns", "serialize/raw_utf8", 0.50),
    ("events, counted", "events/buffer", "events/raw", 1.25),
    ("events against a converter each", "events/buffer", "events/raw_icu_each", 0.65),
    ("events against TranscodeToStr", "events/buffer", "events/raw_transcoder", None),
    ("events from a stream", "events/stream", "events/buffer", 1.05),
    ("events from a file", "events/file", "events/buffer", 1.05),
    ("events against expat", "events/buffer", "events/expat", None),
    ("events against libxml2", "events/buffer", "events/libxml2", None),
    ("make a string of 12 units", "strings/I18NString", "strings/u16string", 0.30),
    ("60 ASCII units to UTF-8", "strings/toBytes_ascii", "strings/icu_ascii", 0.60),
    ("60 Cyrillic units to UTF-8", "strings/toBytes_cyrillic", "strings/icu_cyrillic", 1.00),
]


def row(work, against, on, ratio, target):
    verdict = "" if target is None else "ok" if ratio <= target else "OVER"
    limit = "" if target is None else f"{target:.2f}"
    print(f"{work:34} {against:22} {on:10} {ratio:7.3f} {limit:>8} {verdict}")


def main(result, raw_kib, handles_kib):
    times = {}
    for run in json.load(open(result))["benchmarks"]:
        if run["run_type"] == "iteration":
            name = run["run_name"].split("/")
            times.setdefault(("/".join(name[:2]), name[2]), []).append(run["cpu_time"])
    medians = {key: statistics.median(values) for key, values in times.items()}

    print(f"{'work':34} {'against':22} {'on':10} {'ratio':>7} {'at most':>8}")
    for work, ours, other, target in TARGETS:
        ratios = {on: medians[ours, on] / medians[other, on] for side, on in medians if side == ours}
        for on, ratio in ratios.items():
            row(work, other, on, ratio, None if len(ratios) > 1 else target)
        if len(ratios) > 1:
            row(work, other, "median", statistics.median(ratios.values()), target)
    row("peak memory of a parse", "raw, own process", "records", int(handles_kib) / int(raw_kib), 1.02)


main(*sys.argv[1:])
