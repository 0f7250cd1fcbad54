// Tolerance and forward declarations of the geometry types.
#pragma once

#include "adesk.h"

/// Tolerance of point and vector comparison, drawing units.
class AcGeTol {
 public:
  double equalPoint() const { return equalPoint_; }
  double equalVector() const { return equalVector_; }
  void setEqualPoint(double value) { equalPoint_ = value; }
  void setEqualVector(double value) { equalVector_ = value; }

 private:
  double equalPoint_ = 1e-10;
  double equalVector_ = 1e-10;
};

struct AcGeContext {
  static inline const AcGeTol gTol{};
};
