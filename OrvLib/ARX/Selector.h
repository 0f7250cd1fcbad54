// Choosing entities.
#pragma once

#include <vector>

#include "OrvLib/ARX/AdsResbuf.h"
#include "OrvLib/ARX/HostInterface.h"

namespace OrvLib {

/// Takes entities of the wanted classes, in selection order; without the user those of paper layouts too. Every way of
/// taking them throws OrvExpAcad when the host does not give what it says it has selected.
class Selector {
 public:
  /// Of any class.
  static Selector entities() { return Selector(false); }
  /// Lightweight, 2D and 3D polylines.
  static Selector polylines() { return Selector(true); }

  /// Those that the user selects, any number, or that were selected before the command; empty after Esc or an empty
  /// answer.
  std::vector<AcDbObjectId> byUser() const;
  /// All of the drawing.
  std::vector<AcDbObjectId> all() const;
  /// Those with extended data of the application: most polylines of a drawing carry none.
  std::vector<AcDbObjectId> withDataOf(const ACHAR* application) const;
  /// Those on one of the layers.
  std::vector<AcDbObjectId> onLayers(const std::vector<const ACHAR*>& layers) const;

 private:
  explicit Selector(bool polylinesOnly) : polylinesOnly_(polylinesOnly) {}
  AdsResbuf filter() const;
  std::vector<AcDbObjectId> taken(const ACHAR* mode, const resbuf* wanted) const;

  bool polylinesOnly_;
};

}  // namespace OrvLib
