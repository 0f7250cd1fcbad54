#include "Win32/Resources.h"

#include <algorithm>
#include <cstring>
#include <set>
#include <utility>

#include "Platform/Library.h"
#include "Text/Text.h"

namespace host::win32 {
namespace {

constexpr std::uint16_t kNumberMark = 0xFFFF;
constexpr std::uint16_t kStringType = 6;
constexpr std::uint32_t kStringsPerTable = 16;
constexpr std::size_t kSmallestHeader = 32;

struct Key {
  std::optional<std::uint16_t> number;
  std::wstring name;
};

Key readKey(ByteReader& in) {
  Key key;
  ByteReader ahead = in;
  if (ahead.u16() == kNumberMark) {
    key.number = ahead.u16();
    in = ahead;
  } else {
    key.name = in.text();
  }
  return key;
}

bool isNamed(const Key& key, LPCWSTR name) {
  if (IS_INTRESOURCE(name)) return key.number == static_cast<std::uint16_t>(reinterpret_cast<std::uintptr_t>(name));
  return !key.number && text::equalFolded(key.name, name);
}

/// Begin and end of every resource that was handed out.
std::set<std::pair<const std::uint8_t*, const std::uint8_t*>>& lockedResources() {
  static auto& resources = *new std::set<std::pair<const std::uint8_t*, const std::uint8_t*>>;
  return resources;
}

DWORD& lastError() {
  thread_local DWORD error = 0;
  return error;
}

}  // namespace

std::optional<Bytes> findResource(Bytes file, std::uint16_t type, LPCWSTR name) {
  ByteReader in(file);
  while (in.ok() && in.left() >= kSmallestHeader) {
    const std::size_t begin = in.position();
    const std::uint32_t dataSize = in.u32();
    const std::uint32_t headerSize = in.u32();
    const Key itsType = readKey(in);
    const Key itsName = readKey(in);
    const std::size_t read = in.position() - begin;
    if (!in.ok() || headerSize < read) return std::nullopt;
    in.take(headerSize - read);
    const Bytes data = in.take(dataSize);
    if (!in.ok()) return std::nullopt;
    if (itsType.number == type && isNamed(itsName, name)) return data;
    in.align4();
  }
  return std::nullopt;
}

std::optional<std::wstring> findString(Bytes file, std::uint32_t id) {
  const auto table = findResource(file, kStringType, MAKEINTRESOURCEW(static_cast<WORD>(id / kStringsPerTable + 1)));
  if (!table || id > 0xFFFF) return std::nullopt;
  ByteReader in(*table);
  for (std::uint32_t skipped = 0; skipped < id % kStringsPerTable; ++skipped) in.text(in.u16());
  std::wstring text = in.text(in.u16());
  if (!in.ok() || text.empty()) return std::nullopt;
  return text;
}

Bytes resourcesOf(HMODULE module) {
  const auto* const table = static_cast<const std::uint8_t*>(platform::symbolInModule(module, kResourceSymbol));
  if (table == nullptr) return {};
  std::uint64_t size = 0;
  std::memcpy(&size, table, sizeof(size));
  return {table + sizeof(size), static_cast<std::size_t>(size)};
}

std::size_t readableAt(const void* address, std::size_t otherwise) {
  const auto* const at = static_cast<const std::uint8_t*>(address);
  for (const auto& [begin, end] : lockedResources()) {
    if (at >= begin && at < end) return static_cast<std::size_t>(end - at);
  }
  return otherwise;
}

}  // namespace host::win32

using namespace host::win32;

DWORD GetLastError() { return lastError(); }
void SetLastError(DWORD error) { lastError() = error; }

BOOL GetModuleHandleExW(DWORD flags, LPCWSTR address, HMODULE* module) {
  if (module == nullptr) return FALSE;
  const bool isAsked = (flags & GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS) != 0;
  *module = isAsked ? static_cast<HMODULE>(const_cast<void*>(host::platform::baseOf(address))) : nullptr;
  if (*module == nullptr) SetLastError(ERROR_MOD_NOT_FOUND);
  return *module != nullptr ? TRUE : FALSE;
}

HRSRC FindResourceW(HMODULE module, LPCWSTR name, LPCWSTR type) {
  const Bytes file = resourcesOf(module);
  if (file.empty() || !IS_INTRESOURCE(type)) {
    SetLastError(ERROR_RESOURCE_TYPE_NOT_FOUND);
    return nullptr;
  }
  const auto found = findResource(file, static_cast<std::uint16_t>(reinterpret_cast<std::uintptr_t>(type)), name);
  if (!found) {
    SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
    return nullptr;
  }
  // Where a module was loaded before, another resource may lie now.
  const std::pair range(found->data(), found->data() + found->size());
  std::erase_if(lockedResources(), [&range](const auto& other) {
    return other != range && other.first < range.second && range.first < other.second;
  });
  const auto entry = lockedResources().insert(range).first;
  return const_cast<void*>(static_cast<const void*>(&*entry));
}

HGLOBAL LoadResource(HMODULE, HRSRC resource) { return resource; }

LPVOID LockResource(HGLOBAL resource) {
  for (const auto& entry : lockedResources()) {
    if (&entry == resource) return const_cast<std::uint8_t*>(entry.first);
  }
  return nullptr;
}

DWORD SizeofResource(HMODULE, HRSRC resource) {
  for (const auto& entry : lockedResources()) {
    if (&entry == resource) return static_cast<DWORD>(entry.second - entry.first);
  }
  return 0;
}

int LoadStringW(HINSTANCE module, UINT id, LPWSTR buffer, int size) {
  const auto text = findString(resourcesOf(module), id);
  if (buffer == nullptr || size <= 0) return 0;
  const std::size_t count = text ? std::min(text->size(), static_cast<std::size_t>(size) - 1) : 0;
  if (text) std::copy_n(text->data(), count, buffer);
  buffer[count] = 0;
  return static_cast<int>(count);
}
