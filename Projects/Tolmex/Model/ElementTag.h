// The entity tag in its stored form: what extended data of an outline says of the element that it is.
#pragma once

#include <optional>
#include <string>

#include "OrvLib/DataStruct/DataItems.h"

namespace OrvLib {

/// The values of a tag as stored; nothing for a key that is missing.
struct ElementTag {
  std::optional<std::wstring> category;     // whether the catalogue knows it or not
  std::optional<std::wstring> height;       // of a fence, drawing units
  std::optional<std::wstring> hatchHandle;  // of the fill, hexadecimal; "0" for none

  bool operator==(const ElementTag&) const = default;
};

/// Reads a tag from the extended data of its application.
ElementTag readElementTag(const DataItems& data);

/// The extended data that a tag of these values is stored as.
DataItems elementTagItems(const std::wstring& category, const std::wstring& height, const std::wstring& hatchHandle);

}  // namespace OrvLib
