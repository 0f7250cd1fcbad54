// Moving and turning entities: what a rigid motion of the plan does to the tags of each kind.
#pragma once

#include <string>

#include "Database/Slot.h"
#include "gepnt3d.h"
#include "gevec3d.h"

namespace host::editor {

/// Shifts, or turns about a line along the Z axis. Quarter turns are exact.
class Motion {
 public:
  static Motion shift(const AcGeVector3d& by);
  /// Degrees, counter-clockwise.
  static Motion turn(const AcGePoint3d& about, double degrees);

  AcGePoint3d operator()(const AcGePoint3d& point) const;
  /// Directions are turned only.
  AcGeVector3d operator()(const AcGeVector3d& direction) const;
  double degrees() const { return degrees_; }
  bool turns() const { return degrees_ != 0; }

 private:
  AcGePoint3d about_;
  double cos_ = 1, sin_ = 0, degrees_ = 0;
  AcGeVector3d shift_;
};

/// Why entities of the kind cannot be moved, "its solid model cannot be moved"; empty when they can.
std::string_view cannotMove(const database::Slot& entity);

/// The record of an entity, or of a vertex or attribute of one, as it is after the motion; tags whose values stay keep
/// their bytes. `normal` is the extrusion of the polyline that a vertex belongs to.
std::string movedTags(const database::Slot& entity, const Motion& motion,
                      const AcGeVector3d& normal = AcGeVector3d::kZAxis);

/// The extrusion direction in an entity's tags; +Z when it has none.
AcGeVector3d normalOf(const database::Slot& entity);

}  // namespace host::editor
