// Pictures as the pages of a PDF.
#pragma once

#include <optional>
#include <span>
#include <string>

#include "Picture/BackEnd.h"

namespace host::picture {

/// One page: its picture, and what its bookmark says (UTF-8).
struct PdfPage {
  const DisplayList* list = nullptr;
  Page page;
  std::string name;
};

/// Pages as large as they are on paper, with a bookmark each; the layers that the lists' notes tell of are optional
/// content, one switch for each name. Texts of the lists are found and copied, and never seen. The title is that of the
/// first list. No dates, no identifiers: the same lists give the same bytes.
std::string writePdf(std::span<const PdfPage> pages, std::optional<std::uint32_t> background);

}  // namespace host::picture
