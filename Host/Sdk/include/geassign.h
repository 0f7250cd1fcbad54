// C-interface points as geometry points.
#pragma once

#include "adsdef.h"
#include "gepnt3d.h"

inline AcGePoint3d asPnt3d(const ads_point p) { return {p[0], p[1], p[2]}; }
inline double* asDblArray(AcGePoint3d& p) { return &p.x; }
inline const double* asDblArray(const AcGePoint3d& p) { return &p.x; }
