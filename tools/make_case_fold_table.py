#!/usr/bin/env python3
"""Writes src/platform/runtime/CaseFoldTable.cpp: simple case mappings of Unicode as compact ranges.

Usage:  python3 tools/make_case_fold_table.py > src/platform/runtime/CaseFoldTable.cpp

A range says: every `step`-th code point from `first` to `last` maps to itself plus `delta`. Only mappings from one code
point to one are taken, so a text keeps its number of code points.
"""
import sys
import unicodedata

SURROGATES = range(0xD800, 0xE000)


def single(candidates, code):
    """The first candidate that is one code point, else the code point itself."""
    for text in candidates:
        if len(text) == 1:
            return ord(text)
    return code


def fold(code):
    char = chr(code)
    if code == 0x130:  # the dotted capital I folds to two code points, or to none
        return code
    return single((char.casefold(), char.lower()), code)


def upper(code):
    char = chr(code)
    return single((char.upper(), char.title()), code)


def lower(code):
    char = chr(code)
    if code == 0x130:  # its one-to-one lower case is the plain letter
        return ord("i")
    return single((char.lower(),), code)


def ranges_of(mapping):
    """Greedy runs of equal delta, of step 1 or 2."""
    moved = []
    for code in range(0x110000):
        if code not in SURROGATES and mapping(code) != code:
            moved.append((code, mapping(code) - code))
    runs = []
    at = 0
    while at < len(moved):
        first, delta = moved[at]
        end, step = at, 1
        if at + 1 < len(moved) and moved[at + 1][1] == delta and moved[at + 1][0] - first in (1, 2):
            step = moved[at + 1][0] - first
            while end + 1 < len(moved) and moved[end + 1] == (moved[end][0] + step, delta):
                end += 1
        runs.append((first, moved[end][0], delta, step))
        at = end + 1
    return runs


def write_table(name, mapping, out):
    runs = ranges_of(mapping)
    out.write(f"\nconstexpr TCaseRange k{name}[] = {{\n")
    line = "   "
    for first, last, delta, step in runs:
        item = f" {{0x{first:X}, 0x{last:X}, {delta}, {step}}},"
        if len(line) + len(item) > 118:
            out.write(line + "\n")
            line = "   "
        line += item
    out.write(line + "\n};\n")


def main(out):
    version = unicodedata.unidata_version
    out.write(f"// Made by tools/make_case_fold_table.py from Unicode {version}; not edited by hand.\n")
    out.write('#include "platform/runtime/CaseFoldTable.h"\n\n// clang-format off\nnamespace vx {\nnamespace {\n')
    for name, mapping in (("Fold", fold), ("Upper", upper), ("Lower", lower)):
        write_table(name, mapping, out)
    out.write("\n}  // namespace\n\n")
    for name in ("Fold", "Upper", "Lower"):
        out.write(f"std::span<const TCaseRange> {name}Ranges() {{ return k{name}; }}\n")
    out.write("\n}  // namespace vx\n")


if __name__ == "__main__":
    main(sys.stdout)
