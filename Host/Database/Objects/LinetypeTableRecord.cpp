// AcDbLinetypeTableRecord.
#include <algorithm>
#include <string>
#include <vector>

#include "Database/ObjectAccess.h"
#include "dbsymtb.h"

using host::database::DxfType;
using host::database::Record;
using host::database::Tag;
using host::database::TagWriter;

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbLinetypeTableRecord, AcDbSymbolTableRecord)

namespace {

constexpr std::string_view kLinetype = "AcDbLinetypeTableRecord";

[[maybe_unused]] const bool registered = host::database::registerClass(
    {DxfType::LineType, &AcDbLinetypeTableRecord::desc, []() -> AcDbObject* { return new AcDbLinetypeTableRecord; }});

/// A linetype's own values.
struct LinetypeData final : host::database::ObjectData {
  std::string name, comments, flags = "     0";  // in the record's encoding
  std::vector<double> dashes;
  double length = 0;

  void read(host::database::TagCursor tags, const host::text::Codec&) {
    bool inside = false;
    Tag tag;
    while (tags.next(tag)) {
      if (tag.code >= 1000) break;
      if (tag.code == 100) inside = tag.trimmed() == kLinetype;
      if (!inside) continue;
      if (tag.code == 2) name = tag.value;
      if (tag.code == 3) comments = tag.value;
      if (tag.code == 70) flags = tag.value;
      if (tag.code == 40) length = tag.real();
      if (tag.code == 49) dashes.push_back(tag.real());
    }
  }

  void write(TagWriter& out) const override {
    out.raw(100, kLinetype).raw(2, name).raw(70, flags).raw(3, comments).integer(72, 65);
    out.integer(73, static_cast<std::int64_t>(dashes.size())).real(40, length);
    for (const double dash : dashes) out.real(49, dash).integer(74, 0);
  }
};

/// Applies one change to a linetype's values; a record outside a drawing is spelled anew at once, so that its name
/// stands in its tags like that of any record.
template <class Change>
Acad::ErrorStatus changeLinetype(AcDbLinetypeTableRecord& record, Change&& change) {
  if (!HostObjectAccess::canWrite(record)) return Acad::eNotOpenForWrite;
  LinetypeData data;
  data.read(HostObjectAccess::tags(record), HostObjectAccess::codec(record));
  change(data);
  TagWriter out = HostObjectAccess::tagWriter(record);
  data.write(out);
  Record& tags = HostObjectAccess::editRecord(record);
  std::size_t index = 0;
  std::size_t from = host::database::RecordLayout::npos;
  Tag tag;
  for (host::database::TagCursor cursor = tags.tags(); cursor.next(tag) && tag.code < 1000; ++index) {
    if (tag.code == 100 && tag.trimmed() == kLinetype) from = index;
  }
  if (from == host::database::RecordLayout::npos) from = index;
  tags.replace(from, index - from, HostObjectAccess::keep(record, out.take()));
  return Acad::eOk;
}

LinetypeData linetypeOf(const AcDbLinetypeTableRecord& record) {
  LinetypeData data;
  data.read(HostObjectAccess::tags(record), HostObjectAccess::codec(record));
  return data;
}

}  // namespace

AcDbLinetypeTableRecord::AcDbLinetypeTableRecord() {
  const host::text::Codec codec;
  TagWriter out(codec);
  LinetypeData().write(out);
  HostObjectAccess::initDetached(*this, "LTYPE", false, out.str());
}

Acad::ErrorStatus AcDbLinetypeTableRecord::setComments(const ACHAR* comments) {
  if (comments == nullptr) return Acad::eInvalidInput;
  const std::string text = HostObjectAccess::codec(*this).encode(comments);
  return changeLinetype(*this, [&](LinetypeData& data) { data.comments = text; });
}

double AcDbLinetypeTableRecord::patternLength() const { return linetypeOf(*this).length; }

void AcDbLinetypeTableRecord::setPatternLength(double length) {
  changeLinetype(*this, [&](LinetypeData& data) { data.length = length; });
}

int AcDbLinetypeTableRecord::numDashes() const { return static_cast<int>(linetypeOf(*this).dashes.size()); }

void AcDbLinetypeTableRecord::setNumDashes(int count) {
  constexpr int kMostDashes = 12;
  changeLinetype(*this, [&](LinetypeData& data) {
    data.dashes.resize(static_cast<std::size_t>(std::clamp(count, 0, kMostDashes)));
  });
}

double AcDbLinetypeTableRecord::dashLengthAt(int index) const {
  const LinetypeData data = linetypeOf(*this);
  return index >= 0 && index < static_cast<int>(data.dashes.size()) ? data.dashes[static_cast<std::size_t>(index)] : 0;
}

void AcDbLinetypeTableRecord::setDashLengthAt(int index, double length) {
  changeLinetype(*this, [&](LinetypeData& data) {
    if (index >= 0 && index < static_cast<int>(data.dashes.size()))
      data.dashes[static_cast<std::size_t>(index)] = length;
  });
}
