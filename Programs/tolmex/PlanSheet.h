// A template sheet made ready for the picture of a plan: its places, its fields, and the legend of what the plan has.
#pragma once

#include <filesystem>
#include <memory>
#include <vector>

#include "Picture/Picture.h"
#include "Picture/Sheet.h"
#include "dbmain.h"

namespace tolmex {

struct PlanSheet {
  AcDbDatabase drawing{false};
  host::picture::Sheet sheet;  // of it
};

/// Reads the sheet and the legend's texts that the options name: as files, in the folders, or among the sheets that
/// come with the program. Refuses a sheet without a layer KUVA, and fields that it has not.
host::Result<std::unique_ptr<PlanSheet>> prepareSheet(const host::database::DrawingDatabase& plan,
                                                      const host::picture::PictureOptions& options,
                                                      const std::vector<std::filesystem::path>& folders);

}  // namespace tolmex
