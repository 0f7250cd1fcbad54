// Types of the C interface: names, points, result buffers.
#pragma once

#include "adesk.h"

using ads_real = double;
using ads_point = ads_real[3];
using ads_name = Adesk::Int64[2];

struct ads_binary {
  short clen;
  char* buf;
};

union ads_u_val {
  ads_real rreal;
  ads_real rpoint[3];
  short rint;
  ACHAR* rstring;
  Adesk::Int64 rlname[2];
  Adesk::Int32 rlong;
  Adesk::Int64 mnInt64;
  ads_binary rbinary;
};

/// One item of a chain; strings and binaries in it belong to the chain.
struct resbuf {
  resbuf* rbnext;
  short restype;
  ads_u_val resval;
};

inline void ads_name_clear(ads_name n) { n[0] = n[1] = 0; }
inline void ads_name_set(const ads_name from, ads_name to) {
  to[0] = from[0];
  to[1] = from[1];
}
inline bool ads_name_equal(const ads_name a, const ads_name b) { return a[0] == b[0] && a[1] == b[1]; }
inline bool ads_name_nil(const ads_name n) { return n[0] == 0 && n[1] == 0; }
inline void ads_point_set(const ads_point from, ads_point to) {
  for (int i = 0; i < 3; ++i) to[i] = from[i];
}
