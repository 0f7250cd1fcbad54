// The library's array.
#pragma once

#include <vector>

namespace OrvLib {

/// Items by value, one after the other: the standard library's.
template <class T>
using Array = std::vector<T>;

}  // namespace OrvLib
