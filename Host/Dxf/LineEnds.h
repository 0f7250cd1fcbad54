// Line ends that drawings should not have.
#pragma once

#include <string>

namespace host::dxf {

/// Brings line ends that programs for other systems made of those of drawings (a carriage return alone, CR CR LF, LF
/// CR, a blank line behind every line) to the usual ones. The name of such an end ("CR CR LF"); empty when there was
/// nothing to do, or for a carriage return alone.
std::string useKnownLineEnds(std::string& text);

}  // namespace host::dxf
