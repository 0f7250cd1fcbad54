// Extended data: AcDbObject::xData and setXData, acdbRegApp.
#include <algorithm>
#include <cmath>
#include <memory>

#include "Database/ObjectAccess.h"
#include "Database/ResbufTypes.h"
#include "Text/Text.h"
#include "acdbads.h"
#include "acutads.h"
#include "dbapserv.h"
#include "dbmain.h"
#include "dbobjptr.h"
#include "dbsymtb.h"

using host::database::addValue;
using host::database::Chain;
using host::database::DrawingDatabase;
using host::database::DxfType;
using host::database::Record;
using host::database::Tag;
using host::database::TagCursor;
using host::database::TagWriter;
using host::database::ValueKind;
using host::database::valueKind;
using host::database::writeValue;

namespace {

constexpr std::size_t kMostXDataBytes = 16383;  // per object, all applications together
constexpr std::size_t kMostTextBytes = 255;

/// One application's data in a record: tag numbers from its 1001 to the next one, and its size as the host counts it.
struct ApplicationSpan {
  std::wstring name;  // folded
  std::size_t begin = 0, end = 0;
  std::size_t bytes = 0;
};

std::size_t storedBytes(const Tag& tag) {
  switch (valueKind(tag.code)) {
    case ValueKind::Text:
      return tag.code == 1005 ? 9 : tag.code == 1002 ? 2 : 4 + tag.value.size();
    case ValueKind::Binary:
      return 2 + tag.value.size() / 2;
    case ValueKind::Point:
      return tag.code < 1020 ? 25 : 0;  // counted once for its three tags
    case ValueKind::Real:
      return 9;
    case ValueKind::Short:
      return 3;
    case ValueKind::Long:
      return 5;
    default:
      return 0;
  }
}

std::vector<ApplicationSpan> spansOf(TagCursor cursor, const host::text::Codec& codec) {
  std::vector<ApplicationSpan> spans;
  std::size_t number = 0;
  Tag tag;
  for (; cursor.next(tag); ++number) {
    if (tag.code == 1001) {
      if (!spans.empty()) spans.back().end = number;
      spans.push_back({host::text::folded(codec.decode(tag.value)), number, number, 0});
    }
    if (tag.code >= 1000 && !spans.empty()) spans.back().bytes += storedBytes(tag);
  }
  if (!spans.empty()) spans.back().end = number;
  return spans;
}

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

void setBinary(resbuf& item, std::string_view hex) {
  const std::size_t count = std::min<std::size_t>(hex.size() / 2, 127);
  auto* const buffer = static_cast<char*>(std::calloc(count + 1, 1));
  if (buffer == nullptr) throw std::bad_alloc();
  for (std::size_t i = 0; i < count; ++i) {
    buffer[i] = static_cast<char>(std::max(hexDigit(hex[2 * i]), 0) * 16 + std::max(hexDigit(hex[2 * i + 1]), 0));
  }
  item.resval.rbinary = {static_cast<short>(count), buffer};
}

std::string hexText(const ads_binary& binary) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  for (int i = 0; i < binary.clen; ++i) {
    const auto byte = static_cast<unsigned char>(binary.buf[i]);
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text;
}

void writeItem(TagWriter& out, const resbuf& item) {
  if (item.restype == 1005) {
    const std::string text = host::text::toUtf8(item.resval.rstring);
    const std::uint64_t handle = host::text::parseHandle(text);
    // What is no handle came from a drawing that has such: it stays as it is.
    if (handle == 0 && text.find_first_not_of("0 ") != std::string::npos) {
      out.text(1005, item.resval.rstring);
    } else {
      out.handle(1005, handle);
    }
  } else if (!writeValue(out, item) && valueKind(item.restype) == ValueKind::Binary) {
    out.raw(item.restype, hexText(item.resval.rbinary));
  }
}

/// Whether one item may stand in extended data.
Acad::ErrorStatus checkItem(const resbuf& item) {
  if (item.restype < 1000 || item.restype > 1071) return Acad::eInvalidDxfCode;
  switch (valueKind(item.restype)) {
    case ValueKind::Unknown:
    case ValueKind::None:
      return Acad::eInvalidDxfCode;
    case ValueKind::Text:
      if (item.resval.rstring == nullptr) return Acad::eInvalidInput;
      return host::text::toUtf8(item.resval.rstring).size() > kMostTextBytes ? Acad::eXdataSizeExceeded : Acad::eOk;
    case ValueKind::Real:
      return std::isfinite(item.resval.rreal) ? Acad::eOk : Acad::eInvalidInput;
    case ValueKind::Point:
      for (const double value : item.resval.rpoint) {
        if (!std::isfinite(value)) return Acad::eInvalidInput;
      }
      return Acad::eOk;
    default:
      return Acad::eOk;
  }
}

}  // namespace

resbuf* AcDbObject::xData(const ACHAR* regappName) const {
  const host::text::Codec& codec = HostObjectAccess::codec(*this);
  const std::wstring wanted = regappName != nullptr ? host::text::folded(regappName) : std::wstring();
  Chain chain;
  bool inside = false;
  Tag tag;
  for (TagCursor cursor = HostObjectAccess::tags(*this); cursor.next(tag);) {
    if (tag.code < 1000) continue;
    if (tag.code == 1001) inside = regappName == nullptr || host::text::folded(codec.decode(tag.value)) == wanted;
    if (!inside) continue;
    if (addValue(chain, tag, cursor, codec) == 0 && valueKind(tag.code) == ValueKind::Binary) {
      setBinary(*chain.add(tag.code), tag.trimmed());
    }
  }
  return chain.release();
}

Acad::ErrorStatus AcDbObject::setXData(const resbuf* xdata) {
  if (xdata == nullptr) return Acad::eNullObjectPointer;
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  if (xdata->restype != 1001) return Acad::eBadDxfSequence;
  const DrawingDatabase* db = HostObjectAccess::database(*this);
  if (db == nullptr) {
    AcDbDatabase* const working = acdbHostApplicationServices()->workingDatabase();
    if (working == nullptr) return Acad::eNoDatabase;
    db = &working->hostDatabase();
  }

  // Everything is checked before anything changes.
  struct Application {
    const resbuf* begin;
    const resbuf* end;
    std::wstring name;
  };
  std::vector<Application> applications;
  int depth = 0;
  for (const resbuf* item = xdata; item != nullptr; item = item->rbnext) {
    if (const Acad::ErrorStatus status = checkItem(*item); status != Acad::eOk) return status;
    if (item->restype == 1001) {
      if (depth != 0) return Acad::eBadDxfSequence;
      const std::wstring name = host::text::folded(item->resval.rstring);
      if (db->findRecord(DxfType::AppId, name) == nullptr) return Acad::eRegappIdNotFound;
      for (const Application& other : applications) {
        if (other.name == name) return Acad::eBadDxfSequence;
      }
      if (!applications.empty()) applications.back().end = item;
      applications.push_back({item, nullptr, name});
    } else if (item->restype == 1002) {
      const std::wstring_view brace = item->resval.rstring;
      if (brace == L"{") {
        ++depth;
      } else if (brace == L"}") {
        if (--depth < 0) return Acad::eBadDxfSequence;
      } else {
        return Acad::eInvalidInput;
      }
    }
  }
  if (depth != 0) return Acad::eBadDxfSequence;

  const host::text::Codec& codec = HostObjectAccess::codec(*this);
  std::size_t total = 0;
  for (const ApplicationSpan& span : spansOf(HostObjectAccess::tags(*this), codec)) {
    const bool isReplaced = std::any_of(applications.begin(), applications.end(),
                                        [&](const Application& app) { return app.name == span.name; });
    if (!isReplaced) total += span.bytes;
  }
  std::vector<std::string> spelled;
  for (const Application& application : applications) {
    TagWriter writer = HostObjectAccess::tagWriter(*this);
    // A name with nothing after it removes that application's data.
    if (application.begin->rbnext != application.end) {
      for (const resbuf* item = application.begin; item != application.end; item = item->rbnext) {
        writeItem(writer, *item);
      }
    }
    spelled.push_back(writer.take());
    for (const ApplicationSpan& span : spansOf(TagCursor(std::string_view(spelled.back())), codec)) total += span.bytes;
  }
  if (total > kMostXDataBytes) return Acad::eXdataSizeExceeded;

  for (std::size_t i = 0; i < applications.size(); ++i) {
    const std::vector<ApplicationSpan> spans = spansOf(HostObjectAccess::tags(*this), codec);
    const auto old = std::find_if(spans.begin(), spans.end(),
                                  [&](const ApplicationSpan& span) { return span.name == applications[i].name; });
    if (old == spans.end() && spelled[i].empty()) continue;
    Record& record = HostObjectAccess::editRecord(*this);
    if (slot_ != nullptr) slot_->flags |= host::database::kHasXData;
    const std::string_view bytes = HostObjectAccess::keep(*this, spelled[i]);
    if (old != spans.end()) {
      record.replace(old->begin, old->end - old->begin, bytes);
    } else {
      record.append(bytes);
    }
  }
  return Acad::eOk;
}

int acdbRegApp(const ACHAR* name) {
  AcDbDatabase* const db = acdbHostApplicationServices()->workingDatabase();
  if (db == nullptr || name == nullptr || *name == 0) return RTERROR;
  const AcDbObjectPointer<AcDbRegAppTable> table(db->regAppTableId(), AcDb::kForWrite);
  if (table.openStatus() != Acad::eOk || table->has(name)) return RTERROR;
  auto record = std::make_unique<AcDbRegAppTableRecord>();
  if (record->setName(name) != Acad::eOk || table->add(record.get()) != Acad::eOk) return RTERROR;
  record.release()->close();
  return RTNORM;
}
