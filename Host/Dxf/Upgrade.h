// Records of drawings before 2000 in the form of 2000: common values first, then each class's own behind its marker.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "Database/Record.h"
#include "Dxf/Outline.h"

namespace host::dxf {

/// What a record gets that it never had.
struct Place2000 {
  std::uint64_t handle = 0;
  std::uint64_t owner = 0;
};

/// An entity without subclass markers. `polylineFlags` are those of the polyline a VERTEX belongs to.
void upgradeEntity(database::TagWriter& out, const RawRecord& record, Place2000 place, int polylineFlags = 0);
/// BLOCK; `name` replaces its own.
void upgradeBlock(database::TagWriter& out, const RawRecord& record, Place2000 place, std::string_view name);
/// A record of the table with that index.
void upgradeTableRecord(database::TagWriter& out, const RawRecord& record, Place2000 place, std::size_t table);
/// Whether a POLYLINE becomes an LWPOLYLINE: 2D, and neither curve-fit nor a spline.
bool isLightweight(const RawRecord& polyline);
/// That LWPOLYLINE; widths, bulges, elevation, thickness and extended data of the polyline are kept.
void writeLightweight(database::TagWriter& out, const RawRecord& polyline, const std::vector<RawRecord*>& vertices,
                      Place2000 place);

}  // namespace host::dxf
