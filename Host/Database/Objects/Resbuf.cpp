// Result-buffer chains and their strings.
#include <cstdarg>
#include <cstdlib>
#include <cwchar>
#include <new>

#include "Database/ResbufTypes.h"
#include "acutads.h"
#include "acutmem.h"

namespace host::database {

ValueKind valueKind(int code) {
  if (code >= 1000) {
    if (code == 1004) return ValueKind::Binary;
    if (code <= 1009) return ValueKind::Text;
    if (code <= 1039) return ValueKind::Point;
    if (code <= 1059) return ValueKind::Real;
    if (code <= 1070) return ValueKind::Short;
    if (code == 1071) return ValueKind::Long;
    switch (code) {
      case RTREAL:
      case RTANG:
      case RTORINT:
        return ValueKind::Real;
      case RTPOINT:
      case RT3DPOINT:
        return ValueKind::Point;
      case RTSHORT:
        return ValueKind::Short;
      case RTLONG:
        return ValueKind::Long;
      case RTSTR:
      case RTDXF0:
        return ValueKind::Text;
      case RTENAME:
      case RTPICKS:
        return ValueKind::Name;
      case RTVOID:
      case RTLB:
      case RTLE:
      case RTDOTE:
      case RTNIL:
      case RTT:
        return ValueKind::None;
      default:
        return ValueKind::Unknown;
    }
  }
  struct Range {
    int first, last;
    ValueKind kind;
  };
  static constexpr Range kRanges[] = {
      {-5, -5, ValueKind::Name},     {-4, -4, ValueKind::Text},    {-3, -3, ValueKind::None},
      {-2, -1, ValueKind::Name},     {0, 9, ValueKind::Text},      {10, 37, ValueKind::Point},
      {38, 59, ValueKind::Real},     {60, 79, ValueKind::Short},   {90, 99, ValueKind::Long},
      {100, 105, ValueKind::Text},   {110, 139, ValueKind::Point}, {140, 149, ValueKind::Real},
      {160, 169, ValueKind::Long64}, {170, 179, ValueKind::Short}, {210, 239, ValueKind::Point},
      {270, 299, ValueKind::Short},  {300, 309, ValueKind::Text},  {310, 319, ValueKind::Binary},
      {320, 329, ValueKind::Text},   {330, 369, ValueKind::Name},  {370, 389, ValueKind::Short},
      {390, 399, ValueKind::Name},   {400, 409, ValueKind::Short}, {410, 419, ValueKind::Text},
      {420, 429, ValueKind::Long},   {430, 439, ValueKind::Text},  {440, 459, ValueKind::Long},
      {460, 469, ValueKind::Real},   {470, 479, ValueKind::Text},  {480, 481, ValueKind::Name},
      {999, 999, ValueKind::Text}};
  for (const Range& range : kRanges) {
    if (code >= range.first && code <= range.last) return range.kind;
  }
  return ValueKind::Unknown;
}

resbuf* Chain::add(int type) {
  resbuf* const item = acutNewRb(type);
  if (item == nullptr) throw std::bad_alloc();
  (tail_ == nullptr ? head_ : tail_->rbnext) = item;
  tail_ = item;
  return item;
}

void Chain::addText(int type, const std::wstring& value) {
  if (acutUpdString(value.c_str(), add(type)->resval.rstring) != Acad::eOk) throw std::bad_alloc();
}

Chain::~Chain() { acutRelRb(head_); }

std::size_t addValue(Chain& chain, const Tag& tag, TagCursor& cursor, const text::Codec& codec) {
  switch (valueKind(tag.code)) {
    case ValueKind::Text: {
      thread_local std::wstring text;
      codec.decode(tag.value, text);
      chain.addText(tag.code, text);
      return 1;
    }
    case ValueKind::Point: {
      resbuf* const item = chain.add(tag.code);
      item->resval.rpoint[0] = tag.real();
      std::size_t taken = 1;
      for (int axis = 1; axis < 3; ++axis) {
        TagCursor ahead = cursor;
        Tag next;
        if (!ahead.next(next) || next.code != tag.code + 10 * axis) break;
        item->resval.rpoint[axis] = next.real();
        cursor = ahead;
        ++taken;
      }
      return taken;
    }
    case ValueKind::Real:
      chain.add(tag.code)->resval.rreal = tag.real();
      return 1;
    case ValueKind::Short:
      chain.add(tag.code)->resval.rint = static_cast<short>(tag.integer());
      return 1;
    case ValueKind::Long:
      chain.add(tag.code)->resval.rlong = static_cast<Adesk::Int32>(tag.integer());
      return 1;
    case ValueKind::Long64:
      chain.add(tag.code)->resval.mnInt64 = tag.integer();
      return 1;
    default:
      return 0;
  }
}

bool writeValue(TagWriter& out, const resbuf& item) {
  const int code = item.restype;
  switch (valueKind(code)) {
    case ValueKind::Text:
      out.text(code, item.resval.rstring != nullptr ? item.resval.rstring : L"");
      return true;
    case ValueKind::Point:
      out.point(code, item.resval.rpoint[0], item.resval.rpoint[1], item.resval.rpoint[2]);
      return true;
    case ValueKind::Real:
      out.real(code, item.resval.rreal);
      return true;
    case ValueKind::Short:
      out.integer(code, item.resval.rint);
      return true;
    case ValueKind::Long:
      out.integer(code, item.resval.rlong);
      return true;
    case ValueKind::Long64:
      out.integer(code, item.resval.mnInt64);
      return true;
    default:
      return false;
  }
}

}  // namespace host::database

using host::database::ValueKind;
using host::database::valueKind;

resbuf* acutNewRb(int type) {
  auto* const item = static_cast<resbuf*>(std::calloc(1, sizeof(resbuf)));
  if (item != nullptr) item->restype = static_cast<short>(type);
  return item;
}

int acutRelRb(resbuf* chain) {
  while (chain != nullptr) {
    resbuf* const next = chain->rbnext;
    switch (valueKind(chain->restype)) {
      case ValueKind::Text:
        std::free(chain->resval.rstring);
        break;
      case ValueKind::Binary:
        std::free(chain->resval.rbinary.buf);
        break;
      default:
        break;
    }
    std::free(chain);
    chain = next;
  }
  return RTNORM;
}

Acad::ErrorStatus acutNewString(const ACHAR* source, ACHAR*& out) {
  out = nullptr;
  if (source == nullptr) return Acad::eInvalidInput;
  const std::size_t bytes = (std::wcslen(source) + 1) * sizeof(ACHAR);
  out = static_cast<ACHAR*>(std::malloc(bytes));
  if (out == nullptr) return Acad::eOutOfMemory;
  std::wmemcpy(out, source, bytes / sizeof(ACHAR));
  return Acad::eOk;
}

Acad::ErrorStatus acutUpdString(const ACHAR* source, ACHAR*& inOut) {
  ACHAR* copy = nullptr;
  const Acad::ErrorStatus status = acutNewString(source, copy);
  if (status != Acad::eOk) return status;
  std::free(inOut);
  inOut = copy;
  return Acad::eOk;
}

void acutDelString(ACHAR*& text) {
  std::free(text);
  text = nullptr;
}

resbuf* acutBuildList(int rtype, ...) {
  resbuf* head = nullptr;
  resbuf** link = &head;
  std::va_list arguments;
  va_start(arguments, rtype);
  bool isGood = true;
  for (int type = rtype; type != 0 && type != RTNONE && isGood; type = va_arg(arguments, int)) {
    // RTDXF0 stands for group code 0, which would otherwise end the list.
    resbuf* const item = acutNewRb(type == RTDXF0 ? 0 : type);
    if (item == nullptr) {
      isGood = false;
      break;
    }
    *link = item;
    link = &item->rbnext;
    switch (valueKind(type)) {
      case ValueKind::Text: {
        const ACHAR* const text = va_arg(arguments, const ACHAR*);
        isGood = acutNewString(text != nullptr ? text : ACRX_T(""), item->resval.rstring) == Acad::eOk;
        break;
      }
      case ValueKind::Real:
        item->resval.rreal = va_arg(arguments, double);
        break;
      case ValueKind::Short:
        item->resval.rint = static_cast<short>(va_arg(arguments, int));
        break;
      case ValueKind::Long:
        item->resval.rlong = va_arg(arguments, int);
        break;
      case ValueKind::Long64:
        item->resval.mnInt64 = va_arg(arguments, Adesk::Int64);
        break;
      case ValueKind::Point: {
        const double* const point = va_arg(arguments, const double*);
        isGood = point != nullptr;
        for (int i = 0; isGood && i < 3; ++i) item->resval.rpoint[i] = point[i];
        break;
      }
      case ValueKind::Name: {
        const Adesk::Int64* const name = va_arg(arguments, const Adesk::Int64*);
        isGood = name != nullptr;
        for (int i = 0; isGood && i < 2; ++i) item->resval.rlname[i] = name[i];
        break;
      }
      case ValueKind::None:
        break;
      case ValueKind::Binary:
      case ValueKind::Unknown:
        isGood = false;
        break;
    }
  }
  va_end(arguments);
  if (!isGood) {
    acutRelRb(head);
    return nullptr;
  }
  return head;
}
