"""Writes complete AC1027 drawings (UTF-8, metric, metres) entity by entity, so that size costs no memory.

Plain Python; used by the example, the benchmarks and the tests. The same calls give the same bytes.
"""

from __future__ import annotations

from typing import Callable, Iterable, NamedTuple, Sequence, TextIO

# Handles of the fixed objects; entities begin at FIRST_ENTITY unless the caller says otherwise.
VPORT_TABLE, LTYPE_TABLE, LAYER_TABLE, STYLE_TABLE, VIEW_TABLE = 0x8, 0x5, 0x2, 0x3, 0x6
UCS_TABLE, APPID_TABLE, DIMSTYLE_TABLE, BLOCK_RECORD_TABLE = 0x7, 0x9, 0xA, 0x1
ROOT_DICTIONARY, GROUP_DICTIONARY, LAYOUT_DICTIONARY, PLOT_STYLE_DICTIONARY = 0xC, 0xD, 0x1A, 0xE
PLOT_STYLE_NORMAL, MLINESTYLE_DICTIONARY, MLINESTYLE_STANDARD = 0xF, 0x17, 0x18
LTYPE_BYBLOCK, LTYPE_BYLAYER, LTYPE_CONTINUOUS, STYLE_STANDARD, DIMSTYLE_STANDARD = 0x14, 0x15, 0x16, 0x11, 0x27
APPID_ACAD, VPORT_ACTIVE = 0x12, 0x29
MODEL_SPACE, MODEL_BLOCK, MODEL_ENDBLK, MODEL_LAYOUT = 0x1F, 0x20, 0x21, 0x22
PAPER_SPACE, PAPER_BLOCK, PAPER_ENDBLK, PAPER_LAYOUT = 0x1B, 0x1C, 0x1D, 0x1E
FIRST_TABLE_ENTRY = 0x30
FIRST_ENTITY = 0x100


class Layer(NamedTuple):
    name: str
    color: int  # colour index 1..255
    lineweight: int = -3  # hundredths of a millimetre; -3 is the default weight
    linetype: str = "Continuous"


class Linetype(NamedTuple):
    name: str
    description: str
    dashes: Sequence[float]  # drawing units; positive dash, negative gap


Vertex = Sequence[float]  # x, y and, when the segment that begins here is an arc, its bulge


def number(value: float) -> str:
    """Tenths of a millimetre, without digits that carry nothing."""
    text = f"{value:.4f}".rstrip("0")
    return text + "0" if text.endswith(".") else text


def at(code: int, point: Vertex, z: str = "0.0") -> tuple[object, ...]:
    """The pairs of a point on the ground."""
    return (code, number(point[0]), code + 10, number(point[1]), code + 20, z)


def bulge_of(vertex: Vertex) -> tuple[object, ...]:
    return (42, f"{vertex[2]:.12g}") if len(vertex) > 2 and vertex[2] != 0.0 else ()


def escaped(text: str) -> str:
    return text.replace("^", "^ ").replace("\n", "^J").replace("\t", "^I")


class DrawingWriter:
    """One drawing being written to a seekable text stream opened with newline="\\n" and UTF-8.

    Use it as a context manager: leaving it writes the closing sections. `extents` is (x1, y1, x2, y2) in metres.
    `blocks` names functions that draw a block's content around its origin by calling the same methods; `applications`
    names those whose extended data entities carry (see `extended_data`).
    Every entity method returns the handle of what it wrote.
    """

    def __init__(
        self,
        stream: TextIO,
        layers: Iterable[Layer],
        extents: Sequence[float],
        linetypes: Iterable[Linetype] = (),
        blocks: dict[str, Callable[["DrawingWriter"], None]] | None = None,
        first_handle: int = FIRST_ENTITY,
        applications: Sequence[str] = (),
    ):
        self._stream = stream
        self._layers = [Layer("0", 7), *layers]
        self._linetypes = list(linetypes)
        self._extents = extents
        self._blocks = blocks or {}
        self._applications = applications
        self._next_fixed = FIRST_TABLE_ENTRY
        self._block_handles = {name: [self._fixed() for _ in range(3)] for name in self._blocks}
        self._next = first_handle
        self._owner = MODEL_SPACE
        self._seed_position = 0

    def __enter__(self) -> "DrawingWriter":
        self._write_header()
        self._write_classes()
        self._write_tables()
        self._write_blocks()
        self._pairs(0, "SECTION", 2, "ENTITIES")
        return self

    def __exit__(self, error_type, error, trace) -> None:
        if error_type is not None:
            return
        self._pairs(0, "ENDSEC")
        self._write_objects()
        self._pairs(0, "EOF")
        self._stream.seek(self._seed_position)
        self._stream.write(f"{self._next:08X}")
        self._stream.seek(0, 2)

    def handles_from(self, handle: int) -> None:
        """The next entities get this handle and the following ones; keeps handles stable when others are added."""
        if handle < self._next:
            raise ValueError(f"handle {handle:X} is already used: the next free one is {self._next:X}")
        self._next = handle

    # Entities. -------------------------------------------------------------------------------------------------

    def polyline(self, layer: str, vertices: Sequence[Vertex], closed: bool = True) -> int:
        handle = self._begin("LWPOLYLINE", layer)
        self._pairs(100, "AcDbPolyline", 90, len(vertices), 70, int(closed), 43, "0.0")
        for vertex in vertices:
            self._pairs(10, number(vertex[0]), 20, number(vertex[1]), *bulge_of(vertex))
        return handle

    def polyline_2d(self, layer: str, vertices: Sequence[Vertex], closed: bool = True) -> int:
        """An old-style polyline with a VERTEX for every point."""
        handle = self._begin("POLYLINE", layer)
        self._pairs(100, "AcDb2dPolyline", 66, 1, 10, "0.0", 20, "0.0", 30, "0.0", 70, int(closed))
        for vertex in vertices:
            self._begin("VERTEX", layer, owner=handle)
            self._pairs(100, "AcDbVertex", 100, "AcDb2dVertex", *at(10, vertex), *bulge_of(vertex))
        self._begin("SEQEND", layer, owner=handle)
        return handle

    def line(self, layer: str, start: Vertex, end: Vertex) -> int:
        handle = self._begin("LINE", layer)
        self._pairs(100, "AcDbLine", *at(10, start), *at(11, end))
        return handle

    def circle(self, layer: str, center: Vertex, radius: float) -> int:
        handle = self._begin("CIRCLE", layer)
        self._pairs(100, "AcDbCircle", *at(10, center), 40, number(radius))
        return handle

    def arc(self, layer: str, center: Vertex, radius: float, start: float, end: float) -> int:
        """Counter-clockwise from `start` to `end`, degrees."""
        handle = self._begin("ARC", layer)
        self._pairs(100, "AcDbCircle", *at(10, center), 40, number(radius))
        self._pairs(100, "AcDbArc", 50, number(start), 51, number(end))
        return handle

    def ellipse(self, layer: str, center: Vertex, major: Vertex, ratio: float) -> int:
        """A whole one; `major` leads from the centre to the end of the longer axis."""
        handle = self._begin("ELLIPSE", layer)
        self._pairs(100, "AcDbEllipse", *at(10, center), *at(11, major))
        self._pairs(210, "0.0", 220, "0.0", 230, "1.0", 40, number(ratio), 41, "0.0", 42, "6.283185307179586")
        return handle

    def spline(self, layer: str, controls: Sequence[Vertex]) -> int:
        """A cubic one from the first control point to the last; at least four."""
        handle = self._begin("SPLINE", layer)
        inner = len(controls) - 4
        knots = [0] * 4 + list(range(1, inner + 1)) + [inner + 1] * 4
        self._pairs(100, "AcDbSpline", 210, "0.0", 220, "0.0", 230, "1.0", 70, 8, 71, 3)
        self._pairs(72, len(knots), 73, len(controls), 74, 0, 42, "0.0000001", 43, "0.0000001")
        for knot in knots:
            self._pairs(40, number(knot))
        for control in controls:
            self._pairs(*at(10, control))
        return handle

    def point(self, layer: str, position: Vertex) -> int:
        """With its height as third number."""
        handle = self._begin("POINT", layer)
        self._pairs(100, "AcDbPoint", *at(10, position, number(position[2])))
        return handle

    def polyline_3d(self, layer: str, vertices: Sequence[Vertex], closed: bool = True) -> int:
        """Old-style, of points with heights."""
        handle = self._begin("POLYLINE", layer)
        self._pairs(100, "AcDb3dPolyline", 66, 1, 10, "0.0", 20, "0.0", 30, "0.0", 70, 8 + int(closed))
        for vertex in vertices:
            self._begin("VERTEX", layer, owner=handle)
            self._pairs(100, "AcDbVertex", 100, "AcDb3dPolylineVertex", *at(10, vertex, number(vertex[2])), 70, 32)
        self._begin("SEQEND", layer, owner=handle)
        return handle

    def solid(self, layer: str, corners: Sequence[Vertex]) -> int:
        """Three or four corners in their order around the area."""
        handle = self._begin("SOLID", layer)
        self._pairs(100, "AcDbTrace")
        # The file lists the last two crosswise.
        for i, corner in enumerate((corners[0], corners[1], corners[-1], corners[2])):
            self._pairs(*at(10 + i, corner))
        return handle

    def hatch(self, layer: str, ring: Sequence[Vertex], line_spacing: float | None = None) -> int:
        """A fill of a ring of straight edges: solid, or parallel lines at 45 degrees so far apart."""
        handle = self._begin("HATCH", layer)
        self._pairs(100, "AcDbHatch", 10, "0.0", 20, "0.0", 30, "0.0", 210, "0.0", 220, "0.0", 230, "1.0")
        is_solid = line_spacing is None
        self._pairs(2, "SOLID" if is_solid else "LINE", 70, int(is_solid), 71, 0, 91, 1, 92, 3, 72, 0, 73, 1, 93, len(ring))
        for vertex in ring:
            self._pairs(10, number(vertex[0]), 20, number(vertex[1]))
        self._pairs(97, 0, 75, 1, 76, 1)
        if line_spacing is not None:
            offset = line_spacing * 0.7071067811865476
            self._pairs(52, "45.0", 41, number(line_spacing), 77, 0, 78, 1, 53, "45.0", 43, "0.0", 44, "0.0")
            self._pairs(45, number(-offset), 46, number(offset), 79, 0)
        self._pairs(98, 1, 10, "0.0", 20, "0.0")
        return handle

    def dimension(self, layer: str, block: str, start: Vertex, end: Vertex, offset: float) -> int:
        """An aligned one of a level distance, its line `offset` above; `block` draws it as measured from the origin."""
        handle = self._begin("DIMENSION", layer)
        self._pairs(100, "AcDbDimension", 2, block, *at(10, (end[0], end[1] + offset)))
        self._pairs(*at(11, ((start[0] + end[0]) / 2, start[1] + offset)), *at(12, start), 70, 33, 71, 5)
        self._pairs(42, number(end[0] - start[0]), 3, "Standard", 100, "AcDbAlignedDimension", *at(13, start), *at(14, end))
        return handle

    def text(self, layer: str, center: Vertex, height: float, text: str, rotation: float = 0.0) -> int:
        """One line of text centred on a point; rotation in degrees."""
        handle = self._begin("TEXT", layer)
        self._pairs(100, "AcDbText", *at(10, center), 40, number(height), 1, escaped(text), 50, number(rotation))
        self._pairs(7, "Standard", 72, 1, *at(11, center), 100, "AcDbText", 73, 2)
        return handle

    def mtext(self, layer: str, point: Vertex, height: float, text: str, width: float, attachment: int = 1) -> int:
        """Paragraph text ("\\P" begins a line); `attachment` 1 is top left, 5 middle centre."""
        handle = self._begin("MTEXT", layer)
        self._pairs(100, "AcDbMText", *at(10, point), 40, number(height))
        self._pairs(41, number(width), 71, attachment, 72, 1, 1, escaped(text), 7, "Standard")
        return handle

    def insert(self, layer: str, block: str, point: Vertex, scale: float = 1.0, rotation: float = 0.0,
               attributes: dict[str, str] | None = None) -> int:
        """Attributes (tag to text) stand below the point, in texts of a metre."""
        handle = self._begin("INSERT", layer)
        factor = number(scale)
        self._pairs(100, "AcDbBlockReference", *((66, 1) if attributes else ()), 2, block, *at(10, point))
        self._pairs(41, factor, 42, factor, 43, factor, 50, number(rotation))
        for row, (tag, text) in enumerate((attributes or {}).items()):
            self._begin("ATTRIB", layer, owner=handle)
            self._pairs(100, "AcDbText", *at(10, (point[0], point[1] - 1.4 * (row + 1))))
            self._pairs(40, "1.0", 1, escaped(text), 7, "Standard", 100, "AcDbAttribute", 2, tag, 70, 0)
        if attributes:
            self._begin("SEQEND", layer, owner=handle)
        return handle

    def extended_data(self, application: str, texts: Iterable[str]) -> None:
        """Text items that the entity written last carries for an application."""
        self._pairs(1001, application)
        for text in texts:
            self._pairs(1000, escaped(text))

    # The frame of the drawing. ---------------------------------------------------------------------------------

    def _pairs(self, *pairs: object) -> None:
        self._stream.write("".join(f"{item}\n" for item in pairs))

    def _fixed(self) -> int:
        self._next_fixed += 1
        if self._next_fixed > FIRST_ENTITY:
            raise ValueError("too many layers, linetypes and blocks for the handles below the first entity")
        return self._next_fixed - 1

    def _begin(self, kind: str, layer: str, owner: int | None = None) -> int:
        handle = self._next
        self._next += 1
        # SEQEND and VERTEX belong to their polyline, all else to the space or block being written.
        self._stream.write(
            f"0\n{kind}\n5\n{handle:X}\n330\n{self._owner if owner is None else owner:X}\n100\nAcDbEntity\n8\n{layer}\n"
        )
        return handle

    def _write_header(self) -> None:
        x1, y1, x2, y2 = (number(value) for value in self._extents)
        self._pairs(0, "SECTION", 2, "HEADER")
        self._pairs(9, "$ACADVER", 1, "AC1027", 9, "$DWGCODEPAGE", 3, "ANSI_1252")
        self._pairs(9, "$INSBASE", 10, "0.0", 20, "0.0", 30, "0.0")
        self._pairs(9, "$EXTMIN", 10, x1, 20, y1, 30, "0.0", 9, "$EXTMAX", 10, x2, 20, y2, 30, "0.0")
        self._pairs(9, "$LIMMIN", 10, x1, 20, y1, 9, "$LIMMAX", 10, x2, 20, y2)
        self._pairs(9, "$LTSCALE", 40, "1.0", 9, "$TEXTSIZE", 40, "1.5", 9, "$TEXTSTYLE", 7, "Standard")
        self._pairs(9, "$CLAYER", 8, "0", 9, "$CELTYPE", 6, "ByLayer", 9, "$CECOLOR", 62, 256)
        self._pairs(9, "$LUNITS", 70, 2, 9, "$LUPREC", 70, 3, 9, "$AUNITS", 70, 0, 9, "$MEASUREMENT", 70, 1)
        self._pairs(9, "$INSUNITS", 70, 6, 9, "$HANDSEED")
        self._stream.write("5\n")
        # Known only at the end: a fixed number of digits is filled in then.
        self._seed_position = self._stream.tell()
        self._stream.write("00000000\n")
        self._pairs(0, "ENDSEC")

    def _write_classes(self) -> None:
        self._pairs(0, "SECTION", 2, "CLASSES")
        for name, implementation, count in (
            ("ACDBDICTIONARYWDFLT", "AcDbDictionaryWithDefault", 1),
            ("ACDBPLACEHOLDER", "AcDbPlaceHolder", 1),
            ("LAYOUT", "AcDbLayout", 2),
        ):
            self._pairs(0, "CLASS", 1, name, 2, implementation, 3, "ObjectDBX Classes", 90, 0, 91, count, 280, 0, 281, 0)
        self._pairs(0, "ENDSEC")

    def _table(self, name: str, handle: int, count: int) -> None:
        self._pairs(0, "TABLE", 2, name, 5, f"{handle:X}", 330, 0, 100, "AcDbSymbolTable", 70, count)

    def _entry(self, kind: str, handle: int, table: int, subclass: str, name: str, flags: int | None = 0) -> None:
        self._pairs(0, kind, 105 if kind == "DIMSTYLE" else 5, f"{handle:X}", 330, f"{table:X}")
        self._pairs(100, "AcDbSymbolTableRecord", 100, subclass, 2, name)
        if flags is not None:
            self._pairs(70, flags)

    def _write_tables(self) -> None:
        x1, y1, x2, y2 = self._extents
        self._pairs(0, "SECTION", 2, "TABLES")

        self._table("VPORT", VPORT_TABLE, 1)
        self._entry("VPORT", VPORT_ACTIVE, VPORT_TABLE, "AcDbViewportTableRecord", "*Active")
        self._pairs(10, "0.0", 20, "0.0", 11, "1.0", 21, "1.0")
        self._pairs(12, number((x1 + x2) / 2), 22, number((y1 + y2) / 2), 13, "0.0", 23, "0.0")
        self._pairs(14, "10.0", 24, "10.0", 15, "10.0", 25, "10.0", 16, "0.0", 26, "0.0", 36, "1.0")
        self._pairs(17, "0.0", 27, "0.0", 37, "0.0", 40, number((y2 - y1) * 1.1), 41, "1.6", 42, "50.0")
        self._pairs(43, "0.0", 44, "0.0", 50, "0.0", 51, "0.0", 71, 0, 72, 1000, 73, 1, 74, 3, 75, 0, 76, 0, 77, 0, 78, 0)
        self._pairs(0, "ENDTAB")

        self._table("LTYPE", LTYPE_TABLE, 3 + len(self._linetypes))
        plain = ((LTYPE_BYBLOCK, "ByBlock", ""), (LTYPE_BYLAYER, "ByLayer", ""), (LTYPE_CONTINUOUS, "Continuous", "Solid line"))
        for handle, name, description in plain:
            self._entry("LTYPE", handle, LTYPE_TABLE, "AcDbLinetypeTableRecord", name)
            self._pairs(3, description, 72, 65, 73, 0, 40, "0.0")
        for linetype in self._linetypes:
            self._entry("LTYPE", self._fixed(), LTYPE_TABLE, "AcDbLinetypeTableRecord", linetype.name)
            length = sum(abs(dash) for dash in linetype.dashes)
            self._pairs(3, linetype.description, 72, 65, 73, len(linetype.dashes), 40, number(length))
            for dash in linetype.dashes:
                self._pairs(49, number(dash), 74, 0)
        self._pairs(0, "ENDTAB")

        self._table("LAYER", LAYER_TABLE, len(self._layers))
        for layer in self._layers:
            handle = 0x10 if layer.name == "0" else self._fixed()
            self._entry("LAYER", handle, LAYER_TABLE, "AcDbLayerTableRecord", layer.name)
            self._pairs(62, layer.color, 6, layer.linetype, 370, layer.lineweight, 390, f"{PLOT_STYLE_NORMAL:X}")
        self._pairs(0, "ENDTAB")

        self._table("STYLE", STYLE_TABLE, 1)
        self._entry("STYLE", STYLE_STANDARD, STYLE_TABLE, "AcDbTextStyleTableRecord", "Standard")
        self._pairs(40, "0.0", 41, "1.0", 50, "0.0", 71, 0, 42, "1.5", 3, "arial.ttf", 4, "")
        self._pairs(0, "ENDTAB")
        for name, handle in (("VIEW", VIEW_TABLE), ("UCS", UCS_TABLE)):
            self._table(name, handle, 0)
            self._pairs(0, "ENDTAB")
        self._table("APPID", APPID_TABLE, 1 + len(self._applications))
        self._entry("APPID", APPID_ACAD, APPID_TABLE, "AcDbRegAppTableRecord", "ACAD")
        for name in self._applications:
            self._entry("APPID", self._fixed(), APPID_TABLE, "AcDbRegAppTableRecord", name)
        self._pairs(0, "ENDTAB")
        self._table("DIMSTYLE", DIMSTYLE_TABLE, 1)
        self._pairs(100, "AcDbDimStyleTable", 71, 0)
        self._entry("DIMSTYLE", DIMSTYLE_STANDARD, DIMSTYLE_TABLE, "AcDbDimStyleTableRecord", "Standard")
        self._pairs(340, f"{STYLE_STANDARD:X}", 0, "ENDTAB")

        self._table("BLOCK_RECORD", BLOCK_RECORD_TABLE, 2 + len(self._blocks))
        records = [("*Model_Space", MODEL_SPACE, MODEL_LAYOUT), ("*Paper_Space", PAPER_SPACE, PAPER_LAYOUT)]
        records += [(name, handles[0], 0) for name, handles in self._block_handles.items()]
        for name, handle, layout in records:
            self._entry("BLOCK_RECORD", handle, BLOCK_RECORD_TABLE, "AcDbBlockTableRecord", name, flags=None)
            self._pairs(340, f"{layout:X}", 70, 0 if layout or name.startswith("*") else 6, 280, 1, 281, 0)
        self._pairs(0, "ENDTAB", 0, "ENDSEC")

    def _write_blocks(self) -> None:
        self._pairs(0, "SECTION", 2, "BLOCKS")
        spaces = {
            "*Model_Space": (MODEL_SPACE, MODEL_BLOCK, MODEL_ENDBLK),
            "*Paper_Space": (PAPER_SPACE, PAPER_BLOCK, PAPER_ENDBLK),
        }
        for name, (record, begin, end) in {**spaces, **self._block_handles}.items():
            self._pairs(0, "BLOCK", 5, f"{begin:X}", 330, f"{record:X}", 100, "AcDbEntity", 8, "0")
            self._pairs(100, "AcDbBlockBegin", 2, name, 70, int(name.startswith("*D")), 10, "0.0", 20, "0.0", 30, "0.0", 3, name, 1, "")
            if name in self._blocks:
                self._owner = record
                self._blocks[name](self)
            self._pairs(0, "ENDBLK", 5, f"{end:X}", 330, f"{record:X}", 100, "AcDbEntity", 8, "0", 100, "AcDbBlockEnd")
        self._owner = MODEL_SPACE
        self._pairs(0, "ENDSEC")

    def _dictionary(self, handle: int, owner: int, entries: dict[str, int], default: int | None = None) -> None:
        kind = "DICTIONARY" if default is None else "ACDBDICTIONARYWDFLT"
        self._object(kind, handle, owner, "AcDbDictionary")
        self._pairs(281, 1)
        for name, entry in entries.items():
            self._pairs(3, name, 350, f"{entry:X}")
        if default is not None:
            self._pairs(100, "AcDbDictionaryWithDefault", 340, f"{default:X}")

    def _object(self, kind: str, handle: int, owner: int, subclass: str | None = None) -> None:
        self._pairs(0, kind, 5, f"{handle:X}", 330, f"{owner:X}")
        if subclass is not None:
            self._pairs(100, subclass)

    def _write_objects(self) -> None:
        self._pairs(0, "SECTION", 2, "OBJECTS")
        named = {"ACAD_GROUP": GROUP_DICTIONARY, "ACAD_LAYOUT": LAYOUT_DICTIONARY, "ACAD_MLINESTYLE": MLINESTYLE_DICTIONARY,
                 "ACAD_PLOTSTYLENAME": PLOT_STYLE_DICTIONARY}
        self._dictionary(ROOT_DICTIONARY, 0, named)
        self._dictionary(GROUP_DICTIONARY, ROOT_DICTIONARY, {})
        self._dictionary(LAYOUT_DICTIONARY, ROOT_DICTIONARY, {"Model": MODEL_LAYOUT, "Layout1": PAPER_LAYOUT})
        self._dictionary(MLINESTYLE_DICTIONARY, ROOT_DICTIONARY, {"Standard": MLINESTYLE_STANDARD})
        self._dictionary(PLOT_STYLE_DICTIONARY, ROOT_DICTIONARY, {"Normal": PLOT_STYLE_NORMAL}, PLOT_STYLE_NORMAL)
        self._object("ACDBPLACEHOLDER", PLOT_STYLE_NORMAL, PLOT_STYLE_DICTIONARY)
        self._object("MLINESTYLE", MLINESTYLE_STANDARD, MLINESTYLE_DICTIONARY, "AcDbMlineStyle")
        self._pairs(2, "STANDARD", 70, 0, 3, "", 62, 256, 51, "90.0", 52, "90.0", 71, 2)
        self._pairs(49, "0.5", 62, 256, 6, "BYLAYER", 49, "-0.5", 62, 256, 6, "BYLAYER")
        # Plot flags: the model tab plots its model; 688 is the usual set of a fresh paper layout.
        self._layout(MODEL_LAYOUT, "Model", 0, MODEL_SPACE, plot_flags=1712, extents=self._extents)
        self._layout(PAPER_LAYOUT, "Layout1", 1, PAPER_SPACE, plot_flags=688, extents=(0.0, 0.0, 420.0, 297.0))
        self._pairs(0, "ENDSEC")

    def _layout(self, handle: int, name: str, order: int, record: int, plot_flags: int, extents: Sequence[float]) -> None:
        x1, y1, x2, y2 = (number(value) for value in extents)
        self._object("LAYOUT", handle, LAYOUT_DICTIONARY, "AcDbPlotSettings")
        self._pairs(1, "", 2, "none_device", 4, "ISO_A3_(420.00_x_297.00_MM)", 6, "")
        self._pairs(40, "7.5", 41, "20.0", 42, "7.5", 43, "20.0", 44, "420.0", 45, "297.0", 46, "0.0", 47, "0.0")
        self._pairs(48, "0.0", 49, "0.0", 140, "0.0", 141, "0.0", 142, "1.0", 143, "1.0")
        self._pairs(70, plot_flags, 72, 1, 73, 0, 74, 5, 7, "", 75, 16, 76, 0, 77, 2, 78, 300, 147, "1.0", 148, "0.0", 149, "0.0")
        self._pairs(100, "AcDbLayout", 1, name, 70, 1, 71, order, 10, x1, 20, y1, 11, x2, 21, y2)
        self._pairs(12, "0.0", 22, "0.0", 32, "0.0", 14, x1, 24, y1, 34, "0.0", 15, x2, 25, y2, 35, "0.0", 146, "0.0")
        self._pairs(13, "0.0", 23, "0.0", 33, "0.0", 16, "1.0", 26, "0.0", 36, "0.0", 17, "0.0", 27, "1.0", 37, "0.0")
        self._pairs(76, 0, 330, f"{record:X}")
