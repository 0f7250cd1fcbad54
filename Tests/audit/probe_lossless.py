#!/usr/bin/env python3
"""Proves that the program changes nothing it was not asked to change, with drawings no drawing program would write.

    python3 probe_lossless.py TOLMEX [--seeds FIRST LAST] [--keep FOLDER]

Every seed makes one drawing: foreign extended data of every code, groups, extension dictionaries with xrecords, sort tables,
entities, objects and sections of unknown kinds, comments in odd places, blanks around values, odd spellings of numbers, handles
and group codes, handles of up to 64 bits, hand seeds that leave no room, optional values written out, CR LF and LF, code pages
and UTF-8. Each drawing is then

  1. saved untouched: not a byte may differ;
  2. given an area element on one outline: every other record keeps its bytes, the outline gets its layer and its tag and keeps
     all else, and of tables, header and sort table only what has to follow follows;
  3. the same again on the result, which must be as careful with its own output.

No object has two handles, no handle two objects. Prints one line per fault, then a count; status 1 when there is any.
"""

from __future__ import annotations

import argparse
import collections
import pathlib
import random
import re
import subprocess
import sys
import tempfile

Tag = tuple[int, bytes]

LETTERS = {
    "ANSI_1252": ("cp1252", "äöåÄÖÅé½°"),
    "ANSI_1257": ("cp1257", "äöåÄÖÅšž"),
    "ANSI_1251": ("cp1251", "жщяЖЙ"),
    # A trailing byte of a two-byte letter may be a backslash or a brace here.
    "ANSI_932": ("cp932", "表ソ十予能貼"),
    "UTF-8": ("utf-8", "äöåÄÖÅ€表𝄞"),
}
RECORDS = {"LTYPE": (0x5, "Linetype"), "LAYER": (0x2, "Layer"), "STYLE": (0x3, "TextStyle"), "APPID": (0x9, "RegApp"),
           "BLOCK_RECORD": (0x1, "Block")}


class Drawing:
    """Makes one drawing's text from a seed."""

    def __init__(self, seed: int) -> None:
        self.rng = rng = random.Random(seed)
        self.version = rng.choice(["AC1015", "AC1018", "AC1021", "AC1024", "AC1027", "AC1032"])
        self.page = rng.choice(["ANSI_1252", "ANSI_1257", "ANSI_1251", "ANSI_932"])
        self.codec, self.letters = LETTERS["UTF-8" if self.version >= "AC1021" else self.page]
        self.line_end = rng.choice([b"\n", b"\r\n"])
        self.code_width = rng.choice([0, 3, 6])
        self.out: list[bytes] = []
        # Below the limits of numbers with fewer bits, from the middle, and so high that no room is left above.
        low = rng.choice([0, 0, 0, 2**31, 2**53, 2**60, 2**63, 0xD9B071D01A0C8E23, 2**64 - 0x3000])
        self.next_handle = max(low - 0x40, 0x100)
        self.seed = f"{rng.choice([low + 0x2FFF, low + 0x2FFF, 2**64 - 1]):X}"
        self.outlines: list[str] = []
        self.extensions: list[tuple[int, int]] = []
        self.has_sort_table = rng.random() < 0.5

    # -- spelling ----------------------------------------------------------------------------------------------------
    def number(self, value: float) -> str:
        # repr() is exact, so every spelling below names the same number.
        spellings = [repr(value), f"{value:.17g}", f"{value:+.16E}", f" {value!r}", f"{value!r} "]
        if value == int(value):
            spellings += [f"{int(value)}.", f"{int(value)}", f"{value:.3f}", f"{int(value)}.0000000000000000"]
        if value == 0:
            spellings += ["-0.000", "-0", ".0", "+0.0E+00"]
        if repr(value).startswith("0."):
            spellings.append(repr(value)[1:])
        return self.rng.choice(spellings)

    def integer(self, value: int) -> str:
        return self.rng.choice([f"{value:6d}", str(value), f" {value}", f"{value} ", f"{value:9d}"])

    def handle(self, value: int) -> str:
        return self.rng.choice([f"{value:X}", f"{value:x}", f"{value:08X}", f" {value:X}"])

    def text(self) -> str:
        rng = self.rng
        pieces = ["rak", "  ", "^I", "^ ", "\\U+00E4", "\\P", "%%c", "{", "}", ";", '"', "0", "LINE", *self.letters]
        value = "".join(rng.choice(pieces) for _ in range(rng.randint(0, 12)))
        return value + rng.choice(["", " ", "  "])

    def new_handle(self) -> int:
        self.next_handle += self.rng.choice([1, 1, 1, 7])
        return self.next_handle

    def tags(self, bars: str) -> None:
        """Tags given as "0 LINE|8 0"; a value keeps its blanks."""
        for tag in bars.split("|"):
            code, _, value = tag.partition(" ")
            self.out.append(code.rjust(self.code_width).encode() + self.line_end + value.encode(self.codec) + self.line_end)

    def comment(self, chance: float) -> None:
        if self.rng.random() < chance:
            self.tags("999 " + self.text())

    def point(self, code: int, x: float, y: float, z: float | None = 0.0) -> None:
        for i, value in enumerate((x, y) if z is None else (x, y, z)):
            self.tags(f"{code + 10 * i} {self.number(value)}")

    # -- parts of records --------------------------------------------------------------------------------------------
    def foreign_xdata(self) -> None:
        rng = self.rng
        for app in rng.sample(["VIERAS", "TOINEN"], rng.randint(0, 2)):
            self.tags(f"1001 {app}")
            for _ in range(rng.randint(0, 12)):
                code = rng.choice([1000, 1002, 1003, 1004, 1005, 1010, 1011, 1012, 1013, 1040, 1041, 1042, 1070, 1071])
                if code == 1000:
                    self.tags(f"1000 {self.text()}")
                elif code == 1002:
                    self.tags(f"1002 {{|1000 {self.text()}|1002 }}")
                elif code == 1003:
                    self.tags("1003 " + rng.choice(["0", "VANHA", "vanha"]))
                elif code == 1004:
                    self.tags("1004 " + rng.randbytes(rng.randint(0, 30)).hex().upper())
                elif code == 1005:
                    self.tags("1005 " + self.handle(rng.choice([0, 0x50, 0xFFFF])))
                elif code < 1020:
                    self.point(code, rng.uniform(-1e7, 1e7), 0.5, 0.0)
                elif code < 1050:
                    self.tags(f"{code} {self.number(rng.choice([0.0, 0.5, 1e-300, 1e300, 7.0]))}")
                else:
                    half = 2**15 if code == 1070 else 2**31
                    self.tags(f"{code} {self.integer(rng.randint(-half, half - 1))}")

    def head(self, kind: str) -> int:
        rng = self.rng
        handle = self.new_handle()
        self.comment(0.1)
        self.tags(f"0 {kind}")
        self.comment(0.1)
        self.tags(f"5 {self.handle(handle)}")
        if rng.random() < 0.3:
            self.tags(f"102 {{VIERAS_TIEDOT|{rng.choice([70, 90])} {self.integer(3)}|1 {self.text()}|102 }}")
        if rng.random() < 0.2:
            self.extensions.append((self.new_handle(), handle))
            self.tags(f"102 {{ACAD_XDICTIONARY|360 {self.handle(self.extensions[-1][0])}|102 }}")
        self.tags(f"330 {self.handle(0x1F)}|100 AcDbEntity")
        if rng.random() < 0.1:
            self.tags(f"67 {self.integer(0)}")
        self.tags("8 " + rng.choice(["0", "VANHA", "vanha", "mets\\U+00E4"]))
        for code, values in [(6, ["ByLayer", "BYLAYER", "Continuous"]), (62, ["   256", "3", "0"]), (420, ["1193046"]),
                             (430, ["KIRJA$VÄRI 1" if "Ä" in self.letters else "KIRJA$1"]), (440, ["33554559"]),
                             (48, ["1.0", ".5"]), (60, ["0"]), (370, ["-1", "25"]), (284, ["0"]), (347, ["0"])]:
            if rng.random() < 0.25 and (code not in (420, 430, 440, 284, 347) or self.version >= "AC1021"):
                self.tags(f"{code} {rng.choice(values)}")
        return handle

    def outline(self) -> None:
        rng = self.rng
        self.outlines.append(f"{self.head('LWPOLYLINE'):X}")
        self.comment(0.2)
        self.tags("100 AcDbPolyline")
        x, y = rng.uniform(0, 1e4), rng.uniform(0, 1e4)
        self.tags(f"90 {self.integer(4)}|70 {self.integer(rng.choice([1, 129]))}")
        for code in (43, 38, 39):
            if rng.random() < 0.5:
                self.tags(f"{code} {self.number(0.0)}")
        for corner in ((x, y), (x + 10, y), (x + 10, y + 5.25), (x, y + 5.25)):
            self.point(10, *corner, None)
            if rng.random() < 0.3:
                self.tags(f"42 {self.number(rng.choice([0.0, 0.0, 0.25]))}")
            if rng.random() < 0.2 and self.version >= "AC1024":
                self.tags("91 0")
        if rng.random() < 0.5:
            self.point(210, 0.0, 0.0, 1.0)
        self.foreign_xdata()

    def stranger(self) -> None:
        self.head(self.rng.choice(["STRANGE", "ACME_WALL", "LIGHT"]))
        self.tags("100 AcDbStranger")
        for _ in range(self.rng.randint(0, 8)):
            code = self.rng.choice([1, 3, 40, 70, 90, 160, 290, 310, 330, 340, 10])
            if code in (1, 3):
                self.tags(f"{code} {self.text()}")
            elif code == 40:
                self.tags(f"40 {self.number(0.25)}")
            elif code == 10:
                self.point(10, 1.0, 2.0, 3.0)
            elif code == 310:
                self.tags("310 " + "DEADbeef" * self.rng.randint(0, 31))
            elif code in (330, 340):
                self.tags(f"{code} {self.handle(self.rng.choice([0, 0x1F, 0xABCDEF]))}")
            else:
                self.tags(f"{code} {self.integer(1)}")
        self.foreign_xdata()

    def other_entity(self) -> None:
        kind = self.rng.choice(["LINE", "CIRCLE", "TEXT", "POINT", "SPLINE"])
        self.head(kind)
        self.tags("100 AcDb" + kind.capitalize())
        if kind == "LINE":
            self.point(10, 0.0, 0.5, 0.0)
            self.point(11, 1e5, 7.0, -0.0)
        elif kind == "SPLINE":
            self.tags("70 8|71 3|72 8|73 4|74 0")
            for knot in (0, 0, 0, 0, 1, 1, 1, 1):
                self.tags(f"40 {self.number(float(knot))}")
            for x in range(4):
                self.point(10, float(x), float(x % 2), 0.0)
        else:
            self.point(10, 3.0, 0.5, 0.0)
            if kind == "CIRCLE":
                self.tags(f"40 {self.number(0.5)}")
            elif kind == "TEXT":
                self.tags(f"40 {self.number(2.5)}|1 {self.text()}|100 AcDbText")
        self.foreign_xdata()

    # -- sections ----------------------------------------------------------------------------------------------------
    def table(self, name: str, handle: int, count: int) -> None:
        self.tags(f"0 TABLE|2 {name}|5 {self.handle(handle)}|330 0|100 AcDbSymbolTable|70 {self.integer(count)}")

    def record(self, kind: str, name: str, handle: int | None = None) -> None:
        handle = handle or self.new_handle()
        owner, marker = RECORDS[kind]
        self.tags(f"0 {kind}")
        self.comment(0.1)
        self.tags(f"5 {self.handle(handle)}")
        if name == "*Model_Space" and self.has_sort_table:
            self.tags("102 {ACAD_XDICTIONARY|360 60|102 }")
        self.tags(f"330 {self.handle(owner)}|100 AcDbSymbolTableRecord|100 AcDb{marker}TableRecord|2 {name}")
        if kind != "BLOCK_RECORD":
            self.tags(f"70 {self.integer(0)}")

    def tables(self) -> None:
        if self.rng.random() < 0.5:
            self.table("TUNTEMATON", 0x7, 0)
            self.tags("0 ENDTAB")
        self.table("LTYPE", 0x5, 3)
        for handle, name in ((0x14, "ByBlock"), (0x15, "ByLayer"), (0x16, "Continuous")):
            self.record("LTYPE", name, handle)
            self.tags(f"3 {self.text()}|72 65|73 0|40 {self.number(0.0)}")
        self.tags("0 ENDTAB")
        self.table("LAYER", 0x2, self.rng.choice([2, 77]))
        self.record("LAYER", "0", 0x10)
        self.tags(f"62 {self.integer(7)}|6 Continuous")
        for name in ("VANHA", "mets\\U+00E4"):
            self.record("LAYER", name)
            self.tags(f"62 {self.integer(-3)}|6 continuous")
            if self.rng.random() < 0.5:
                self.tags("370 -3")
            self.foreign_xdata()
        self.tags("0 ENDTAB")
        self.table("STYLE", 0x3, 1)
        self.record("STYLE", "Standard", 0x11)
        self.tags(f"40 {self.number(0.0)}|41 {self.number(1.0)}|50 {self.number(0.0)}|71 0|42 {self.number(0.2)}|3 txt|4 |0 ENDTAB")
        self.table("APPID", 0x9, 3)
        for handle, name in ((0x12, "ACAD"), (0x13, "VIERAS"), (0x17, "TOINEN")):
            self.record("APPID", name, handle)
        self.tags("0 ENDTAB")
        self.table("BLOCK_RECORD", 0x1, 2)
        for handle, name in ((0x1F, "*Model_Space"), (0x1B, "*Paper_Space")):
            self.record("BLOCK_RECORD", name, handle)
            self.tags("340 0")
        self.tags("0 ENDTAB")

    def build(self) -> bytes:
        rng = self.rng
        self.comment(0.5)
        self.tags(f"0 SECTION|2 HEADER|9 $ACADVER|1 {self.version}")
        self.comment(0.3)
        self.tags(f"9 $DWGCODEPAGE|3 {self.page}|9 $HANDSEED")
        self.tags("5 " + rng.choice([self.seed, "  " + self.seed.lower(), self.seed.rjust(16, "0")]))
        self.tags(f"9 $TUNTEMATON|40 {self.number(0.5)}|9 $CLAYER|8 0|9 $INSUNITS|70 {self.integer(6)}|0 ENDSEC")
        self.comment(0.3)
        self.tags(f"0 SECTION|2 CLASSES|0 CLASS|1 STRANGE|2 AcDbStrange|3 {self.text()}|90 0")
        if self.version >= "AC1018":
            self.tags("91 1")
        self.tags("280 0|281 1|0 ENDSEC|0 SECTION|2 TABLES")
        self.tables()
        self.tags("0 ENDSEC|0 SECTION|2 BLOCKS")
        for space, begin, end, name in ((0x1F, 0x20, 0x21, "*Model_Space"), (0x1B, 0x1C, 0x1D, "*Paper_Space")):
            self.tags(f"0 BLOCK|5 {self.handle(begin)}|330 {self.handle(space)}|100 AcDbEntity|8 0|100 AcDbBlockBegin|2 {name}|70 0")
            self.point(10, 0.0, 0.0, 0.0)
            self.tags(f"3 {name}|1 |0 ENDBLK|5 {self.handle(end)}|330 {self.handle(space)}|100 AcDbEntity|8 0|100 AcDbBlockEnd")
        self.tags("0 ENDSEC")
        if rng.random() < 0.3:
            self.tags(f"0 SECTION|2 VIERASOSA|0 JOTAIN|1 {self.text()}|0 ENDSEC")
        self.tags("0 SECTION|2 ENTITIES")
        for _ in range(rng.randint(3, 25)):
            rng.choice([self.outline, self.stranger, self.other_entity])()
        self.outline()
        self.comment(0.3)
        self.tags("0 ENDSEC")
        self.objects()
        if self.version >= "AC1027" and rng.random() < 0.5:
            self.tags("0 SECTION|2 ACDSDATA|70 2|0 ACDSSCHEMA|90 0|1 AcDb_Thumbnail_Schema|0 ENDSEC")
        if rng.random() < 0.3:
            self.tags("0 SECTION|2 THUMBNAILIMAGE|90 4|310 00010203|0 ENDSEC")
        self.comment(0.2)
        self.tags("0 EOF")
        text = b"".join(self.out)
        if rng.random() < 0.2:
            text = text[: -len(self.line_end)]  # no line end behind EOF
        elif rng.random() < 0.2:
            text += self.line_end
        return text

    def dictionary(self, handle: int, owner: int, entries: list[tuple[str, int]], soft: bool) -> None:
        self.comment(0.1)
        self.tags(f"0 DICTIONARY|5 {self.handle(handle)}|330 {self.handle(owner)}|100 AcDbDictionary")
        if self.rng.random() < 0.5:
            self.tags("280 0")
        self.tags(f"281 {self.integer(1)}")
        for name, target in entries:
            self.tags(f"3 {name}|{350 if soft else 360} {self.handle(target)}")

    def objects(self) -> None:
        self.tags("0 SECTION|2 OBJECTS")
        self.dictionary(0xC, 0, [("ACAD_GROUP", 0xD), ("VIERAS_" + self.letters[0], 0x71)], True)
        self.dictionary(0xD, 0xC, [("Ryhmä" if "ä" in self.letters else "Ryhma", 0x70)], True)
        self.tags(f"0 GROUP|5 70|102 {{ACAD_REACTORS|330 D|102 }}|330 D|100 AcDbGroup|300 {self.text()}|70 0|71 1")
        self.tags(f"340 {self.handle(int(self.outlines[0], 16))}|0 OUTO_OLIO|5 71|330 C|100 AcDbOuto|5 99|1 {self.text()}")
        if self.has_sort_table:
            self.dictionary(0x60, 0x1F, [("ACAD_SORTENTS", 0x61)], False)
            self.tags("0 SORTENTSTABLE|5 61|330 60|100 AcDbSortentsTable|330 1F")
            for entity in self.outlines[:2]:
                self.tags(f"331 {entity}|5 {entity}")
        for extension, owner in self.extensions:
            record = self.new_handle()
            self.dictionary(extension, owner, [("LISÄ" if "Ä" in self.letters else "LISA", record)], False)
            self.tags(f"0 XRECORD|5 {self.handle(record)}|330 {self.handle(extension)}|100 AcDbXrecord|280 1")
            for code in self.rng.sample([1, 40, 70, 90, 10, 290, 310, 330, 1, 160], 5):
                if code == 10:
                    self.point(10, 1.0, 0.25, 0.0)
                elif code in (310, 330):
                    self.tags("310 00ff" if code == 310 else "330 50")
                elif code == 1:
                    self.tags(f"1 {self.text()}")
                else:
                    self.tags(f"{code} {self.number(1.0) if code == 40 else self.integer(1)}")
        self.tags("0 ENDSEC")


# -- comparing -----------------------------------------------------------------------------------------------------------


def records(text: bytes) -> list[bytes]:
    """The text cut before every tag 0, and before every variable of the header; the pieces joined are the text."""
    lines = text.split(b"\n")
    starts = [at for at in range(0, len(lines), 2) if at > 0 and lines[at].strip() in (b"0", b"9")]
    return [b"\n".join(lines[begin:end]) + (b"\n" if end < len(lines) else b"")
            for begin, end in zip([0, *starts], [*starts, len(lines)])]


def tags(record: bytes) -> list[Tag]:
    lines = record.replace(b"\r\n", b"\n").split(b"\n")
    return [(int(lines[at]), lines[at + 1]) for at in range(0, len(lines) - 1, 2) if lines[at].strip()]


def handle_of(record: bytes) -> str:
    for code, value in tags(record):
        if code == 5:
            return f"{int(value, 16):X}"
        if code == 100:
            break
    return ""


def compare(before: bytes, after: bytes, outline: str) -> list[str]:
    """What changed and should not have."""
    faults: list[str] = []
    new = records(after)
    by_handle = {handle_of(record): record for record in new}
    places: dict[bytes, collections.deque[int]] = {}
    for at, record in enumerate(new):
        places.setdefault(record, collections.deque()).append(at)
    left = {record: len(found) for record, found in places.items()}
    position = -1
    for record in records(before):
        kind = tags(record)[0] if tags(record) else (0, b"")
        handle = handle_of(record)
        then = by_handle.get(handle, b"(gone)")
        if left.get(record, 0) > 0:
            left[record] -= 1
            later = next((at for at in places[record] if at > position), None)
            if later is None:
                faults.append(f"out of its place: {record[:80]!r}")
            position = position if later is None else later
        elif handle == outline and handle in by_handle:
            faults += compare_outline(record, then)
        elif not may_follow(kind, handle, record, then, new):
            faults.append(f"changed: {record!r} -> {then!r}")
    return faults


def may_follow(kind: Tag, handle: str, record: bytes, then: bytes, new: list[bytes]) -> bool:
    """Whether a change is one that new objects bring with them."""
    if kind[1].strip() == b"$HANDSEED" or kind[1] == b"SORTENTSTABLE":
        return True
    if kind == (0, b"TABLE"):
        tables = [r for r in new if tags(r) and tags(r)[0] == kind and handle_of(r) == handle]
        return len(tables) == 1 and [t for t in tags(tables[0]) if t[0] != 70] == [t for t in tags(record) if t[0] != 70]
    # The model space may gain an extension dictionary; every tag it had stays.
    rest = iter(tags(then)) if kind[1] == b"BLOCK_RECORD" and handle == "1F" else iter(())
    return bool(tags(record)) and all(any(tag == other for other in rest) for tag in tags(record))


def without_own_data(lines: list[bytes]) -> tuple[list[bytes], int]:
    """The lines without the system's extended data, and how often that stands there."""
    own = [at for at in range(0, len(lines) - 1, 2) if lines[at].strip() == b"1001" and lines[at + 1].strip() == b"kaava_tolmex"]
    if not own:
        return lines, 0
    end = next((at for at in range(own[0] + 2, len(lines) - 1, 2) if lines[at].strip() in (b"1001", b"999")), len(lines) - 1)
    return lines[: own[0]] + lines[end:], len(own)


def compare_outline(before: bytes, after: bytes) -> list[str]:
    # Line by line: codes, spellings and blanks count too.
    old, _ = without_own_data(before.split(b"\n"))
    rest, count = without_own_data(after.split(b"\n"))
    if count != 1:
        return [f"the outline has {count} tags of the system: {after!r}"]
    # The layer's own tag is written anew, blanks of its code included.
    differing = {at // 2 for at in range(max(len(old), len(rest))) if old[at : at + 1] != rest[at : at + 1]}
    if len(old) != len(rest) or len(differing) > 1 or any(old[at * 2].strip() != b"8" for at in differing):
        return [f"the outline changed beyond layer and tag:\n  {before!r}\n  {after!r}"]
    return []


def check_handles(text: bytes) -> list[str]:
    """Faults of the handles alone: two of one object, one of two objects."""
    faults: list[str] = []
    seen: set[int] = set()
    for record in records(text):
        own = []
        in_group = False
        for code, value in tags(record):
            if code in (9, 100) or code >= 1000:
                break
            if code == 102:
                in_group = value.strip().startswith(b"{")
            elif code in (5, 105) and not in_group:
                own.append(int(value, 16))
        if len(own) > 1:
            faults.append(f"{len(own)} handles: {record[:80]!r}")
        faults += [f"{handle:X} is the handle of two objects" for handle in own if handle in seen]
        seen.update(own)
    return faults


def run(program: str, drawing: pathlib.Path, out: pathlib.Path, lines: list[str]) -> str:
    script = drawing.with_suffix(".scr")
    script.write_text("".join(line + "\n" for line in lines))
    command = [program, "run", str(drawing), "--out", str(out), "--quiet", "--script", str(script)]
    result = subprocess.run(command, capture_output=True, text=True, errors="replace")
    return f"status {result.returncode}: {result.stdout}{result.stderr}" if result.returncode != 0 else ""


def probe(program: str, seed: int, folder: pathlib.Path) -> list[str]:
    drawing = Drawing(seed)
    before = drawing.build()
    source = folder / f"probe{seed}.dxf"
    source.write_bytes(before)
    untouched, touched, again = (folder / f"probe{seed}-{name}.dxf" for name in ("untouched", "touched", "again"))
    if message := run(program, source, untouched, []):
        return [message]
    if untouched.read_bytes() != before:
        return ["saved untouched, and bytes differ"]
    outline = drawing.rng.choice(drawing.outlines)
    if message := run(program, source, touched, ["TLM_MUOK_ASFALTTI", f'(handent "{outline}")', ""]):
        return [message]
    first = touched.read_bytes()
    faults = compare(before, first, outline)
    if outline not in {handle_of(r) for r in records(first) if b"kaava_tolmex" in r}:
        faults.append("the outline got no tag")
    if message := run(program, touched, again, ["TLM_MUOK_NURMIKKO", f'(handent "{outline}")', ""]):
        return [*faults, "second run: " + message]
    # The fill of the first run is erased, its record is the only one that may be gone.
    faults += [f"second run: {fault}" for fault in compare(first, again.read_bytes(), outline) if "HATCH" not in fault[:24]]
    faults += check_handles(first) + check_handles(again.read_bytes())
    # What the outline's tag names is its fill.
    fill = re.search(rb"HATCH_HANDLE\r?\n *1005\r?\n([0-9A-F]+)\r?\n", first)
    if not fill or not any(handle_of(record) == fill[1].decode() for record in records(first) if b"HATCH" in record[:24]):
        faults.append(f"the tag names no fill: {fill[1] if fill else None}")
    return faults


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("program")
    parser.add_argument("--seeds", nargs=2, type=int, default=(1, 20), metavar=("FIRST", "LAST"))
    parser.add_argument("--keep", type=pathlib.Path, help="folder for the drawings; otherwise they are removed")
    options = parser.parse_args()
    faulty = 0
    with tempfile.TemporaryDirectory() as temporary:
        folder = options.keep or pathlib.Path(temporary)
        folder.mkdir(parents=True, exist_ok=True)
        for seed in range(options.seeds[0], options.seeds[1] + 1):
            faults = probe(options.program, seed, folder)
            faulty += bool(faults)
            for fault in faults:
                print(f"seed {seed}: {fault}")
    print(f"{options.seeds[1] - options.seeds[0] + 1} drawings, {faulty} with faults")
    return 1 if faulty else 0


if __name__ == "__main__":
    sys.exit(main())
