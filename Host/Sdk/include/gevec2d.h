#pragma once
#include "gepnt2d.h"
