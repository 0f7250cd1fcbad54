#include "Database/UnwrittenTags.h"

#include "Database/Store/Parts.h"

namespace host::database {

const std::string_view& UnwrittenTags::text() {
  if (isWritten()) return text_;
  DrawingDatabase& db = slot_->database();
  const std::lock_guard lock(db.parts().spelling);
  if (!isWritten()) {
    TagWriter out = db.tagWriter();
    write(out);
    text_ = db.keep(out.str());
    isWritten_.store(true, std::memory_order_release);
  }
  return text_;
}

void UnwrittenTags::write(TagWriter& out) const {
  if (isWritten()) {
    out.bytes(text_);
    return;
  }
  out.raw(0, fixedTypeName(slot_->type)).handle(5, slot_->handle);
  if (reactor_ != 0) out.raw(102, "{ACAD_REACTORS").handle(330, reactor_).raw(102, "}");
  out.handle(330, slot_->owner->handle).raw(100, "AcDbEntity").bytes(common_->text);
  own_->write(out);
}

void UnmadeVertices::write(TagWriter& out, const Slot& polyline, std::uint32_t index) const {
  out.raw(0, fixedTypeName(index < count ? DxfType::Vertex3d : DxfType::SeqEnd));
  out.handle(5, polyline.handle + 1 + index).handle(330, polyline.handle).raw(100, "AcDbEntity").bytes(common->text);
  if (index == count) return;
  const AcGePoint3d& point = points[index];
  out.raw(100, "AcDbVertex").raw(100, "AcDb3dPolylineVertex").point(10, point.x, point.y, point.z).integer(70, 32);
}

void UnmadeVertices::writeAll(TagWriter& out, const Slot& polyline) const {
  for (std::uint32_t i = 0; i <= count; ++i) write(out, polyline, i);
}

Slot* Slot::makeSubs() const {
  Slot& polyline = const_cast<Slot&>(*this);
  const UnmadeVertices& vertices = *unmade;
  DrawingDatabase& db = database();
  DrawingDatabase::Parts& parts = db.parts();
  Slot* first = nullptr;
  Slot** link = &first;
  for (std::uint32_t i = 0; i <= vertices.count; ++i) {
    Slot* const sub = parts.slots.makeLate();
    sub->type = i < vertices.count ? DxfType::Vertex3d : DxfType::SeqEnd;
    sub->owner = &polyline;
    sub->handle = handle + 1 + i;
    sub->layer = vertices.common->layer;
    sub->flags = kEntity | kSubEntity | kNew | kFollows | kErased;  // until all of them are there
    TagWriter out = db.tagWriter();
    vertices.write(out, *this, i);
    parts.slots.live(*sub).record = Record(db.keep(out.str()));
    *link = sub;
    link = &sub->nextSub;
  }
  for (Slot* sub = first; sub != nullptr; sub = sub->nextSub) {
    sub->flags = static_cast<std::uint16_t>((sub->flags & ~kErased) | (flags & kErased));
  }
  polyline.madeSub = first;
  polyline.flags = static_cast<std::uint16_t>(flags & ~kUnmade);
  return first;
}

Slot* findVertex(Slot& polyline, std::uint64_t handle) {
  if (polyline.type != DxfType::Polyline3d || (polyline.flags & kNew) == 0) return nullptr;
  const UnmadeVertices* const unmade = polyline.unmadeVertices();
  if (unmade != nullptr && handle > polyline.handle + unmade->handles()) return nullptr;
  Slot* sub = polyline.firstSub();
  while (sub != nullptr && sub->handle != handle) sub = sub->nextSub;
  return sub;
}

void followErasing(Slot& polyline) {
  if (polyline.type != DxfType::Polyline3d || (polyline.flags & kUnmade) != 0) return;
  for (Slot* sub = polyline.madeSub; sub != nullptr; sub = sub->nextSub) {
    if ((sub->flags & kFollows) == 0) continue;
    sub->flags = static_cast<std::uint16_t>((sub->flags & ~kErased) | (polyline.flags & kErased));
  }
}

}  // namespace host::database
