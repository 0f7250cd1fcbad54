// The C interface in one include.
#pragma once

#include "adscodes.h"
#include "adsdef.h"
