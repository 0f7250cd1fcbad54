// Array of numbers.
#pragma once

#include "acarray.h"
