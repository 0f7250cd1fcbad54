// The host's chains of result buffers as plain lists of items.
#pragma once

#include "OrvLib/ARX/HostInterface.h"
#include "OrvLib/DataStruct/DataItems.h"

namespace OrvLib {

/// The items of a chain, which stays the caller's; empty for null. Items of extended data and of records are told apart
/// by their codes.
DataItems itemsOf(const resbuf* chain);

}  // namespace OrvLib
