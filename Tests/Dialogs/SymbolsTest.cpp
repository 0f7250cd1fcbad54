// Symbols: what is listed, shown and inserted.
#include <sys/stat.h>

#include <cstdint>

#include "Illustration/Plan.h"
#include "Places.h"
#include "Preview/FilePreview.h"
#include "fileapi.h"

namespace {

namespace fs = std::filesystem;
using namespace tests;

const fs::path kExamples = fs::path(kSourceDir) / "examples" / "symbols";
const fs::path kTree = kExamples / "lehtipuu_2vt.dwg";

class Symbols : public Plan {
 protected:
  Symbols() : symbols_(folder_ / "support" / "symbolit") { fs::create_directories(symbols_); }

  fs::path symbol(const std::string& name, const fs::path& like = kTree) const {
    fs::copy_file(like, symbols_ / name, fs::copy_options::overwrite_existing);
    return symbols_ / name;
  }
  void pathFile(const std::string& text) const { std::ofstream(folder_ / "support" / "orvpath.cfg") << text; }
  /// A script that opens the dialog on the symbols.
  static std::string opened(const std::string& actions) { return "TLM_LIS_SYMBOLI\n30255\nsymbolit\n" + actions; }
  std::vector<std::string> lists() const {
    std::vector<std::string> found;
    std::stringstream lines(transcript_);
    for (std::string line; std::getline(lines, line);) {
      if (line.starts_with("  30239 list ")) found.push_back(line.substr(13));
    }
    return found;
  }
  std::size_t entitiesOf(const wchar_t* block) {
    const auto* const contents = drawing().findBlock(block);
    return contents != nullptr ? drawing().drawOrder(*contents).size() : 0;
  }

  fs::path symbols_;
};

TEST_F(Symbols, VariantsAreListed) {
  for (const char* const name : {"puu_0.dwg", "puu_1v.dwg", "KIVI_1V.DWG", "kivi_1vt.dwg"}) symbol(name);
  fs::create_directory(symbols_ / "kansio_0.dwg");
  std::ofstream(symbols_ / "lue_0.txt");
  run(opened(
      "LIST\n30263\n30259 on\nLIST\n30260 on\nLIST\n30259 off\nLIST\n30265\nLIST\n30267\n30260 off\nLIST\nSulje\n"));
  EXPECT_EQ(lists(), (std::vector<std::string>{"of \"puu\"", "of \"KIVI\", \"puu\"", "of \"kivi\"", "empty", "empty",
                                               "of \"puu\""}))
      << transcript_;
}

TEST_F(Symbols, EveryPointGetsAReferenceUntilEnterOrEsc) {
  symbol("puu_2v.dwg");
  symbol("puu_2.dwg", kExamples / "lehtipuu_2.dwg");
  run(
      opened("30264\n30259 on\n30239 puu\nLisää\n1,2\n@10,0\n30,2,5\n\nLIST\n30259 off\n30239 puu\ndouble-click 30239\n"
             "50,60\n^C\n"));
  const auto references = living(DxfType::Insert);
  ASSERT_EQ(references.size(), 4U) << transcript_;
  for (const Slot* const reference : references) EXPECT_EQ(layer(*reference), L"puu_2");
  EXPECT_EQ(value(*references[1], 2), "puu_2v.dwg");
  EXPECT_EQ(std::stod(value(*references[1], 10)), 11);
  EXPECT_EQ(std::stod(value(*references[2], 30)), 5);
  EXPECT_EQ(value(*references[3], 2), "puu_2.dwg");
  EXPECT_EQ(layerColor(L"puu_2"), 7);
  EXPECT_EQ(entitiesOf(L"puu_2v.dwg"), 12U);
  EXPECT_TRUE(said("30239 list \"puu\" of \"puu\"")) << transcript_;  // the dialog came back with its choice
  EXPECT_TRUE(said("Anna uusi insertointipiste [Esc - lopetus / Enter - paluu]:"));
  // One step of undo takes all back.
  run("U\n");
  EXPECT_EQ(living(DxfType::Insert).size(), 0U);
}

TEST_F(Symbols, NoPointAtAllLeavesTheBlockOnly) {
  symbol("puu_0.dwg");
  for (const char* const answer : {"\nSulje\n", "^C\n"}) {
    run(opened(std::string("30239 puu\nLisää\n") + answer));
    EXPECT_EQ(living(DxfType::Insert).size(), 0U);
    EXPECT_EQ(entitiesOf(L"puu_0.dwg"), 12U);
  }
  expectFailure(opened("30239 puu\nLisää\n"), "insertointipiste");
}

TEST_F(Symbols, ChangedFileRedefinesTheBlock) {
  symbol("puu_0.dwg");
  run(opened("30239 puu\nLisää\n0,0\n^C\n"));
  const Slot* const record = drawing().findRecord(DxfType::BlockRecord, L"puu_0.dwg");
  const std::size_t references = living(DxfType::Insert).size();
  symbol("puu_0.dwg", kExamples / "penkki_0.dwg");
  run(opened("30239 puu\nLisää\n5,0\n\n30239 puu\nLisää\n6,0\n^C\n"));
  EXPECT_EQ(drawing().findRecord(DxfType::BlockRecord, L"puu_0.dwg"), record);
  EXPECT_EQ(entitiesOf(L"puu_0.dwg"), 4U);
  EXPECT_EQ(living(DxfType::Insert).size(), references + 2);
}

TEST_F(Symbols, OnlyWhatCanBeShownCanBeInserted) {
  symbol("hyva_0.dwg");
  const std::string whole = fileText(kTree);
  std::ofstream(symbols_ / "katkennut_0.dwg") << whole.substr(0, whole.size() / 3);
  std::ofstream(symbols_ / "roskaa_0.dwg") << std::string(5000, '\x17');
  std::ofstream(symbols_ / "vanha_0.dwg") << "AC1032" + std::string(300, '\xFF');
  std::ofstream(symbols_ / "tyhja_0.dwg");
  fs::create_symlink("ei ole", symbols_ / "puuttuu_0.dwg");
  ASSERT_EQ(::mkfifo((symbols_ / "putki_0.dwg").c_str(), 0600), 0);
  run(opened("LIST\n30239 roskaa\nLIST\ndouble-click 30239\n30239 hyva\nLIST\n30239 puuttuu\nLIST\nSulje\n"));
  std::vector<bool> disabled;
  for (std::size_t at = 0; (at = transcript_.find("30254 button \"Lisää\"", at)) != std::string::npos; ++at)
    disabled.push_back(transcript_.compare(at, 32, "30254 button \"Lisää\", disabled") == 0);
  EXPECT_EQ(disabled, (std::vector<bool>{true, true, false, true})) << transcript_;
  for (const char* const name : {"katkennut", "roskaa", "vanha", "tyhja", "puuttuu", "putki"}) {
    expectFailure(opened(std::string("30239 ") + name + "\nLisää\n"), "control 30254 is disabled");
  }
  run(opened("30239 hyva\nLisää\n0,0\n^C\n"));
  EXPECT_EQ(living(DxfType::Insert).size(), 1U);
  // A file that breaks after it was shown: nothing happens, the dialog stays.
  const fs::path file = symbols_ / "hyva_0.dwg";
  const auto changed = fs::last_write_time(file);
  run(opened("30239 hyva\nSulje\n"));
  std::ofstream(file) << std::string(whole.size(), ' ');
  fs::last_write_time(file, changed);
  fs::resize_file(file, fs::file_size(kTree));
  fs::last_write_time(file, changed);
  run(opened("30239 hyva\nLisää\nSulje\n"));
  EXPECT_EQ(living(DxfType::Insert).size(), 1U);
}

TEST_F(Symbols, DirectoryIsRememberedBySuljeAndByEscAtAPoint) {
  symbol("puu_0.dwg");
  const std::string shown = "30262 edit \"" + symbols_.string() + "\"";
  const std::string look = "TLM_LIS_SYMBOLI\nLIST\n^C\n";
  run(opened("^C\n") + look);
  EXPECT_FALSE(said(shown)) << transcript_;
  run(opened("30239 puu\nLisää\n^C\n") + look);
  EXPECT_TRUE(said(shown)) << transcript_;
  // The remembered one is before the path file's; another drawing has its own.
  fs::create_directories(folder_ / "muut" / "tmsym");
  pathFile("KAAVA " + (folder_ / "muut").string() + "/\n");
  run(look);
  EXPECT_TRUE(said(shown));
  reopen();
  run("TLM_LIS_SYMBOLI\nLIST\nSulje\n");
  std::string windows = (folder_ / "muut" / "tmsym").string();
  std::replace(windows.begin(), windows.end(), '/', '\\');
  EXPECT_TRUE(said("30262 edit \"" + windows + "\"")) << transcript_;
}

TEST_F(Symbols, PathFileLeadsToTheSymbols) {
  fs::create_directories(folder_ / "kaava" / "tmsym");
  fs::copy_file(kTree, folder_ / "kaava" / "tmsym" / "puu_0.dwg");
  pathFile("MUU x\nkaava  " + (folder_ / "kaava").string() + "/\n");
  run("TLM_LIS_SYMBOLI\nLIST\n30239 puu\nLisää\n3,4\n\nSulje\n");
  EXPECT_EQ(lists(), (std::vector<std::string>{"of \"puu\""})) << transcript_;
  EXPECT_EQ(living(DxfType::Insert).size(), 1U);
}

TEST_F(Symbols, NoDirectoryIsAnEmptyList) {
  for (const char* const text : {"", "KAAVA\n", "KAAVA Q:/kaavat/\n", "KAAVA /ei/ole/\n"}) {
    pathFile(text);
    run("TLM_LIS_SYMBOLI\nLIST\n^C\n");
    EXPECT_EQ(lists(), (std::vector<std::string>{"empty"})) << text << transcript_;
  }
  fs::remove(folder_ / "support" / "orvpath.cfg");
  run("TLM_LIS_SYMBOLI\nLIST\n30255\n\n30255\n^C\nLIST\nSulje\n");  // browsing left without a folder
  EXPECT_EQ(lists(), (std::vector<std::string>{"empty", "empty"}));
  expectFailure("TLM_LIS_SYMBOLI\n30255\nei_ole\n", "ei_ole is no folder");
  expectFailure("TLM_LIS_SYMBOLI\n30255\n", "folder question \"Valitse symbolihakemisto\"");
  expectFailure("TLM_LIS_SYMBOLI\nLisää\n", "control 30254 is disabled");
}

TEST_F(Symbols, LockedDrawingShowsNoDialog) {
  application_.refuseLocks(true);
  run("TLM_LIS_SYMBOLI\n");
  application_.refuseLocks(false);
  EXPECT_TRUE(said("Unable to lock document for modification."));
}

TEST_F(Symbols, FiveThousandAreListed) {
  const fs::path tree = symbol("puu0_0.dwg");
  for (int i = 1; i < 5000; ++i) fs::create_hard_link(tree, symbols_ / ("puu" + std::to_string(i) + "_0.dwg"));
  run(opened("30263\n30267\n30239 puu4999\nLisää\n0,0\n\n30239 puu0\nLisää\n1,1\n^C\n"));
  EXPECT_EQ(living(DxfType::Insert).size(), 2U);
}

TEST_F(Symbols, PaneShowsTheSymbol) {
  symbol("puu_0.dwg");
  symbol("tuoli_0.dwg", kExamples / "penkki_0.dwg");
  const auto shot = [&](const char* name) { return (folder_ / name).string(); };
  run(opened("PICTURE " + shot("none.png") + "\n30239 puu\nPICTURE " + shot("tree.png") + "\n30239 tuoli\nPICTURE " +
             shot("chair.png") + "\n30239 puu\nPICTURE " + shot("again.png") + "\n30265\n30267\nPICTURE " +
             shot("gone.png") + "\nSulje\n"));
  EXPECT_NE(fileText(shot("none.png")), fileText(shot("tree.png")));
  EXPECT_NE(fileText(shot("tree.png")), fileText(shot("chair.png")));
  EXPECT_EQ(fileText(shot("tree.png")), fileText(shot("again.png")));
  EXPECT_LT(fileText(shot("gone.png")).size(), fileText(shot("tree.png")).size());
}

TEST_F(Symbols, FoldersAreSearchedByNamesOfWindows) {
  for (const char* const name : {"b.TXT", "A#1.txt", "a21.txt", "c.txt.bak"}) std::ofstream(symbols_ / name);
  fs::create_directory(symbols_ / "d.txt");
  const auto found = [&](const std::wstring& pattern) {
    std::wstring names;
    WIN32_FIND_DATAW data{};
    const HANDLE search = FindFirstFileW((symbols_.wstring() + L"\\" + pattern).c_str(), &data);
    if (search == INVALID_HANDLE_VALUE) return names;
    do {
      names += std::wstring(data.cFileName) + ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? L"/ " : L" ");
    } while (FindNextFileW(search, &data) != FALSE);
    EXPECT_EQ(FindClose(search), TRUE);
    EXPECT_EQ(FindClose(search), FALSE);
    EXPECT_EQ(FindNextFileW(search, &data), FALSE);
    return names;
  };
  EXPECT_EQ(found(L"*.txt"), L"A#1.txt a21.txt b.TXT d.txt/ ");
  EXPECT_EQ(found(L"a#?.TXT"), L"A#1.txt ");
  EXPECT_EQ(found(L"?.txt"), L"b.TXT d.txt/ ");
  EXPECT_EQ(found(L"x*"), L"");
}

// ---- pictures of files ----------------------------------------------------------------------------------------------

std::map<std::uint32_t, int> colors(const host::preview::Pixels& pixels) {
  std::map<std::uint32_t, int> counts;
  for (const std::uint32_t color : pixels.argb) ++counts[color];
  return counts;
}

TEST_F(Symbols, PreviewIsOfTheSizeAskedForWithTheDrawingInTheMiddle) {
  for (const auto& [width, height] : {std::pair{200, 80}, {80, 200}, {1, 1}}) {
    const host::preview::FilePreview& preview =
        host::preview::previewOf(kExamples / "lehtipuu_3t.dwg", {width, height, 0x102030});
    ASSERT_TRUE(preview.pixels) << (preview.problem ? preview.problem->text : "");
    EXPECT_EQ(preview.pixels->argb.size(), static_cast<std::size_t>(width * height));
    if (width == 1) continue;
    EXPECT_EQ(preview.pixels->argb.front(), 0xFF102030);
    EXPECT_NE(preview.pixels->argb[static_cast<std::size_t>(width * (height / 2) + width / 2)], 0xFF102030);
    EXPECT_GT(colors(*preview.pixels)[0xFF102030], width * height / 2);
  }
}

void append(std::string& bytes, std::uint32_t value, int size = 4) {
  for (int i = 0; i < size; ++i) bytes += static_cast<char>(value >> (8 * i) & 0xFF);
}

/// A bitmap of one colour, 24 bits.
std::string bitmap(std::uint32_t side, std::uint32_t rgb) {
  std::string bytes;
  for (const std::uint32_t value : {40U, side, side}) append(bytes, value);
  append(bytes, 1, 2);
  append(bytes, 24, 2);
  for (int i = 0; i < 6; ++i) append(bytes, 0);
  for (std::uint32_t y = 0; y < side; ++y) {
    for (std::uint32_t x = 0; x < side; ++x) append(bytes, rgb, 3);
    while (bytes.size() % 4 != 0) bytes += '\0';
  }
  return bytes;
}

/// A DWG file of nothing but its picture.
std::string dwgWith(const std::string& picture, std::uint32_t kind, std::uint32_t size) {
  std::string bytes = "AC1015";
  bytes.resize(0x0D);
  append(bytes, 0x20);
  bytes.resize(0x20 + 16);
  append(bytes, 0);
  bytes += '\1';
  bytes += static_cast<char>(kind);
  append(bytes, static_cast<std::uint32_t>(bytes.size() + 8));
  append(bytes, size);
  return bytes + picture;
}

TEST_F(Symbols, StoredPictureStandsInForADrawingThatCannotBeDrawn) {
  const std::string picture = bitmap(8, 0x3366CC);
  const fs::path file = symbols_ / "kuva_0.dwg";
  std::ofstream(file, std::ios::binary) << dwgWith(picture, 2, static_cast<std::uint32_t>(picture.size()));
  const host::preview::FilePreview& preview = host::preview::previewOf(file, {20, 10, 0xFFFFFF});
  ASSERT_TRUE(preview.pixels);
  EXPECT_EQ(colors(*preview.pixels), (std::map<std::uint32_t, int>{{0xFF3366CC, 64}, {0xFFFFFFFF, 136}}));
  // It is shown, and nothing comes of inserting it.
  run(opened("30239 kuva\nLisää\nSulje\n"));
  EXPECT_EQ(drawing().findRecord(DxfType::BlockRecord, L"kuva_0.dwg"), nullptr);

  // A DXF drawing that shows nothing keeps its picture as text.
  std::string text = fileText(kTree);
  const std::size_t entities = text.find("ENTITIES\n") + 9;
  text.erase(entities, text.find("0\nENDSEC", entities) - entities);
  std::string hex;
  for (const char c : picture) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(c);
    hex += {kDigits[byte >> 4], kDigits[byte & 15]};
  }
  text.insert(text.rfind("0\nEOF"), "0\nSECTION\n2\nTHUMBNAILIMAGE\n90\n" + std::to_string(picture.size()) + "\n310\n" +
                                        hex.substr(0, 254) + "\n310\n" + hex.substr(254) + "\n0\nENDSEC\n");
  std::ofstream(symbols_ / "teksti_0.dwg", std::ios::binary) << text;
  const host::preview::FilePreview& second = host::preview::previewOf(symbols_ / "teksti_0.dwg", {4, 4, 0xFFFFFF});
  ASSERT_TRUE(second.pixels) << second.problem->text;
  EXPECT_EQ(colors(*second.pixels), (std::map<std::uint32_t, int>{{0xFF3366CC, 16}}));

  // Places and sizes in a file are not believed.
  int number = 0;
  for (const std::string& bytes :
       {dwgWith(picture, 2, 0xFFFFFFFF), dwgWith(picture.substr(0, 30), 2, 30), dwgWith(picture, 3, 10),
        dwgWith(bitmap(2, 0).replace(4, 4, "\xFF\xFF\xFF\x7F"), 2, 56), dwgWith("PNG", 6, 3), std::string("AC1015"),
        dwgWith("", 2, 0).replace(0x0D, 4, "\xFF\xFF\xFF\xFF")}) {
    const fs::path bad = symbols_ / ("vika" + std::to_string(number++) + "_0.dwg");
    std::ofstream(bad, std::ios::binary) << bytes;
    EXPECT_FALSE(host::preview::previewOf(bad, {20, 10, 0xFFFFFF}).pixels) << bad;
  }
}

}  // namespace
