#!/usr/bin/env python3
"""Runs the program for Windows under wine beside the one for Linux and compares what they write and say.

Usage: compare-windows.py LINUX_PROGRAM WINDOWS_PROGRAM OUT [--drawings DIR] [--buildings N] [--pictures]
DIR is the folder of real drawings beside the checkout when it is not given, or TOLMEX_DRAWINGS.
Drawings and SVG have to be the same bytes, PNG pictures (--pictures) may differ in a few pixels.
"""
import argparse
import json
import os
import pathlib
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import time
import zlib

ROOT = pathlib.Path(__file__).resolve().parent.parent
ELEMENTS = "ASFALTTI NURMIKKO SORA METSA PENSAS PIHALAATTA POLKU AITA_LAUTA AITA_KIVI".split()
MOST_PIXELS = 20
# Outlines, and the strokes that Linux finds where they are installed.
FONTS = [font for folder in ("fonts/truetype/dejavu", "fonts/truetype/liberation", "librecad/fonts")
         for font in sorted(pathlib.Path("/usr/share", folder).glob("*.[tl][tf]f"))]

faults: list[str] = []


def fault(case: str, text: str) -> None:
    faults.append(f"{case}: {text}")
    print(f"  {case}: {text}")


class System:
    def __init__(self, name: str, command: list[str], out: pathlib.Path, fonts: str):
        self.name, self.command, self.out = name, command, out
        self.environment = {**os.environ, "FONTCONFIG_FILE": fonts}
        self.seconds = 0.0

    def run(self, folder: str, arguments: list, **options) -> subprocess.CompletedProcess:
        place = self.out / self.name / folder
        place.mkdir(parents=True, exist_ok=True)
        begin = time.monotonic()
        defaults = {"env": self.environment, "stdout": subprocess.PIPE, "stderr": subprocess.PIPE}
        done = subprocess.run([*self.command, *map(str, arguments)], cwd=place, timeout=300,
                              stdin=None if "input" in options else subprocess.DEVNULL, **{**defaults, **options})
        self.seconds += time.monotonic() - begin
        return done

    def file(self, folder: str, name: str) -> bytes | None:
        path = self.out / self.name / folder / name
        return path.read_bytes() if path.exists() else None


def spoken(text: bytes) -> str:
    """What was printed, with folders as Linux writes them."""
    said = text.decode("utf-8", "backslashreplace").replace("\\", "/")
    return re.sub(r"^wine: .*\n|\b[Zz]:(?=/)", "", said, flags=re.MULTILINE)


def pixels_of(png: bytes) -> tuple[int, list[bytes]]:
    """Bytes of a pixel, and the rows."""
    at, data, head = 8, b"", b""
    while at < len(png):
        size, kind = struct.unpack(">I4s", png[at:at + 8])
        chunk = png[at + 8:at + 8 + size]
        head = chunk if kind == b"IHDR" else head
        data += chunk if kind == b"IDAT" else b""
        at += size + 12
    width, height, depth, colour = struct.unpack(">IIBB", head[:10])
    step = max(1, {0: 1, 2: 3, 3: 1, 4: 2, 6: 4}[colour] * depth // 8)
    line = (width * {0: 1, 2: 3, 3: 1, 4: 2, 6: 4}[colour] * depth + 7) // 8
    raw, rows, last = zlib.decompress(data), [], bytearray(line)
    for y in range(height):
        kind, row = raw[y * (line + 1)], bytearray(raw[y * (line + 1) + 1:(y + 1) * (line + 1)])
        for x in range(line):
            a = row[x - step] if x >= step else 0
            b, c = last[x], last[x - step] if x >= step else 0
            if kind == 4:
                p = a + b - c
                near = min((abs(p - a), 0, a), (abs(p - b), 1, b), (abs(p - c), 2, c))[2]
            row[x] = (row[x] + [0, a, b, (a + b) // 2, near if kind == 4 else 0][kind]) & 255
        rows.append(bytes(row))
        last = row
    return step, rows


def differing_pixels(one: bytes, two: bytes) -> int:
    (step, a), (other, b) = pixels_of(one), pixels_of(two)
    if step != other or len(a) != len(b) or len(a[0]) != len(b[0]):
        return 10 ** 9
    return sum(x[i:i + step] != y[i:i + step] for x, y in zip(a, b) if x != y for i in range(0, len(x), step))


def uncompressed(pdf: bytes) -> list[bytes]:
    """The streams of a page, which only a program with a library for it compresses."""
    streams = re.findall(rb"<<([^\n]*?)/Length \d+[^\n]*>>\s*stream\n(.*?)\nendstream", pdf, flags=re.DOTALL)
    return [zlib.decompress(data) if b"FlateDecode" in head else data for head, data in streams]


def compare(systems: list[System], case: str, arguments: list, files: list[str], says: bool = True, **options) -> None:
    linux, windows = (system.run(case, arguments, **options) for system in systems)
    if linux.returncode != windows.returncode:
        fault(case, f"exit status {windows.returncode}, on Linux {linux.returncode}: {windows.stderr[-300:]!r}")
    for kind, one, two in (("output", linux.stdout, windows.stdout), ("errors", linux.stderr, windows.stderr)):
        if says and spoken(one) != spoken(two):
            lines = [(a, b) for a, b in zip(spoken(one).split("\n"), spoken(two).split("\n")) if a != b]
            fault(case, f"{kind} differs: {lines[0] if lines else (len(one), len(two))}")
    for name in files:
        one, two = (system.file(case, name) for system in systems)
        if one is None or two is None:
            if one is not two:
                fault(case, f"{name} is there on one system only")
        elif name.endswith(".png"):
            if (count := differing_pixels(one, two)) > MOST_PIXELS:
                fault(case, f"{name}: {count} pixels differ")
            elif count:
                print(f"  {case}: {name}: {count} pixels differ")
        elif name.endswith(".pdf") and uncompressed(one) and uncompressed(one) == uncompressed(two):
            continue
        elif one != two:
            lines = [i for i, (a, b) in enumerate(zip(one.split(b"\n"), two.split(b"\n")), 1) if a != b]
            fault(case, f"{name} differs in {len(lines)} lines, the first is {lines[0] if lines else 'behind the end'}")


def windows_path(path: pathlib.Path) -> str:
    return "Z:" + str(path).replace("/", "\\")


def make_program(windows: pathlib.Path, folder: pathlib.Path) -> pathlib.Path:
    """The program as a user has it, in a folder with Finnish letters; beside it the fonts that are used on Linux."""
    shutil.copytree(windows.parent, folder, copy_function=os.link, ignore=shutil.ignore_patterns("test_*", "dwg-reader"))
    for font in FONTS:
        if not (folder / "fonts" / font.name).exists():
            shutil.copyfile(font, folder / "fonts" / font.name)
    return folder / windows.name


def make_font_configurations(out: pathlib.Path) -> list[str]:
    """One folder of fonts for both systems, each with the file that names it there. Wine reads the one for Windows too,
    on the side of Linux: so it has a name for both, and folders that do not begin with a slash are told to be meant so."""
    folder = out / "Äidin fontit"
    folder.mkdir()
    for font in FONTS:
        shutil.copyfile(font, folder / font.name)
    named = []
    for name, path in (("linux", str), ("windows", windows_path)):
        file = out / f"{name} ö.conf"
        file.write_text(f'<fontconfig><dir prefix="cwd">{path(folder)}</dir><cachedir>{path(out / name / "cache")}</cachedir>'
                        "</fontconfig>\n", encoding="utf-8")
        named.append(str(file))
    return named


def make_text_drawing(folder: pathlib.Path) -> None:
    """Texts in fonts that drawings name: outlines, strokes, letters that join, run from the right, are nowhere."""
    import ezdxf

    drawing = ezdxf.new("R2010")
    for number, font in enumerate(("arial.ttf", "arialbd.ttf", "timesi.ttf", "cour.ttf", "calibri.ttf", "DejaVu Serif.ttf",
                                   "txt.shx", "romans.shx", "isocp.shx", "gothice.shx", "own.shx", "tuntematon ä.ttf")):
        drawing.styles.add(f"S{number}", font=font)
        drawing.modelspace().add_text("Äyräspuisto 12 m² – Åbo Ⓐ", height=2, dxfattribs={
            "style": f"S{number}", "insert": (0, -4 * number), "oblique": 5 * (number % 3)})
    for number, text in enumerate(("{\\fTimes New Roman|b1|i0;Kerrosala \\fCourier New|b0|i1;1 200 k-m²}",
                                   "שלום 123 (Koivukatu) سلام عليكم", "a\u0301 o\u0308 漢字 Ѳ \u2316")):
        drawing.modelspace().add_mtext(text, dxfattribs={"style": f"S{number}", "char_height": 2, "insert": (60, -8 * number)})
    drawing.saveas(folder / "texts.dxf")


def compare_fonts(systems: list["System"], out: pathlib.Path, pictures: list[str]) -> None:
    """Texts with one folder of fonts, and with what the program for Windows finds by itself."""
    make_text_drawing(out)
    for picture in [*pictures, "out.pdf", "out.html"]:
        compare(systems, "texts", ["picture", out / "texts.dxf", picture], [picture])
    windows = systems[1]
    bare = {name: value for name, value in windows.environment.items() if not name.startswith("FONTCONFIG")}
    configured, alone = (windows.run("alone", ["picture", out / "texts.dxf", "out.svg"], env=environment)
                         for environment in (windows.environment, bare))
    if alone.returncode or alone.stderr != configured.stderr or windows.file("alone", "out.svg") != windows.file("texts", "out.svg"):
        fault("alone", f"with the fonts beside the program another picture, or said: {alone.stderr!r}")


def real_drawings(asked: list[pathlib.Path]) -> list[pathlib.Path]:
    given = os.environ.get("TOLMEX_DRAWINGS", ROOT / "../shared/drawings")
    folders = asked or [pathlib.Path(given)] * bool(given)
    return [drawing for folder in folders for drawing in sorted(folder.glob("*.dxf"))]


def make_image_drawing(folder: pathlib.Path) -> None:
    """A drawing that shows pictures: one beside it, one by the path of another machine."""
    import ezdxf

    drawing = ezdxf.new("R2010")
    for number, (name, kept) in enumerate((("kartta ä.png", "kartta ä.png"), ("C:\\Kartat\\pohja.png", "pohja.png"))):
        shutil.copyfile(ROOT / "docs/pictures/kortteli.png", folder / kept)
        width, height = struct.unpack(">II", (folder / kept).read_bytes()[16:24])
        image = drawing.add_image_def(name, size_in_pixel=(width, height))
        drawing.modelspace().add_image(image, insert=(number * 120, 0), size_in_units=(100, 100 * height / width),
                                       rotation=10 * number)
    drawing.saveas(folder / "images.dxf")


def compare_forms(windows: "System", example: pathlib.Path) -> None:
    """The forms in which only Windows names files; \\\\SERVER\\SHARE lies in a folder of wine's."""
    share = pathlib.Path(os.environ["WINEPREFIX"]) / "dosdevices/unc/palvelin/jako"
    share.parent.mkdir(parents=True, exist_ok=True)
    share.unlink(missing_ok=True)
    place = windows.out / windows.name / "forms"
    place.mkdir(parents=True)
    share.symlink_to(place)
    shutil.copyfile(example, place / "in.dxf")
    drive = windows_path(place)
    for root in ("\\\\?\\" + drive, drive, "\\\\palvelin\\jako", "\\\\?\\UNC\\palvelin\\jako", "//palvelin/jako"):
        slash = "/" if "/" in root else "\\"
        (place / "out.dxf").unlink(missing_ok=True)
        done = windows.run("forms", ["run", f"{root}{slash}in.dxf", "--command", "REGEN", "--out", f"{root}{slash}out.dxf"])
        if done.returncode or not (place / "out.dxf").exists():
            fault("forms", f"{root}: {done.stderr!r}")


def compare_held(windows: "System", wine: str, example: pathlib.Path) -> None:
    """A file that another program has open without sharing stays, and the sentence says so."""
    place = windows.out / windows.name / "held"
    place.mkdir(parents=True)
    shutil.copyfile(example, place / "in.dxf")
    (place / "out.dxf").write_bytes(b"old")
    # The command processor shares files that it writes for reading only.
    with subprocess.Popen([wine, "cmd", "/c", "pause >> out.dxf"], cwd=place, stdin=subprocess.PIPE,
                          stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) as holder:
        before = b""
        for _ in range(100):
            time.sleep(0.1)
            if len(before := (place / "out.dxf").read_bytes()) > 3:
                break
        # Wine's desktop, which the first program with windows starts, lives as long as the holder does, and would keep
        # the end of a pipe open.
        with tempfile.TemporaryFile() as said:
            done = windows.run("held", ["run", "in.dxf", "--command", "REGEN", "--out", "out.dxf"], stdout=said, stderr=said)
            said.seek(0)
            done.stderr = said.read()
        after = (place / "out.dxf").read_bytes()
        holder.communicate(b"\n")
    if done.returncode == 0 or b"another program has it open" not in done.stderr or before != after:
        fault("held", f"status {done.returncode}, {done.stderr!r}, {len(after)} bytes")
    if left := [path.name for path in place.iterdir() if path.name not in ("in.dxf", "out.dxf")]:
        fault("held", f"left behind: {left}")


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("linux", type=pathlib.Path)
    parser.add_argument("windows", type=pathlib.Path)
    parser.add_argument("out", type=pathlib.Path)
    parser.add_argument("--drawings", type=pathlib.Path, action="append", default=[])
    parser.add_argument("--buildings", type=int, default=10000)
    parser.add_argument("--pictures", action="store_true")
    asked = parser.parse_args()
    out = asked.out.resolve()
    shutil.rmtree(out, ignore_errors=True)
    out.mkdir(parents=True)
    wine = os.environ.get("WINELOADER") or shutil.which("wine64") or shutil.which("wine")
    fonts = make_font_configurations(out)
    systems = [System("linux", [str(asked.linux.resolve())], out, fonts[0]),
               System("windows", [wine, str(make_program(asked.windows.resolve(), out / "Käyttäjä Äö"))], out, fonts[1])]
    windows = systems[1]
    examples, guide = ROOT / "examples", ROOT / "docs/guide"
    made = ["out.dxf", "out.svg"] + (["out.png"] if asked.pictures else [])
    outputs = ["--out", "out.dxf", "--picture", "out.svg"] + (["--picture", "out.png"] if asked.pictures else [])

    for folder, name in ((examples, "kortteli"), (guide, "tontti")):
        compare(systems, name, ["run", folder / f"{name}.dxf", "--script", folder / f"{name}.scr", "--support", folder,
                                *outputs], made)
    drawings = [examples / "kortteli.dxf", guide / "tontti.dxf", *real_drawings(asked.drawings)]
    nine = [word for name in ELEMENTS for word in ("--command", f"TLM_MUOK_{name}", "--command", "ALL", "--command", "")]
    for drawing in drawings:
        compare(systems, f"nine {drawing.name}", ["run", drawing, *nine, *outputs], made)
        compare(systems, f"picture {drawing.name}", ["picture", drawing, "out.svg"], ["out.svg"])
    compare(systems, "info", ["info", "--json", "--jobs", "2", *drawings], [])

    plan = out / "plan.dxf"
    subprocess.run([sys.executable, ROOT / "Benchmarks/generate/make_plan.py", "--records", str(asked.buildings), plan], check=True)
    compare(systems, "shadows", ["run", plan, "--command", "TLM_VARJO_PAIVITA", "--out", "out.dxf"], ["out.dxf"])

    sheet = ["--sheet", "A3-kaava", "--field", "OTSIKKO=Äyräspuisto"]
    compare(systems, "sheet", ["picture", examples / "kortteli.dxf", "out.svg", *sheet], ["out.svg"])
    shutil.copyfile(ROOT / "Programs/tolmex/sheets/A3-kaava.dxf", out / "pieni sivu ä.dxf")
    compare(systems, "sheet by name", ["picture", examples / "kortteli.dxf", "out.svg", "--sheet", out / "pieni sivu ä",
                                       *sheet[2:]], ["out.svg"])
    make_image_drawing(out)
    pictures = ["out.svg"] + ["out.png"] * asked.pictures
    for picture in pictures:
        compare(systems, "images", ["picture", out / "images.dxf", picture], [picture])
    compare_fonts(systems, out, pictures)

    # ---- streams, jobs, names, line ends: what the systems do differently underneath ----
    example = examples / "kortteli.dxf"
    content, script = example.read_bytes(), "TLM_MUOK_SORA\nALL\n\nTLM_VARJO_PAIVITA\n"
    piped = ["run", "-", "--command", "TLM_MUOK_SORA", "--command", "ALL", "--command", "", "--quiet"]
    compare(systems, "piped", [*piped, "--out", "-"], [], input=content)
    compare(systems, "piped to a file", [*piped, "--out", "out.dxf"], ["out.dxf"], input=content)
    compare(systems, "script by a pipe", ["run", example, "--script", "-", "--out", "out.dxf"], ["out.dxf"],
            input=script.encode())
    several = ["run", example, guide / "tontti.dxf", "--out-dir", "made", "--jobs", "2"]
    jobs = ["made/kortteli.dxf", "made/tontti.dxf"]
    compare(systems, "jobs", [*several, "--command", "TLM_MUOK_SORA", "--command", "ALL", "--command", ""], jobs)
    compare(systems, "jobs with a script by a pipe", [*several, "--script", "-"], jobs, input=script.encode())
    (out / "regen.scr").write_text("REGEN\n")
    report = ["--report", "report.jsonl", "--script", out / "regen.scr"]
    for results in (["done", "done"], ["up to date", "done"]):
        compare(systems, "resumed", [*several, *report, "--resume"], jobs)
        for system in systems:
            lines = (system.file("resumed", "report.jsonl") or b"").splitlines()
            if [json.loads(line)["result"] for line in lines] != results:
                fault("resumed", f"{system.name}: {lines}")
            (out / system.name / "resumed/made/tontti.dxf").unlink(missing_ok=True)
    compare(systems, "jobs that fail", [*several, "--command", "NO_SUCH_COMMAND"], jobs)
    compare(systems, "shell", ["shell", example, "--out", "out.dxf"], ["out.dxf"],
            input=b"TLM_MUOK_SORA\r\nALL\r\n\r\nNO_SUCH\r\nU\r\n")
    for name, end in (("unix.scr", "\n"), ("dos.scr", "\r\n"), ("mac.scr", "\r")):
        for system in systems:
            (out / system.name / "line ends").mkdir(exist_ok=True)
            (out / system.name / "line ends" / name).write_bytes(script.replace("\n", end).encode())
        compare(systems, "line ends", ["run", example, "--script", name, "--out", f"{name}.dxf"], [f"{name}.dxf"])
    for name in ("Ääkköset ja välit/öylätti 10 % & 'a'.dxf", "/".join("pitkä polku " * 3 + str(i) for i in range(8)) + "/o.dxf"):
        for system in systems:
            folder = out / system.name / "names" / pathlib.PurePath(name).parent
            folder.mkdir(parents=True, exist_ok=True)
            (folder / "in.dxf").write_bytes(content)
        compare(systems, "names", ["run", pathlib.PurePath(name).with_name("in.dxf"), "--command", "TLM_MUOK_SORA",
                                   "--command", "ALL", "--command", "", "--out", name], [name])
    compare(systems, "typed names", ["run", example, "--command", "SAVEAS", "--command", "Ääni ö.dxf",
                                     "--command", "PICTURE", "--command", "kuva ä.svg"], ["Ääni ö.dxf", "kuva ä.svg"], says=False)
    for arguments in (["--version"], ["--help"], ["run", "no.dxf"], ["picture", example, "x.txt"], ["nonsense"],
                      ["run", example, "--out", "no folder/x.dxf"], ["run", example, "--script", "no.scr"],
                      ["run", examples, "--out", "x.dxf"]):
        compare(systems, "sentences", arguments, [])
    compare_forms(windows, example)
    compare_held(windows, wine, example)

    print(f"{len(faults)} differences; seconds on Linux {systems[0].seconds:.0f}, under wine {windows.seconds:.0f}")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
