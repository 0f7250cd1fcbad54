#!/usr/bin/env python3
"""Makes Host/Text/code-pages.bin from the C library's iconv: the code pages of drawings as tables.

With tables of its own the host reads and writes the same bytes on every system; the systems' tables differ in a few
hundred characters. The file is kept in the repository. --check compares it with what iconv says here.

The file: for each page 16 bytes of its name, then little-endian 16-bit numbers: how many segments follow, and the
segments. A segment is the first code, a count and the characters (U+0000: none) of that many codes in a row; with the
highest bit of the count set only the first character, and each is one more than the last. Codes are bytes or pairs of
lead and trail; of characters that stand twice in a page, segments behind one of count 0 name the code that is written.
"""
import ctypes
import pathlib
import struct
import sys

FILE = pathlib.Path(__file__).resolve().parent.parent / "Host/Text/code-pages.bin"
PAGES = (["MACINTOSH"] + [f"ISO-8859-{n}" for n in range(1, 10)] +
         [f"CP{n}" for n in (437, 850, 852, 855, 857, 860, 861, 862, 863, 864, 865, 866, 869, 874, 932, 936, 949, 950,
                             1250, 1251, 1252, 1253, 1254, 1255, 1256, 1257, 1258, 1361)])
SEQUENCE = 0x8000

libc = ctypes.CDLL(None)
libc.iconv_open.restype = ctypes.c_void_p
libc.iconv.restype = ctypes.c_size_t
libc.iconv.argtypes = [ctypes.c_void_p] + [ctypes.c_void_p] * 4
FAILED = ctypes.c_size_t(-1).value


class Converter:
    def __init__(self, to: str, origin: str):
        self.descriptor = libc.iconv_open(to.encode(), origin.encode())
        if ctypes.c_size_t(self.descriptor).value == FAILED:
            raise SystemExit(f"iconv does not know {to} or {origin}")
        self.out = ctypes.create_string_buffer(16)

    def convert(self, data: bytes) -> bytes:
        """All of the data on its own; nothing when any of it has no meaning."""
        source = ctypes.create_string_buffer(data, len(data))
        begin, left = ctypes.c_void_p(ctypes.addressof(source)), ctypes.c_size_t(len(data))
        end, room = ctypes.c_void_p(ctypes.addressof(self.out)), ctypes.c_size_t(16)
        libc.iconv(self.descriptor, None, None, None, None)
        if libc.iconv(self.descriptor, ctypes.byref(begin), ctypes.byref(left), ctypes.byref(end),
                      ctypes.byref(room)) == FAILED:
            return b""
        # Vietnamese and Hebrew pages hold a letter back in case an accent follows.
        if libc.iconv(self.descriptor, None, None, ctypes.byref(end), ctypes.byref(room)) == FAILED:
            return b""
        return self.out.raw[:16 - room.value]


def characters_of(page: str) -> tuple[dict[int, int], dict[int, int]]:
    """Characters by code, and of those that stand twice the code that the encoder writes."""
    decoder, encoder = Converter("UTF-16BE", page), Converter(page, "UTF-16BE")

    def decoded(code: bytes) -> int:
        wide = decoder.convert(code)
        return wide[0] << 8 | wide[1] if len(wide) == 2 else 0

    # ASCII is ASCII in every page: drawings' own syntax needs the backslash that some tables show as a currency sign.
    singles = {byte: byte for byte in range(1, 0x80)}
    pairs: dict[int, int] = {}
    for lead in range(0x80, 0x100):
        if character := decoded(bytes([lead])):
            singles[lead] = character
            continue
        for trail in range(0x30, 0x100):
            if character := decoded(bytes([lead, trail])):
                pairs[lead << 8 | trail] = character
    if not pairs:
        # Bytes without a meaning are kept as control characters, as Windows does, so that they survive.
        for byte in range(0x80, 0xA0):
            singles.setdefault(byte, byte)
    written = {character: code for code, character in sorted(singles.items(), reverse=True)}
    customary: dict[int, int] = {}
    for code, character in sorted(pairs.items()):
        if character not in written:
            written[character] = code
            continue
        # Some characters stand twice in a page; the encoder knows which place is the customary one.
        out = encoder.convert(struct.pack(">H", character))
        if len(out) == 2 and out[0] >= 0x80:
            customary[character] = out[0] << 8 | out[1]
    return {**singles, **pairs}, customary


def segments(by_code: dict[int, int]) -> list[bytes]:
    codes = sorted(by_code)
    made: list[bytes] = []
    plain: list[int] = []

    def flush() -> None:
        if plain:
            made.append(struct.pack(f"<HH{len(plain)}H", plain[0], len(plain), *(by_code[c] for c in plain)))
            plain.clear()

    at = 0
    while at < len(codes):
        end = at + 1
        while end < len(codes) and codes[end] == codes[end - 1] + 1 and by_code[codes[end]] == by_code[codes[end - 1]] + 1:
            end += 1
        if end - at >= 4:
            flush()
            made.append(struct.pack("<HHH", codes[at], SEQUENCE | (end - at), by_code[codes[at]]))
        else:
            for code in codes[at:end]:
                if plain and code != plain[-1] + 1:
                    flush()
                plain.append(code)
        at = end
    flush()
    return made


def table() -> bytes:
    out = b""
    for page in PAGES:
        by_code, customary = characters_of(page)
        parts = segments(by_code)
        if customary:
            parts.append(struct.pack("<HH", 0, 0))
            parts += [struct.pack("<HHH", code, 1, character) for character, code in sorted(customary.items())]
        out += page.encode().ljust(16, b"\0") + struct.pack("<H", len(parts)) + b"".join(parts)
    return out


def main() -> int:
    made = table()
    if "--check" in sys.argv[1:]:
        if FILE.read_bytes() != made:
            print(f"{FILE.name} is not what iconv says here")
            return 1
        print(f"{FILE.name}: {len(PAGES)} pages, {len(made)} bytes, as iconv has them")
        return 0
    FILE.write_bytes(made)
    return 0


if __name__ == "__main__":
    sys.exit(main())
