// The entity tag: extended data on an outline that names its category and links its fill.
#pragma once

#include <optional>
#include <string>

#include "OrvLib/ARX/HostInterface.h"
#include "Tolmex/Catalogue.h"

namespace OrvLib {

/// The stored category name, whether the catalogue knows it or not. The entity must be open, as in all reading here.
std::optional<std::wstring> readCategory(const AcDbEntity& entity);

/// Whether the entity carries a category name that is not empty; false for null.
bool isTagged(const AcDbEntity* entity);

/// The catalogue's category of the entity.
std::optional<Category> knownCategory(const AcDbEntity& entity);

/// Makes the outline, which is open, an element of the category with the given fill, or none for a null id. The fill
/// that an earlier tag named is erased, both the earlier tag and a building record are removed, and the height becomes
/// 0. False when the host refuses the data.
bool writeTag(Category category, AcDbObjectId fill, AcDbEntity& outline);

/// Removes the entity tag and the building record from an open entity, made writable for it and left open as it was.
bool removeTags(AcDbEntity& entity);

}  // namespace OrvLib
