// Entities that stand for a block: inserts, dimensions, tables.
#pragma once

#include <optional>
#include <vector>

#include "Database/DrawingDatabase.h"
#include "Geometry/Transform.h"

namespace host::geometry {

/// Blocks within blocks; deeper ones are not looked into, for each takes its share of the stack.
constexpr std::size_t kDeepestNesting = 256;

/// Where the content of a block comes to stand; arrays repeat it in columns and rows.
struct BlockReference {
  const database::BlockContents* block = nullptr;
  Transform first;  // block coordinates to those around the reference, for the first cell
  AcGeVector3d columnStep, rowStep;
  std::int64_t columns = 1, rows = 1;

  Transform cell(std::int64_t column, std::int64_t row) const {
    return first.movedBy(columnStep * static_cast<double>(column) + rowStep * static_cast<double>(row));
  }
};

/// Dimensions of every kind.
bool isDimension(const database::Slot& entity);
bool isReference(const database::Slot& entity);
/// Nothing for other entities, an unknown block, or a place or scale that is not finite.
std::optional<BlockReference> readReference(const database::Slot& entity);

/// False for what a reference does not show of its block: erased entities, definitions of variable attributes.
bool isDrawnInReference(const database::Slot& entity);
/// Flag 1 of an attribute: invisible.
bool isInvisibleAttribute(const database::Slot& attribute);

/// The blocks entered so far, outermost first.
class ReferenceChain {
 public:
  /// False when the block is being drawn already or the nesting is too deep.
  bool enter(const database::BlockContents* block);
  /// Whether a block was not entered because of the nesting.
  bool wasTooDeep() const { return wasTooDeep_; }
  void leave() { blocks_.pop_back(); }
  bool isEmpty() const { return blocks_.empty(); }
  std::size_t depth() const { return blocks_.size(); }

 private:
  std::vector<const database::BlockContents*> blocks_;
  bool wasTooDeep_ = false;
};

}  // namespace host::geometry
