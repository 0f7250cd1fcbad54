// Dialog templates as resource compilers write them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "Win32/ByteReader.h"

namespace host::win32 {

/// A name, or the number that stands for one.
using NameOrNumber = std::variant<std::wstring, std::uint16_t>;

/// Position and size in dialog units.
struct UnitRect {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

struct ControlTemplate {
  std::uint32_t style = 0;
  std::uint32_t exStyle = 0;
  UnitRect rect;
  int id = 0;
  NameOrNumber windowClass;
  NameOrNumber title;
};

/// Numbers that stand for the predefined classes.
inline constexpr std::uint16_t kButtonClass = 0x80;
inline constexpr std::uint16_t kEditClass = 0x81;
inline constexpr std::uint16_t kStaticClass = 0x82;
inline constexpr std::uint16_t kListBoxClass = 0x83;
inline constexpr std::uint16_t kComboBoxClass = 0x85;

struct DialogFont {
  std::wstring face = L"MS Shell Dlg";
  int pointSize = 8;
  bool isBold = false;
  bool isItalic = false;
};

struct DialogTemplate {
  std::uint32_t style = 0;
  std::uint32_t exStyle = 0;
  UnitRect rect;
  std::wstring title;
  DialogFont font;
  std::vector<ControlTemplate> controls;
};

/// Reads a template of the extended or of the old form. Nothing when the bytes end too early; counts are believed only
/// as far as the bytes go.
std::optional<DialogTemplate> readDialogTemplate(Bytes bytes);

}  // namespace host::win32
