#pragma once
#include "gepnt3d.h"
