// Names of symbol files and the path file's word on where they are.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tolmex/Model/SymbolNames.h"

namespace {

using namespace OrvLib;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(SymbolNames, FilesAreChosenBySizeAndVariantInTheirOrder) {
  const std::vector<std::wstring> names{L"puu_1v.dwg",     L"PUU_2V.DWG", L"kivi_1v.dwg", L"Ä_1V.dwg", L"puu_1vt.dwg",
                                        L"puu_1v.dwg.dwg", L"puu1v.dwg",  L"_1v.dwg",     L"v.dwg",    L"puu_11v.dwg"};
  const SymbolVariant smallShaded{1, true, false};
  EXPECT_THAT(symbolFiles(names, smallShaded), ElementsAre(L"puu_1v.dwg", L"kivi_1v.dwg", L"Ä_1V.dwg", L"_1v.dwg"));
  EXPECT_THAT(symbolFiles(names, {2, true, false}), ElementsAre(L"PUU_2V.DWG"));
  EXPECT_THAT(symbolFiles(names, {1, true, true}), ElementsAre(L"puu_1vt.dwg"));
  EXPECT_THAT(symbolFiles(names, {3, false, true}), IsEmpty());
  EXPECT_EQ(baseName(L"PUU_1V.DWG", smallShaded), L"PUU");
  EXPECT_EQ(baseName(L"vanha_puu_1v.dwg", smallShaded), L"vanha_puu");
  EXPECT_EQ(SymbolVariant({2, true, true}).fileTail(), L"_2vt.dwg");
  EXPECT_EQ(symbolLayer(L"puu", {2, true, true}), L"puu_2");
}

TEST(SymbolNames, DirectoryIsTheLongestWordBehindTheKey) {
  EXPECT_EQ(symbolDirectoryIn({L"KAAVA D:/data/"}), L"D:\\data\\tmsym");
  EXPECT_EQ(symbolDirectoryIn({L"MUU C:/muu/", L"\tkaava   C:/kaavat/  x", L"kaavat Z:/pidempi/polku/"}),
            L"C:\\kaavat\\tmsym");
  EXPECT_EQ(symbolDirectoryIn({L"KAAVA = ab/ cd/ e"}), L"cd\\tmsym");  // of equally long ones the last
  EXPECT_EQ(symbolDirectoryIn({L"KAAVA \\\\palvelin\\kaavat\\"}), L"\\\\palvelin\\kaavat\\tmsym");
  for (const wchar_t* const line : {L"", L"KAAVA", L"KAAVA C:", L"KAAVA a b c", L"# KAAVA C:/kaavat/"}) {
    EXPECT_EQ(symbolDirectoryIn({line}), L"") << line;
  }
  EXPECT_EQ(symbolDirectoryIn({}), L"");
}

}  // namespace
