#include "Places.h"

const char* const kSourceDir = TOLMEX_SOURCE_DIR;
const char* const kBinDir = TOLMEX_BIN_DIR;
