// Single records, with their handles, owners and numbers mended.
#include <algorithm>
#include <cmath>

#include "Dxf/Fields.h"
#include "Dxf/Rebuilder.h"
#include "Dxf/Upgrade.h"
#include "Text/Text.h"

namespace host::dxf {

void Rebuilder::emitBasic(std::string& out, const RawRecord& record, std::uint64_t owner) {
  TagWriter tags = writer();
  bool isFront = true;
  bool isInGroup = false;
  Tag tag;
  for (std::string_view rest = record.bytes; readTag(rest, tag);) {
    if (tag.code == 100) isFront = false;
    if (tag.code == 102) isInGroup = tag.value.starts_with("{");
    if (isFront && (tag.code == 5 || tag.code == 105)) {
      tags.handle(tag.code, record.handle);
    } else if (isFront && !isInGroup && tag.code == 330) {
      tags.handle(330, owner);
    } else if ((tag.code >= 330 && tag.code <= 369) || (tag.code >= 390 && tag.code <= 399)) {
      tags.handle(tag.code, basicHandle(tag.handle()));
    } else {
      tags.raw(tag.code, tag.value);
    }
  }
  out += tags.str();
}

void Rebuilder::emit(std::string& out, RawRecord& record, std::uint64_t owner, Kind kind, int polylineFlags) {
  if (kind != Kind::Entity || record.isMarked()) {
    emitMended(out, record, owner, kind);
    return;
  }
  TagWriter tags = writer();
  upgradeEntity(tags, record, {record.handle, owner}, polylineFlags);
  RawRecord marked = record;
  const std::string bytes = tags.take();
  marked.bytes = bytes;
  marked.mark = Mark::Entity;
  emitMended(out, marked, owner, kind);
}

void Rebuilder::emitMended(std::string& out, const RawRecord& record, std::uint64_t owner, Kind kind) {
  TagWriter tags = writer();
  bool isChanged = false;
  bool isFront = true;
  bool isInGroup = false;
  bool hasHandle = false;
  bool hasOwner = false;
  bool hasEntries = &record != root_ || missingEntries_.empty();
  const int handleCode = record.type == "DIMSTYLE" ? 105 : 5;
  const bool isSortTable = record.type == "SORTENTSTABLE";
  // Nothing behind may change while the front is incomplete: the handle goes first, the owner ends it.
  const auto endFront = [&] {
    if (isInGroup) {
      tags.raw(102, "}");
      isInGroup = false;
      isChanged = true;
    }
    if (isFront && !hasOwner) {
      tags.handle(330, owner);
      isChanged = true;
    }
    isFront = false;
  };
  std::string_view rest = record.bytes;
  Tag tag;
  const bool fileHasHandle = frontHas(record, handleCode);
  while (readTag(rest, tag)) {
    if (tag.code == 0) {
      tags.bytes(tag.bytes);
      if (!fileHasHandle) {
        tags.handle(handleCode, record.handle);
        isChanged = hasHandle = true;
      }
      continue;
    }
    if (isFront && (tag.code == 100 || tag.code >= 1000)) endFront();
    if (tag.code >= 1000 && !hasEntries) {
      writeMissingEntries(tags);
      isChanged = hasEntries = true;
    }
    if (tag.code == 102) isInGroup = tag.trimmed().starts_with("{");
    if (isFront && !isInGroup && tag.code == handleCode) {
      if (!hasHandle && handleIn(tag.value) == record.handle) {  // otherwise there are two, or it was replaced
        tags.bytes(tag.bytes);
      } else {
        if (!hasHandle) tags.handle(handleCode, record.handle);
        isChanged = true;
      }
      hasHandle = true;
      continue;
    }
    if (isFront && !isInGroup && tag.code == 330) {
      if (!hasOwner && handleIn(tag.value) == owner) {
        tags.bytes(tag.bytes);
      } else {
        if (!hasOwner) tags.handle(330, owner);
        isChanged = true;
        if (!isOld_ && kind != Kind::Object && handleIn(tag.value) != 0) {
          problems_.add(Code::OwnerMended, record.at, record.handle,
                        "the owner was not the one it should have; it was mended");
        }
      }
      hasOwner = true;
      continue;
    }
    if (!isInGroup && tag.code == 3 && kind == Kind::Object && isDictionary(record)) {
      std::string_view next = rest;
      Tag entry;
      if (readTag(next, entry) && (entry.code == 350 || entry.code == 360) && !handles_.contains(resolved(entry))) {
        problems_.add(Code::ReferenceMended, tag.bytes.data(), record.handle,
                      "the entry " + shownName(tag.value) + " names an object that is not in the drawing; removed");
        rest = next;
        isChanged = true;
        continue;
      }
    }
    if (namesNew(tag, isSortTable && !isFront)) {
      tags.handle(tag.code, resolved(tag));
      isChanged = true;
      continue;
    }
    if (kind == Kind::TableRecord && record.type == "BLOCK_RECORD" && tag.code == 340 && !isInGroup &&
        tag.handle() == 0 && layoutOf(record.handle) != 0) {
      tags.handle(340, layoutOf(record.handle));
      isChanged = true;
      continue;
    }
    if (mendValue(tags, record, tag)) {
      isChanged = true;
      continue;
    }
    tags.bytes(tag.bytes);
  }
  endFront();
  if (!hasEntries) {
    writeMissingEntries(tags);
    isChanged = true;
  }
  if (isOld_ && kind == Kind::TableRecord && record.type == "BLOCK_RECORD" && !firstValue(record.bytes, 340)) {
    tags.handle(340, layoutOf(record.handle));
    isChanged = true;
  }
  if (isChanged) {
    out += tags.str();
  } else {
    out += record.bytes;
  }
  if (!out.ends_with('\n')) out += lineEnd_;
}

bool Rebuilder::frontHas(const RawRecord& record, int handleCode) {
  bool isInGroup = false;
  Tag tag;
  for (std::string_view rest = record.bytes; readTag(rest, tag) && tag.code != 100 && tag.code < 1000;) {
    if (tag.code == 102) isInGroup = tag.trimmed().starts_with("{");
    if (!isInGroup && tag.code == handleCode) return true;
  }
  return false;
}

bool Rebuilder::mendValue(TagWriter& tags, const RawRecord& record, const Tag& tag) {
  const Field field = fieldOf(tag.code);
  if (field == Field::Text || field == Field::Chunk) return false;
  const std::string_view value = tag.trimmed();
  const bool isReal = field == Field::Real;
  const bool isPlain = !value.empty() && value.size() < 24 &&
                       value.find_first_not_of(isReal ? "+-.0123456789" : "+-0123456789") == std::string_view::npos &&
                       value.find_first_of("0123456789") != std::string_view::npos;
  if (isPlain) return false;
  bool isNumber = false;
  if (isReal) {
    const auto number = text::parseReal(value);
    isNumber = number && std::isfinite(*number);
  } else {
    isNumber = text::parseInteger(value).has_value();
  }
  if (isNumber) return false;
  problems_.add(Code::ValueMended, tag.bytes.data(), record.handle,
                std::string(record.type.substr(0, 40)) + ": group " + std::to_string(tag.code) +
                    " holds no number but " + shown(value) + "; 0 is taken");
  if (isReal) {
    tags.real(tag.code, 0);
  } else {
    tags.integer(tag.code, 0);
  }
  return true;
}

}  // namespace host::dxf
