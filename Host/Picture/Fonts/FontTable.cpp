#include "Picture/Fonts/FontTable.h"

#include <algorithm>
#include <array>
#include <utility>

namespace host::picture {
namespace {

/// Names in small letters, then families and stroke fonts; all of them between bars.
struct Row {
  std::string_view names, families, strokes;
  bool isBold = false, isItalic = false;
};

/// Heights of capitals, in thousandths of the em, of families whose stand-ins have the same widths: texts take the same
/// room then, though the capitals of the others may be a little lower.
constexpr std::array<std::pair<std::string_view, int>, 6> kCapitals = {std::pair{"Arial", 716},  {"Arial Narrow", 716},
                                                                       {"Times New Roman", 655}, {"Courier New", 571},
                                                                       {"Calibri", 632},         {"Cambria", 667}};

constexpr std::string_view kSans = "Arial|Liberation Sans|Arimo|Nimbus Sans",
                           kSerif = "Times New Roman|Liberation Serif|Tinos|Nimbus Roman",
                           kMono = "Courier New|Liberation Mono|Cousine|Nimbus Mono PS",
                           kNarrow = "Arial Narrow|Liberation Sans Narrow|Nimbus Sans Narrow",
                           kCalibri = "Calibri|Carlito", kCambria = "Cambria|Caladea";

/// Generic families of CSS, of families that are no sans-serifs.
constexpr std::array<std::pair<std::string_view, std::string_view>, 8> kGeneral = {
    std::pair{"Times New Roman", "serif"}, {"Cambria", "serif"},           {"Georgia", "serif"},
    {"Bookman Old Style", "serif"},        {"Palatino Linotype", "serif"}, {"Century Schoolbook", "serif"},
    {"Courier New", "monospace"},          {"Consolas", "monospace"}};

/// Families behind the first have the same widths, or nearly so. The stroke fonts are those of a free CAD program, in
/// its own format; the first ones in their rows come from the same drawings of letters as those they stand for.
constexpr std::array kRows = {
    Row{"arial|arial.ttf|arial unicode ms|arialuni.ttf|helvetica|helvetica.ttf|swiss 721|swiss.ttf|microsoft sans serif"
        "|micross.ttf|ms sans serif|segoe ui|segoeui.ttf|ms shell dlg|ms shell dlg 2",
        kSans, ""},
    Row{"arialbd.ttf|arial black|ariblk.ttf|segoeuib.ttf", kSans, "", true, false},
    Row{"ariali.ttf", kSans, "", false, true},
    Row{"arialbi.ttf", kSans, "", true, true},
    Row{"arial narrow|arialn.ttf", kNarrow, ""},
    Row{"arialnb.ttf", kNarrow, "", true, false},
    Row{"arialni.ttf", kNarrow, "", false, true},
    Row{"arialnbi.ttf", kNarrow, "", true, true},
    Row{"times new roman|times.ttf|times|times roman", kSerif, ""},
    Row{"timesbd.ttf", kSerif, "", true, false},
    Row{"timesi.ttf", kSerif, "", false, true},
    Row{"timesbi.ttf", kSerif, "", true, true},
    Row{"courier new|cour.ttf|courier", kMono, ""},
    Row{"courbd.ttf", kMono, "", true, false},
    Row{"couri.ttf", kMono, "", false, true},
    Row{"courbi.ttf", kMono, "", true, true},
    Row{"calibri|calibri.ttf", kCalibri, ""},
    Row{"calibrib.ttf", kCalibri, "", true, false},
    Row{"calibrii.ttf", kCalibri, "", false, true},
    Row{"cambria|cambria.ttc", kCambria, ""},
    Row{"consolas|consola.ttf", "Consolas|Inconsolata|DejaVu Sans Mono|Liberation Mono", ""},
    Row{"verdana|verdana.ttf", "Verdana|DejaVu Sans", ""},
    Row{"verdanab.ttf", "Verdana|DejaVu Sans", "", true, false},
    Row{"tahoma|tahoma.ttf", "Tahoma|Liberation Sans", ""},
    Row{"tahomabd.ttf", "Tahoma|Liberation Sans", "", true, false},
    Row{"trebuchet ms|trebuc.ttf", "Trebuchet MS|Fira Sans|Liberation Sans", ""},
    Row{"georgia|georgia.ttf", "Georgia|Gelasio|Liberation Serif", ""},
    Row{"century gothic|gothic.ttf", "Century Gothic|URW Gothic", ""},
    Row{"bookman old style|bookos.ttf", "Bookman Old Style|URW Bookman", ""},
    Row{"palatino linotype|pala.ttf", "Palatino Linotype|P052", ""},
    Row{"century schoolbook|censcbk.ttf", "Century Schoolbook|C059", ""},
    // Files of strokes, and the outline fonts that look like them.
    Row{"txt.shx|txt|txt_____.ttf|monotxt.shx|monotxt|isocp.shx|isocp|isocp2.shx|isocp3.shx|isocpeur|isocpeur.ttf"
        "|isoct.shx|isoct2.shx|isoct3.shx|isocteur|isocteur.ttf|iso.shx",
        "", "standard"},
    Row{"isocpeui.ttf|isocteui.ttf", "", "standard", false, true},
    Row{"simplex.shx|simplex|simplex_.ttf", "", "simplex|romans|standard"},
    Row{"romans.shx|romans|romans__.ttf", "", "romans|simplex|standard"},
    Row{"romand.shx|romand|romand__.ttf", "", "romand|romans|standard"},
    Row{"romanc.shx|romanc|romanc__.ttf|complex.shx|complex|complex_.ttf", "", "romanc|romans|standard"},
    Row{"romant.shx|romant|romant__.ttf", "", "romant|romanc|standard"},
    Row{"italic.shx|italic|italic__.ttf|italicc.shx|italicc|italicc_.ttf", "", "italicc|standard", false, false},
    Row{"italict.shx|italict|italict_.ttf", "", "italict|italicc|standard"},
    Row{"scripts.shx|scripts|scripts_.ttf", "", "scripts|standard"},
    Row{"scriptc.shx|scriptc|scriptc_.ttf", "", "scriptc|scripts|standard"},
    Row{"gothice.shx|gothice|gothice_.ttf", "", "gothgbt|standard"},
    Row{"gothicg.shx|gothicg|gothicg_.ttf", "", "gothgrt|standard"},
    Row{"gothici.shx|gothici|gothici_.ttf", "", "gothitt|standard"},
    Row{"greeks.shx|greeks|greeks__.ttf", "", "greeks|standard"},
    Row{"greekc.shx|greekc|greekc__.ttf", "", "greekc|standard"},
    Row{"cyrillic.shx|cyriltlc.shx", "", "cyrillic_ii|standard"},
    Row{"syastro.shx", "", "syastro|standard"},
    Row{"symap.shx", "", "symap|standard"},
    Row{"symath.shx", "", "symath|standard"},
    Row{"symeteo.shx", "", "symeteo|standard"},
    Row{"symusic.shx", "", "symusic|standard"},
};

/// Behind every stroke font, for the letters that it lacks.
const std::array<std::string, 2> kMoreLetters = {"iso", "unicode"};

std::vector<std::string> split(std::string_view text) {
  std::vector<std::string> parts;
  while (!text.empty()) {
    const std::size_t bar = std::min(text.find('|'), text.size());
    parts.emplace_back(text.substr(0, bar));
    text.remove_prefix(std::min(bar + 1, text.size()));
  }
  return parts;
}

}  // namespace

StandIns standInsFor(const std::string& name) {
  for (const Row& row : kRows) {
    const std::vector<std::string> names = split(row.names);
    if (std::ranges::find(names, name) == names.end()) continue;
    StandIns found{split(row.families), split(row.strokes), row.isBold, row.isItalic};
    for (const auto& [family, thousandths] : kCapitals)
      if (!found.families.empty() && found.families.front() == family) found.capitalHeight = thousandths / 1000.0;
    for (const auto& [family, general] : kGeneral)
      if (!found.families.empty() && found.families.front() == family) found.general = general;
    if (!found.strokes.empty()) found.strokes.insert(found.strokes.end(), kMoreLetters.begin(), kMoreLetters.end());
    return found;
  }
  // Other files of strokes look alike; other typefaces are looked for as they are named.
  if (name.ends_with(".shx")) return {{}, {"standard", kMoreLetters[0], kMoreLetters[1]}};
  if (name.ends_with(".ttf") || name.ends_with(".ttc") || name.ends_with(".otf"))
    return {{name.substr(0, name.size() - 4)}, {}};
  return {{name}, {}};
}

}  // namespace host::picture
