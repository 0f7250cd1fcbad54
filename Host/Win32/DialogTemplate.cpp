#include "Win32/DialogTemplate.h"

#include "windows.h"

namespace host::win32 {
namespace {

constexpr std::uint16_t kExtendedMark = 0xFFFF;
constexpr std::uint16_t kNumberMark = 0xFFFF;
constexpr int kBoldWeight = 600;
constexpr std::size_t kSmallestControl = 18;  // bytes of the old form without class, title and data

NameOrNumber readNameOrNumber(ByteReader& in) {
  ByteReader ahead = in;
  if (ahead.u16() != kNumberMark) return in.text();
  in = ahead;
  return in.u16();
}

UnitRect readRect(ByteReader& in) {
  UnitRect rect;
  rect.x = in.i16();
  rect.y = in.i16();
  rect.width = in.i16();
  rect.height = in.i16();
  return rect;
}

DialogFont readFont(ByteReader& in, bool isExtended) {
  DialogFont font;
  font.pointSize = in.u16();
  if (isExtended) {
    font.isBold = in.u16() >= kBoldWeight;
    font.isItalic = in.u8() != 0;
    in.u8();  // character set: the face has them all
  }
  font.face = in.text();
  return font;
}

ControlTemplate readControl(ByteReader& in, bool isExtended) {
  ControlTemplate control;
  in.align4();
  if (isExtended) {
    in.u32();  // help id
    control.exStyle = in.u32();
    control.style = in.u32();
  } else {
    control.style = in.u32();
    control.exStyle = in.u32();
  }
  control.rect = readRect(in);
  control.id = isExtended ? static_cast<int>(in.u32()) : in.u16();
  control.windowClass = readNameOrNumber(in);
  control.title = readNameOrNumber(in);
  in.take(in.u16());
  return control;
}

}  // namespace

std::optional<DialogTemplate> readDialogTemplate(Bytes bytes) {
  ByteReader in(bytes);
  DialogTemplate dialog;
  ByteReader ahead = in;
  const bool isExtended = ahead.u16() == 1 && ahead.u16() == kExtendedMark;
  if (isExtended) {
    in = ahead;
    in.u32();  // help id
    dialog.exStyle = in.u32();
    dialog.style = in.u32();
  } else {
    dialog.style = in.u32();
    dialog.exStyle = in.u32();
  }
  const std::size_t count = in.u16();
  dialog.rect = readRect(in);
  readNameOrNumber(in);  // menu
  readNameOrNumber(in);  // window class
  dialog.title = in.text();
  if ((dialog.style & DS_SETFONT) != 0) dialog.font = readFont(in, isExtended);
  if (!in.ok() || count > in.left() / kSmallestControl) return std::nullopt;
  for (std::size_t i = 0; i < count && in.ok(); ++i) dialog.controls.push_back(readControl(in, isExtended));
  if (!in.ok()) return std::nullopt;
  return dialog;
}

}  // namespace host::win32
