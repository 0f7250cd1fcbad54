#!/usr/bin/env python3
"""Proves that the program changes nothing it was not asked to change, with drawings no drawing program would write.

    python3 probe_lossless.py TOLMEX [--seeds FIRST LAST] [--strays COUNT] [--keep FOLDER]

Every seed makes one drawing: foreign extended data of every code, groups, extension dictionaries with xrecords, sort tables,
entities, objects and sections of unknown kinds, comments in odd places, blanks around values, odd spellings of numbers, handles
and group codes, handles of up to 64 bits, hand seeds that leave no room, optional values written out, CR LF and LF, code pages
and UTF-8. Each drawing is then

  1. saved untouched: not a byte may differ;
  2. given an area element on one outline: every other record keeps its bytes, the outline gets its layer and its tag and keeps
     all else, and of tables, header and sort table only what has to follow follows;
  3. the same again on the result, which must be as careful with its own output;
  4. damaged, COUNT times, by a marker (SECTION, ENDSEC, TABLE, ENDTAB, BLOCK, ENDBLK, EOF) in a place where none can stand, between
     records or inside one: every record comes back in its section, table or block with all its bytes, the header with all its
     variables, and something is said.

No object has two handles, no handle two objects. Prints one line per fault, then a count; status 1 when there is any.
"""

from __future__ import annotations

import argparse
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


class Drawing:
    """Makes one drawing's text from a seed."""

    def __init__(self, seed: int) -> None:
        self.rng = random.Random(seed)
        rng = self.rng
        self.version = rng.choice(["AC1015", "AC1018", "AC1021", "AC1024", "AC1027", "AC1032"])
        page = rng.choice(["ANSI_1252", "ANSI_1257", "ANSI_1251", "ANSI_932"])
        self.page = page
        self.codec, self.letters = LETTERS["UTF-8" if self.version >= "AC1021" else page]
        self.line_end = rng.choice([b"\n", b"\r\n"])
        self.code_width = rng.choice([0, 3, 6])
        self.out: list[bytes] = []
        # Below the limits of numbers with fewer bits, from the middle, and so high that no room is left above.
        low = rng.choice([0, 0, 0, 2**31, 2**53, 2**60, 2**63, 0xD9B071D01A0C8E23, 2**64 - 0x3000])
        self.next_handle = max(low - 0x40, 0x100)
        self.seed = f"{rng.choice([low + 0x2FFF, low + 0x2FFF, 2**64 - 1]):X}"
        self.outlines: list[str] = []
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

    def tag(self, code: int, value: str | bytes = "") -> None:
        raw = value if isinstance(value, bytes) else value.encode(self.codec)
        self.out.append(str(code).rjust(self.code_width).encode() + self.line_end + raw + self.line_end)

    def comment(self, chance: float) -> None:
        if self.rng.random() < chance:
            self.tag(999, self.text())

    def point(self, code: int, x: float, y: float, z: float | None = 0.0) -> None:
        self.tag(code, self.number(x))
        self.tag(code + 10, self.number(y))
        if z is not None:
            self.tag(code + 20, self.number(z))

    # -- parts of records --------------------------------------------------------------------------------------------
    def foreign_xdata(self) -> None:
        rng = self.rng
        for app in rng.sample(["VIERAS", "TOINEN"], rng.randint(0, 2)):
            self.tag(1001, app)
            for _ in range(rng.randint(0, 12)):
                code = rng.choice([1000, 1002, 1003, 1004, 1005, 1010, 1011, 1012, 1013, 1040, 1041, 1042, 1070, 1071])
                if code == 1000:
                    self.tag(1000, self.text())
                elif code == 1002:
                    self.tag(1002, "{")
                    self.tag(1000, self.text())
                    self.tag(1002, "}")
                elif code == 1003:
                    self.tag(1003, rng.choice(["0", "VANHA", "vanha"]))
                elif code == 1004:
                    self.tag(1004, rng.randbytes(rng.randint(0, 30)).hex().upper())
                elif code == 1005:
                    self.tag(1005, self.handle(rng.choice([0, 0x50, 0xFFFF])))
                elif code < 1020:
                    self.point(code, rng.uniform(-1e7, 1e7), 0.5, 0.0)
                elif code < 1050:
                    self.tag(code, self.number(rng.choice([0.0, 0.5, 1e-300, 1e300, 7.0])))
                elif code == 1070:
                    self.tag(code, self.integer(rng.randint(-32768, 32767)))
                else:
                    self.tag(code, self.integer(rng.randint(-(2**31), 2**31 - 1)))

    def head(self, kind: str, owner: int = 0x1F, handle: int | None = None) -> int:
        rng = self.rng
        handle = handle or self.new_handle()
        self.comment(0.1)
        self.tag(0, kind)
        self.comment(0.1)
        self.tag(5, self.handle(handle))
        if rng.random() < 0.3:
            self.tag(102, "{VIERAS_TIEDOT")
            self.tag(rng.choice([70, 90]), self.integer(3))
            self.tag(1, self.text())
            self.tag(102, "}")
        if rng.random() < 0.2:
            self.tag(102, "{ACAD_XDICTIONARY")
            extension = self.new_handle()
            self.extensions.append((extension, handle))
            self.tag(360, self.handle(extension))
            self.tag(102, "}")
        self.tag(330, self.handle(owner))
        self.tag(100, "AcDbEntity")
        if rng.random() < 0.1:
            self.tag(67, self.integer(0))
        self.tag(8, rng.choice(["0", "VANHA", "vanha", "mets\\U+00E4"]))
        for code, values in [(6, ["ByLayer", "BYLAYER", "Continuous"]), (62, ["   256", "3", "0"]), (420, ["1193046"]),
                             (430, ["KIRJA$VÄRI 1" if "Ä" in self.letters else "KIRJA$1"]), (440, ["33554559"]),
                             (48, ["1.0", ".5"]), (60, ["0"]), (370, ["-1", "25"]), (284, ["0"]), (347, ["0"])]:
            if rng.random() < 0.25 and (code not in (420, 430, 440, 284, 347) or self.version >= "AC1021"):
                self.tag(code, rng.choice(values))
        return handle

    def outline(self) -> None:
        rng = self.rng
        handle = self.head("LWPOLYLINE")
        self.outlines.append(f"{handle:X}")
        self.comment(0.2)
        self.tag(100, "AcDbPolyline")
        x, y = rng.uniform(0, 1e4), rng.uniform(0, 1e4)
        corners = [(x, y), (x + 10, y), (x + 10, y + 5.25), (x, y + 5.25)]
        self.tag(90, self.integer(len(corners)))
        self.tag(70, self.integer(rng.choice([1, 129])))
        if rng.random() < 0.5:
            self.tag(43, self.number(0.0))
        if rng.random() < 0.5:
            self.tag(38, self.number(0.0))
        if rng.random() < 0.5:
            self.tag(39, self.number(0.0))
        for corner in corners:
            self.point(10, *corner, None)
            if rng.random() < 0.3:
                self.tag(42, self.number(rng.choice([0.0, 0.0, 0.25])))
            if rng.random() < 0.2 and self.version >= "AC1024":
                self.tag(91, "0")
        if rng.random() < 0.5:
            self.point(210, 0.0, 0.0, 1.0)
        self.foreign_xdata()

    def stranger(self) -> None:
        self.head(self.rng.choice(["STRANGE", "ACME_WALL", "LIGHT"]))
        self.tag(100, "AcDbStranger")
        for _ in range(self.rng.randint(0, 8)):
            code = self.rng.choice([1, 3, 40, 70, 90, 160, 290, 310, 330, 340, 10])
            if code in (1, 3):
                self.tag(code, self.text())
            elif code in (40,):
                self.tag(code, self.number(0.25))
            elif code == 10:
                self.point(10, 1.0, 2.0, 3.0)
            elif code == 310:
                self.tag(code, "DEADbeef" * self.rng.randint(0, 31))
            elif code in (330, 340):
                self.tag(code, self.handle(self.rng.choice([0, 0x1F, 0xABCDEF])))
            else:
                self.tag(code, self.integer(1))
        self.foreign_xdata()

    def other_entity(self) -> None:
        rng = self.rng
        kind = rng.choice(["LINE", "CIRCLE", "TEXT", "POINT", "SPLINE"])
        self.head(kind)
        if kind == "LINE":
            self.tag(100, "AcDbLine")
            self.point(10, 0.0, 0.5, 0.0)
            self.point(11, 1e5, 7.0, -0.0)
        elif kind == "CIRCLE":
            self.tag(100, "AcDbCircle")
            self.point(10, 3.0, 0.5, 0.0)
            self.tag(40, self.number(0.5))
        elif kind == "TEXT":
            self.tag(100, "AcDbText")
            self.point(10, 3.0, 0.5, 0.0)
            self.tag(40, self.number(2.5))
            self.tag(1, self.text())
            self.tag(100, "AcDbText")
        elif kind == "POINT":
            self.tag(100, "AcDbPoint")
            self.point(10, 3.0, 0.5, 0.0)
        else:
            self.tag(100, "AcDbSpline")
            self.tag(70, "8")
            self.tag(71, "3")
            self.tag(72, "8")
            self.tag(73, "4")
            self.tag(74, "0")
            for knot in (0, 0, 0, 0, 1, 1, 1, 1):
                self.tag(40, self.number(float(knot)))
            for x in range(4):
                self.point(10, float(x), float(x % 2), 0.0)
        self.foreign_xdata()

    # -- sections ----------------------------------------------------------------------------------------------------
    def table(self, name: str, handle: int, count: int) -> None:
        self.tag(0, "TABLE")
        self.tag(2, name)
        self.tag(5, self.handle(handle))
        self.tag(330, "0")
        self.tag(100, "AcDbSymbolTable")
        self.tag(70, self.integer(count))

    def record(self, kind: str, owner: int, markers: list[str], name: str, flags: int = 0, handle: int | None = None) -> int:
        handle = handle or self.new_handle()
        self.tag(0, kind)
        self.comment(0.1)
        self.tag(5, self.handle(handle))
        if kind == "BLOCK_RECORD" and name == "*Model_Space" and self.has_sort_table:
            self.tag(102, "{ACAD_XDICTIONARY")
            self.tag(360, "60")
            self.tag(102, "}")
        self.tag(330, self.handle(owner))
        self.tag(100, "AcDbSymbolTableRecord")
        self.tag(100, markers[0])
        self.tag(2, name)
        if kind != "BLOCK_RECORD":
            self.tag(70, self.integer(flags))
        return handle

    def build(self) -> bytes:
        rng = self.rng
        self.extensions: list[tuple[int, int]] = []
        self.comment(0.5)
        self.tag(0, "SECTION")
        self.tag(2, "HEADER")
        self.tag(9, "$ACADVER")
        self.tag(1, self.version)
        self.comment(0.3)
        self.tag(9, "$DWGCODEPAGE")
        self.tag(3, self.page)
        self.tag(9, "$HANDSEED")
        self.tag(5, rng.choice([self.seed, "  " + self.seed.lower(), self.seed.rjust(16, "0")]))
        self.tag(9, "$TUNTEMATON")
        self.tag(40, self.number(0.5))
        self.tag(9, "$CLAYER")
        self.tag(8, "0")
        self.tag(9, "$INSUNITS")
        self.tag(70, self.integer(6))
        self.tag(0, "ENDSEC")
        self.comment(0.3)
        self.tag(0, "SECTION")
        self.tag(2, "CLASSES")
        self.tag(0, "CLASS")
        self.tag(1, "STRANGE")
        self.tag(2, "AcDbStrange")
        self.tag(3, self.text())
        self.tag(90, "0")
        if self.version >= "AC1018":
            self.tag(91, "1")
        self.tag(280, "0")
        self.tag(281, "1")
        self.tag(0, "ENDSEC")
        self.tag(0, "SECTION")
        self.tag(2, "TABLES")
        if rng.random() < 0.5:
            self.table("TUNTEMATON", 0x7, 0)
            self.tag(0, "ENDTAB")
        self.table("LTYPE", 0x5, 3)
        for handle, name in ((0x14, "ByBlock"), (0x15, "ByLayer"), (0x16, "Continuous")):
            self.record("LTYPE", 0x5, ["AcDbLinetypeTableRecord"], name, handle=handle)
            self.tag(3, self.text())
            self.tag(72, "65")
            self.tag(73, "0")
            self.tag(40, self.number(0.0))
        self.tag(0, "ENDTAB")
        self.table("LAYER", 0x2, rng.choice([2, 77]))
        self.record("LAYER", 0x2, ["AcDbLayerTableRecord"], "0", handle=0x10)
        self.tag(62, self.integer(7))
        self.tag(6, "Continuous")
        for name in ("VANHA", "mets\\U+00E4"):
            self.record("LAYER", 0x2, ["AcDbLayerTableRecord"], name)
            self.tag(62, self.integer(-3))
            self.tag(6, "continuous")
            if rng.random() < 0.5:
                self.tag(370, "-3")
            self.foreign_xdata()
        self.tag(0, "ENDTAB")
        self.table("STYLE", 0x3, 1)
        self.record("STYLE", 0x3, ["AcDbTextStyleTableRecord"], "Standard", handle=0x11)
        for code, value in ((40, 0.0), (41, 1.0), (50, 0.0)):
            self.tag(code, self.number(value))
        self.tag(71, "0")
        self.tag(42, self.number(0.2))
        self.tag(3, "txt")
        self.tag(4, "")
        self.tag(0, "ENDTAB")
        self.table("APPID", 0x9, 3)
        for handle, name in ((0x12, "ACAD"), (0x13, "VIERAS"), (0x17, "TOINEN")):
            self.record("APPID", 0x9, ["AcDbRegAppTableRecord"], name, handle=handle)
        self.tag(0, "ENDTAB")
        self.table("BLOCK_RECORD", 0x1, 2)
        for handle, name in ((0x1F, "*Model_Space"), (0x1B, "*Paper_Space")):
            self.record("BLOCK_RECORD", 0x1, ["AcDbBlockTableRecord"], name, handle=handle)
            self.tag(340, "0")
        self.tag(0, "ENDTAB")
        self.tag(0, "ENDSEC")
        self.tag(0, "SECTION")
        self.tag(2, "BLOCKS")
        for space, begin, end, name in ((0x1F, 0x20, 0x21, "*Model_Space"), (0x1B, 0x1C, 0x1D, "*Paper_Space")):
            self.tag(0, "BLOCK")
            self.tag(5, self.handle(begin))
            self.tag(330, self.handle(space))
            self.tag(100, "AcDbEntity")
            self.tag(8, "0")
            self.tag(100, "AcDbBlockBegin")
            self.tag(2, name)
            self.tag(70, "0")
            self.point(10, 0.0, 0.0, 0.0)
            self.tag(3, name)
            self.tag(1, "")
            self.tag(0, "ENDBLK")
            self.tag(5, self.handle(end))
            self.tag(330, self.handle(space))
            self.tag(100, "AcDbEntity")
            self.tag(8, "0")
            self.tag(100, "AcDbBlockEnd")
        self.tag(0, "ENDSEC")
        if rng.random() < 0.3:
            self.tag(0, "SECTION")
            self.tag(2, "VIERASOSA")
            self.tag(0, "JOTAIN")
            self.tag(1, self.text())
            self.tag(0, "ENDSEC")
        self.tag(0, "SECTION")
        self.tag(2, "ENTITIES")
        for _ in range(rng.randint(3, 25)):
            rng.choice([self.outline, self.stranger, self.other_entity])()
        self.outline()
        self.comment(0.3)
        self.tag(0, "ENDSEC")
        self.objects()
        if self.version >= "AC1027" and rng.random() < 0.5:
            self.tag(0, "SECTION")
            self.tag(2, "ACDSDATA")
            self.tag(70, "2")
            self.tag(0, "ACDSSCHEMA")
            self.tag(90, "0")
            self.tag(1, "AcDb_Thumbnail_Schema")
            self.tag(0, "ENDSEC")
        if rng.random() < 0.3:
            self.tag(0, "SECTION")
            self.tag(2, "THUMBNAILIMAGE")
            self.tag(90, "4")
            self.tag(310, "00010203")
            self.tag(0, "ENDSEC")
        self.comment(0.2)
        self.tag(0, "EOF")
        text = b"".join(self.out)
        if rng.random() < 0.2:
            text = text[: -len(self.line_end)]  # no line end behind EOF
        elif rng.random() < 0.2:
            text += self.line_end
        return text

    def objects(self) -> None:
        rng = self.rng
        self.tag(0, "SECTION")
        self.tag(2, "OBJECTS")

        def dictionary(handle: int, owner: int, entries: list[tuple[str, int]], soft: bool) -> None:
            self.comment(0.1)
            self.tag(0, "DICTIONARY")
            self.tag(5, self.handle(handle))
            self.tag(330, self.handle(owner))
            self.tag(100, "AcDbDictionary")
            if rng.random() < 0.5:
                self.tag(280, "0")
            self.tag(281, self.integer(1))
            for name, target in entries:
                self.tag(3, name)
                self.tag(350 if soft else 360, self.handle(target))

        dictionary(0xC, 0, [("ACAD_GROUP", 0xD), ("VIERAS_" + self.letters[0], 0x71)], True)
        dictionary(0xD, 0xC, [("Ryhmä" if "ä" in self.letters else "Ryhma", 0x70)], True)
        self.tag(0, "GROUP")
        self.tag(5, "70")
        self.tag(102, "{ACAD_REACTORS")
        self.tag(330, "D")
        self.tag(102, "}")
        self.tag(330, "D")
        self.tag(100, "AcDbGroup")
        self.tag(300, self.text())
        self.tag(70, "0")
        self.tag(71, "1")
        self.tag(340, self.handle(int(self.outlines[0], 16)))
        self.tag(0, "OUTO_OLIO")
        self.tag(5, "71")
        self.tag(330, "C")
        self.tag(100, "AcDbOuto")
        self.tag(5, "99")
        self.tag(1, self.text())
        if self.has_sort_table:
            dictionary(0x60, 0x1F, [("ACAD_SORTENTS", 0x61)], False)
            self.tag(0, "SORTENTSTABLE")
            self.tag(5, "61")
            self.tag(330, "60")
            self.tag(100, "AcDbSortentsTable")
            self.tag(330, "1F")
            for entity in self.outlines[:2]:
                self.tag(331, entity)
                self.tag(5, entity)
        for extension, owner in self.extensions:
            record = self.new_handle()
            dictionary(extension, owner, [("LISÄ" if "Ä" in self.letters else "LISA", record)], False)
            self.tag(0, "XRECORD")
            self.tag(5, self.handle(record))
            self.tag(330, self.handle(extension))
            self.tag(100, "AcDbXrecord")
            self.tag(280, "1")
            for code in rng.sample([1, 40, 70, 90, 10, 290, 310, 330, 1, 160], 5):
                if code == 10:
                    self.point(10, 1.0, 0.25, 0.0)
                elif code == 310:
                    self.tag(310, "00ff")
                elif code == 1:
                    self.tag(1, self.text())
                elif code == 330:
                    self.tag(330, "50")
                else:
                    self.tag(code, self.number(1.0) if code == 40 else self.integer(1))
        self.tag(0, "ENDSEC")


# -- comparing -----------------------------------------------------------------------------------------------------------


def records(text: bytes) -> list[bytes]:
    """The text cut before every tag 0, and before every variable of the header; the pieces joined are the text."""
    lines = text.split(b"\n")
    pieces: list[bytes] = []
    piece: list[bytes] = []
    for at in range(0, len(lines), 2):
        if lines[at].strip() in (b"0", b"9") and piece:
            pieces.append(b"\n".join(piece) + b"\n")
            piece = []
        piece += lines[at : at + 2]
    pieces.append(b"\n".join(piece))
    return pieces


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
    old, new = records(before), records(after)
    left = {}
    for record in new:
        left[record] = left.get(record, 0) + 1
    by_handle = {handle_of(record): record for record in new}
    position = -1
    places: dict[bytes, list[int]] = {}
    for at, record in enumerate(new):
        places.setdefault(record, []).append(at)
    for record in old:
        kind = tags(record)[0] if tags(record) else (0, b"")
        if left.get(record, 0) > 0:
            left[record] -= 1
            later = [at for at in places[record] if at > position]
            if not later:
                faults.append(f"out of its place: {record[:80]!r}")
            else:
                position = later[0]
            continue
        handle = handle_of(record)
        if kind[0] == 9 and kind[1].strip() == b"$HANDSEED":
            continue
        if kind == (0, b"TABLE"):
            then = [r for r in new if tags(r) and tags(r)[0] == kind and handle_of(r) == handle]
            if len(then) == 1 and [t for t in tags(then[0]) if t[0] != 70] == [t for t in tags(record) if t[0] != 70]:
                continue
        if handle == outline and handle in by_handle:
            faults += compare_outline(record, by_handle[handle])
            continue
        if kind[1] == b"SORTENTSTABLE":
            continue
        if kind[1] == b"BLOCK_RECORD" and handle == "1F":
            # It may gain an extension dictionary; every tag it had stays.
            rest = iter(tags(by_handle[handle]))
            if all(any(tag == other for other in rest) for tag in tags(record)):
                continue
        faults.append(f"changed: {record!r} -> {by_handle.get(handle, b'(gone)')!r}")
    return faults


def compare_outline(before: bytes, after: bytes) -> list[str]:
    # Line by line: codes, spellings and blanks count too.
    old, new = before.split(b"\n"), after.split(b"\n")
    own = [at for at in range(0, len(new) - 1, 2) if new[at].strip() == b"1001" and new[at + 1].strip() == b"kaava_tolmex"]
    if len(own) != 1:
        return [f"the outline has {len(own)} tags of the system: {after!r}"]
    end = next((at for at in range(own[0] + 2, len(new) - 1, 2) if new[at].strip() in (b"1001", b"999")), len(new) - 1)
    rest = new[: own[0]] + new[end:]
    had = [at for at in range(0, len(old) - 1, 2) if old[at].strip() == b"1001" and old[at + 1].strip() == b"kaava_tolmex"]
    if had:
        end = next((at for at in range(had[0] + 2, len(old) - 1, 2) if old[at].strip() in (b"1001", b"999")), len(old) - 1)
        old = old[: had[0]] + old[end:]
    # The layer's own tag is written anew, blanks of its code included.
    differing = [at // 2 for at in range(max(len(old), len(rest))) if old[at : at + 1] != rest[at : at + 1]]
    if len(old) != len(rest) or len(set(differing)) > 1 or (differing and old[differing[0] * 2].strip() != b"8"):
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


SECTIONS = {b"HEADER", b"CLASSES", b"TABLES", b"BLOCKS", b"ENTITIES", b"OBJECTS"}
MARKERS = ["SECTION", "ENDSEC", "TABLE", "ENDTAB", "BLOCK", "ENDBLK", "EOF"]
# A rebuilt drawing gets what it lacks: these gain tags or have a count.
GROWING = {b"TABLE", b"BLOCK_RECORD"}


def places(text: bytes) -> dict[str, bytes]:
    """Records by where they stand and what they are: "TABLES/LAYER/LAYER 10"; header variables by name."""
    found: dict[str, bytes] = {}
    section = inner = ""
    for record in records(text):
        content = [tag for tag in tags(record) if tag[0] != 999]
        if not content:
            continue
        code, kind = content[0][0], content[0][1].strip().decode("latin-1")
        names = [value.strip().decode("latin-1") for number, value in content if number == 2]
        if code == 9:
            found[f"HEADER/{kind}"] = record
            continue
        if kind == "SECTION":
            section, inner = (names or ["?"])[0], ""
        elif kind in ("TABLE", "BLOCK"):
            inner = (names or ["?"])[0]
        if kind not in ("SECTION", "ENDSEC", "ENDTAB", "EOF"):
            handle = handle_of(record) or f"({sum(key.startswith(f'{section}/{inner}/{kind}') for key in found)})"
            found[f"{section}/{inner}/{kind} {handle}"] = record
        if kind in ("ENDTAB", "ENDBLK"):
            inner = ""
    return found


def without_comments(record: bytes) -> list[bytes]:
    lines = record.split(b"\n")
    kept = []
    for at in range(0, len(lines) - 1, 2):
        if lines[at].strip() != b"999":
            kept += lines[at : at + 2]
    return kept


def lines_of(record: bytes, other: bytes) -> list[bytes]:
    """The lines of one that the other lacks."""
    rest = other.split(b"\n")
    return [line for line in record.split(b"\n") if line not in rest or rest.remove(line)]  # type: ignore[func-returns-value]


def stray(rng: random.Random, sound: bytes) -> tuple[bytes, str]:
    """The drawing with a marker in front of one of its tags, and words for it."""
    lines = sound.split(b"\n")
    marker = rng.choice(MARKERS)
    starts = [at for at in range(0, len(lines) - 3, 2) if lines[at].strip() == b"0" and lines[at + 1].strip() == b"SECTION"]
    while True:
        # Between records there are fewer places than inside, and they matter more.
        between = rng.random() < 0.5
        at = rng.randrange(2, len(lines) // 2) * 2
        code = lines[at].strip()
        before = lines[at - 2].strip(), lines[at - 1].strip()
        # Between a section's marker and its name, or in front of a name, nobody can tell which marker is meant.
        if code == b"999" or before[0] == b"999" or before == (b"0", b"SECTION") or (marker == "SECTION" and code == b"2"):
            continue
        # Sections of unknown kinds may hold anything but what ends them.
        section = max((start for start in starts if start < at), default=0)
        if lines[section + 3].strip() not in SECTIONS and marker not in ("SECTION", "ENDSEC", "EOF"):
            continue
        if (code == b"0") == between:
            break
    line_end = b"\r" if lines[0].endswith(b"\r") else b""
    lines[at:at] = [b"  0" + line_end, marker.encode() + line_end]
    return b"\n".join(lines), f"{marker} at line {at + 1}, in front of {lines[at + 2]!r} {lines[at + 3]!r}"


def probe_stray(program: str, rng: random.Random, sound: bytes, folder: pathlib.Path) -> list[str]:
    damaged, what = stray(rng, sound)
    source, out = folder / "stray.dxf", folder / "stray-out.dxf"
    source.write_bytes(damaged)
    result = subprocess.run([program, "run", str(source), "--out", str(out), "--command", "REGEN"], capture_output=True)
    if result.returncode != 0:
        return [f"{what}: status {result.returncode}: {result.stdout[-300:]!r}{result.stderr[-300:]!r}"]
    after = out.read_bytes()
    faults = [] if result.stderr else ["not a word"]
    faults += check_handles(after)
    old, new = places(sound), places(after)
    root = next(key for key, record in old.items() if key.startswith("OBJECTS//DICTIONARY"))
    for key, record in old.items():
        grows = key == root or tags(record)[0][1].strip() in GROWING or key == "HEADER/$HANDSEED"
        if key not in new:
            faults.append(f"{key} is gone: {record!r}")
        elif not grows and without_comments(new[key]) != without_comments(record):
            faults.append(f"{key} changed: {lines_of(record, new[key])} -> {lines_of(new[key], record)}")
    return [f"{what}: {fault}" for fault in faults]


def run(program: str, drawing: pathlib.Path, out: pathlib.Path, lines: list[str]) -> str:
    command = [program, "run", str(drawing), "--out", str(out), "--quiet"]
    script = drawing.with_suffix(".scr")
    script.write_text("".join(line + "\n" for line in lines))
    result = subprocess.run([*command, "--script", str(script)], capture_output=True, text=True, errors="replace")
    if result.returncode != 0:
        return f"status {result.returncode}: {result.stdout}{result.stderr}"
    return ""


def probe(program: str, seed: int, strays: int, folder: pathlib.Path) -> list[str]:
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
    faults = compare(before, touched.read_bytes(), outline)
    first = touched.read_bytes()
    if f"{outline}" not in {handle_of(r) for r in records(first) if b"kaava_tolmex" in r}:
        faults.append("the outline got no tag")
    if message := run(program, touched, again, ["TLM_MUOK_NURMIKKO", f'(handent "{outline}")', ""]):
        return [*faults, "second run: " + message]
    # The fill of the first run is erased, its record is the only one that may be gone.
    gone = re.compile(rb"HATCH")
    faults += ["second run: " + fault for fault in compare(first, again.read_bytes(), outline) if not gone.search(fault.encode()[:24])]
    faults += check_handles(first) + check_handles(again.read_bytes())
    # What the outline's tag names is its fill.
    fill = re.search(rb"HATCH_HANDLE\r?\n *1005\r?\n([0-9A-F]+)\r?\n", first)
    if not fill or not any(handle_of(record) == fill[1].decode() for record in records(first) if gone.search(record[:24])):
        faults.append(f"the tag names no fill: {fill[1] if fill else None}")
    for _ in range(strays):
        faults += probe_stray(program, drawing.rng, before, folder)
    return faults


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("program")
    parser.add_argument("--seeds", nargs=2, type=int, default=(1, 20), metavar=("FIRST", "LAST"))
    parser.add_argument("--strays", type=int, default=4, metavar="COUNT", help="damaged drawings for each seed")
    parser.add_argument("--keep", type=pathlib.Path, help="folder for the drawings; otherwise they are removed")
    options = parser.parse_args()
    faulty = 0
    with tempfile.TemporaryDirectory() as temporary:
        folder = options.keep or pathlib.Path(temporary)
        folder.mkdir(parents=True, exist_ok=True)
        for seed in range(options.seeds[0], options.seeds[1] + 1):
            faults = probe(options.program, seed, options.strays, folder)
            faulty += bool(faults)
            for fault in faults:
                print(f"seed {seed}: {fault}")
    print(f"{options.seeds[1] - options.seeds[0] + 1} drawings, {faulty} with faults")
    return 1 if faulty else 0


if __name__ == "__main__":
    sys.exit(main())
