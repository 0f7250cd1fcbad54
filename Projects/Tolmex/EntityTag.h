// The entity tag: extended data on an outline that names its category and links its fill.
#pragma once

#include <optional>
#include <string>

#include "OrvLib/ARX/HostInterface.h"
#include "Tolmex/Model/Catalogue.h"

namespace OrvLib {

/// The stored category name, whether the catalogue knows it or not. The entity must be open, as in all reading here.
std::optional<std::wstring> readCategory(const AcDbEntity& entity);

/// The same of an entity that is not open; nothing also when it cannot be opened.
std::optional<std::wstring> readCategory(AcDbObjectId id);

/// Whether the entity carries a category name that is not empty; false for null.
bool isTagged(const AcDbEntity* entity);

/// The catalogue's category of the entity.
std::optional<Category> knownCategory(const AcDbEntity& entity);

/// The stored height of the element; nothing when the entity has no tag or the tag no height.
std::optional<std::wstring> readHeight(const AcDbEntity& entity);

enum class BuildingRecordIs { Removed, Kept };

/// Makes the outline, which is open, an element of the category with the given fill, or none for a null id. The fill
/// that an earlier tag named is erased, the earlier tag goes, and the height becomes 0. False when the host refuses the
/// data.
bool writeElementTag(Category category, AcDbObjectId fill, AcDbEntity& outline,
                     BuildingRecordIs record = BuildingRecordIs::Removed);

/// Puts a tag of these values in the place of the outline's own, touching no fill. The outline is open for write.
bool replaceTag(AcDbEntity& outline, const std::wstring& category, const std::wstring& height,
                const std::wstring& handle);

/// Removes the entity tag and the building record from an open entity, made writable for it and left open as it was.
bool removeTags(AcDbEntity& entity);

}  // namespace OrvLib
