// Resources of loaded modules.
//
// A module keeps what its resource script was compiled to in a table of its own, exported under the name below: the
// number of bytes as eight bytes, then the compiler's .res file.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "Win32/ByteReader.h"
#include "windows.h"

namespace host::win32 {

inline constexpr const char* kResourceSymbol = "tolmexhost_module_resources";

/// The data of one resource in a .res file; nothing when it is not there or the file breaks off before it.
std::optional<Bytes> findResource(Bytes file, std::uint16_t type, LPCWSTR name);
/// The text of a string table, which is cut into resources of sixteen strings.
std::optional<std::wstring> findString(Bytes file, std::uint32_t id);

/// The .res file in a module; empty when it has none or the module is not loaded.
Bytes resourcesOf(HMODULE module);
/// How many bytes may be read at an address: to the end of the resource it lies in, `otherwise` outside of all.
std::size_t readableAt(const void* address, std::size_t otherwise);

}  // namespace host::win32
