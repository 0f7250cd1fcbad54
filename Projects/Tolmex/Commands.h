// The commands that the user types.
#pragma once

namespace OrvLib {

/// Registers all commands with the host. One that the host refuses is left out, the others follow.
void registerCommands();

/// Takes all commands back.
void removeCommands();

}  // namespace OrvLib
