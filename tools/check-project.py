#!/usr/bin/env python3
"""Holds what the commercial host's build needs to the sources: the list of sources in tolmex.vcxproj, the exports of tolmex.def,
and the names that the plug-in takes from host, MFC and Windows, which stand in Projects/Tolmex/host-names.tsv. A name that is
new there wants a look at the documentation of the real one.

    tools/check-project.py [--write]

Fails with one line for each fault; with --write it writes project and list instead. Status 0 when there is none.
"""

import pathlib
import re
import subprocess
import sys
import tempfile
import xml.etree.ElementTree

ROOTS = ["OrvLib", "Projects/Tolmex"]
INTERFACE = [pathlib.Path("Host/Sdk/include"), pathlib.Path("Host/Sdk/win32")]
PROJECT = pathlib.Path("Projects/Tolmex/tolmex.vcxproj")
EXPORTS = pathlib.Path("Projects/Tolmex/tolmex.def")
NAMES = pathlib.Path("Projects/Tolmex/host-names.tsv")
NAMES_HEAD = ("# What the plug-in's sources take from the host's SDK, MFC and Windows: name, and the header that declares it. Kept by\n"
              "# tools/check-project.py; before a new name goes in, its declaration in the SDK is looked up.\n")
GIVEN_BY_SDK = {"acrxGetApiVersion"}  # the plug-in has one of its own for the embedded host alone


def sources() -> list[str]:
    return sorted(str(path) for root in ROOTS for path in pathlib.Path(root).rglob("*.cpp"))


def project_lines() -> str:
    return "".join('    <ClCompile Include="$(Root)%s" />\n' % source.replace("/", "\\") for source in sources())


def project_with_sources() -> str:
    text = PROJECT.read_text(encoding="utf-8")
    return re.sub(r"(?:    <ClCompile Include=.*\n)+", lambda _: project_lines(), text)


def code_of(path: pathlib.Path) -> str:
    """The words of a source without comments, texts and includes."""
    text = path.read_text(encoding="utf-8")
    text = re.sub(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"', " ", text, flags=re.DOTALL)
    return re.sub(r"^[ \t]*#[ \t]*include[^\n]*", "", text, flags=re.MULTILINE)


def declared() -> dict[str, str]:
    """What the interface's headers declare: functions, types, values, members and macros. Parameters and words of the
    language are none of it."""
    names: dict[str, str] = {}
    patterns = [r"^[ \t]*#[ \t]*define[ \t]+(\w+)", r"\b(?:class|struct|using|enum|ADESK_EXPORT)\s+(\w+)\s*[:{=;]",
                r"\bclass\s+ADESK_EXPORT\s+(\w+)", r"\b(\w+)\s*\([^;{]*?\)\s*(?:const)?\s*(?:noexcept|override)?\s*[;{=]",
                r"\b([A-Za-z]\w+)\s*=\s*[^=;,]+[,;}]", r"^\s*([a-zA-Z]\w+),?\s*$", r"\b(\w+);"]
    for folder in INTERFACE:
        for path in sorted(folder.glob("*.h")):
            code = code_of(path)
            for pattern in patterns:
                for name in re.findall(pattern, code, re.MULTILINE):
                    names.setdefault(name, path.name)
    return names


def names_in_use() -> dict[str, str]:
    """Names of the interface that stand in the plug-in's sources and that nothing of the plug-in declares itself."""
    words: set[str] = set()
    for root in ROOTS:
        for path in pathlib.Path(root).rglob("*"):
            if path.suffix in (".cpp", ".h"):
                words |= set(re.findall(r"[A-Za-z_]\w+", code_of(path)))
    return {name: header for name, header in declared().items() if name in words and name not in LANGUAGE}


# Words of the language and its library, and of parameters, that the interface's headers and the plug-in have in common.
LANGUAGE = set("""angle all atan2 back begin bottom bulge bulges c_str caption code clear data database db document document_ done
empty entity erase fileName filter find first former_ forward front globalName handle hypot id index insert int16_t int32_t lParam
last layer left length localName map max message min mode name next object object_ parent push_back record reserve resize resources
reverse right size start status status_ std step style template_ text text_ top type uint32_t uint64_t uint8_t value wParam wchar_t
window_ auto bool break case catch char class const constexpr continue default delete do double else enum explicit extern
false float for friend if inline int long namespace new noexcept nullptr operator override private protected public return short
signed sizeof static static_cast struct switch template this throw true try typedef union unsigned using virtual void while""".split())


def names_text(names: dict[str, str]) -> str:
    return NAMES_HEAD + "".join(f"{name}\t{header}\n" for name, header in sorted(names.items()))


def check_bundle() -> list[str]:
    """Each command loads the module, stands in the menu and in a tool bar with an icon that there is, and is explained."""
    table = pathlib.Path("Projects/Tolmex/tolmexCommands.cpp").read_text(encoding="utf-8")
    commands = re.findall(r'^    \{L"(TLM_\w+)"', table, re.MULTILINE)
    local = dict(re.findall(r'^    \{L"(TLM_\w+)"[^{}]*\bL"(TLM_\w+)"\}', table, re.MULTILINE))
    faults = [] if len(commands) == 30 else [f"{len(commands)} commands were found in the plug-in's table, not 30"]
    with tempfile.TemporaryDirectory() as folder:
        bundle = pathlib.Path(folder)
        (bundle / "Contents/Support").mkdir(parents=True)
        subprocess.run([sys.executable, "tools/bundle-files.py", "1.0", folder], check=True)
        package = xml.etree.ElementTree.parse(bundle / "PackageContents.xml")
        loading = {command.get("Global"): command.get("Local") for command in package.iter("Command")}
        menu, _, rest = (bundle / "Contents/Support/tolmex.mns").read_bytes().decode("cp1252").partition("***TOOLBARS")
        tools, _, help_texts = rest.partition("***HELPSTRINGS")
    for command in commands:
        places = {"PackageContents.xml": loading.get(command) == local.get(command, command), "the menu": f"]^C^C{command}\r" in menu,
                  "the tool bars": f"]^C^C{command}\r" in tools, "the help texts": f"ID_{command}  [" in help_texts}
        faults += [f"tools/bundle-files.py: {command} is missing in {place}" for place, there in places.items() if not there]
    faults += [f"tools/bundle-files.py: there is no icon {icon}" for icon in re.findall(r'"icons/([^"]+)_16\.bmp"', tools)
               if not pathlib.Path(f"Projects/Tolmex/icons/{icon}.svg").is_file()]
    if menu.count("[->") != menu.count("[<-"):
        faults.append("tools/bundle-files.py: a sub-menu does not end")
    return faults


def check() -> list[str]:
    faults = check_bundle()
    xml.etree.ElementTree.parse(PROJECT)
    if project_with_sources() != PROJECT.read_text(encoding="utf-8"):
        faults.append(f"{PROJECT} lists other sources than there are: tools/check-project.py --write")
    exported = set(re.findall(r"^\s+(\w+)", EXPORTS.read_text(encoding="utf-8").split("EXPORTS")[1], re.MULTILINE))
    marked = {name for root in ROOTS for path in pathlib.Path(root).rglob("*") if path.suffix in (".cpp", ".h")
              for name in re.findall(r"^ORV_EXPORT [\w:]+ (\w+)\(", path.read_text(encoding="utf-8"), re.MULTILINE)}
    for name in sorted(exported ^ (marked | GIVEN_BY_SDK)):
        faults.append(f"{EXPORTS}: {name} is {'not exported by any source' if name in exported else 'missing'}")
    listed = dict(line.split("\t") for line in NAMES.read_text(encoding="utf-8").splitlines() if not line.startswith("#"))
    used = names_in_use()
    faults += [f"{NAMES} lacks {name} of {used[name]}: look its declaration in the SDK up, then --write"
               for name in sorted(set(used) - set(listed))]
    faults += [f"{NAMES}: {name} is used no more: --write" for name in sorted(set(listed) - set(used))]
    return faults


def main() -> int:
    if sys.argv[1:] == ["--write"]:
        PROJECT.write_text(project_with_sources(), encoding="utf-8")
        NAMES.write_text(names_text(names_in_use()), encoding="utf-8")
    elif sys.argv[1:]:
        print(__doc__, file=sys.stderr)
        return 2
    faults = check()
    print("\n".join(faults) or f"{len(sources())} sources, and names as {NAMES} has them")
    return 1 if faults else 0


sys.exit(main())
