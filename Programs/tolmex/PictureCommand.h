// PICTURE: the command that draws the current drawing into a file.
#pragma once

#include "Editor/Application.h"

namespace tolmex {

/// Adds it. Its answer is the file's name, whose ending names the format, and behind it options of `tolmex picture`:
/// "plan.pdf --paper A3 --scale 1:500".
void addPictureCommand(host::editor::Application& application);

}  // namespace tolmex
