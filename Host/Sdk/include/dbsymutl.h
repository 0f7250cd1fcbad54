#pragma once
#include "dbsymtb.h"
