// Tags of new entities that are written out when they are first read.
//
// A command may make hundreds of thousands of entities that are not looked at before the drawing is saved. Such an
// entity keeps its values in a compact form in the drawing's memory; its record stands for the tags that these values
// spell.
#pragma once

#include <atomic>
#include <cstdint>
#include <string_view>

#include "Database/Record.h"
#include "gepnt3d.h"

namespace host::database {

struct Slot;

/// An entity's own tags, from its subclass marker on, in compact form. Lives in the drawing's memory, so that nothing
/// is ever destroyed.
class OwnTags {
 public:
  virtual void write(TagWriter& out) const = 0;

 protected:
  OwnTags() = default;
  ~OwnTags() = default;
};

/// Layer, colour and linetype of new entities, shared by all that have the same ones.
struct SharedTags {
  std::string_view text;  // in the drawing's encoding and memory
  std::uint32_t layer = 0;
};

/// The whole record of a new entity. Lives in the drawing's memory.
class UnwrittenTags {
 public:
  UnwrittenTags(const Slot& slot, const SharedTags& common, const OwnTags& own)
      : slot_(&slot), common_(&common), own_(&own) {}

  bool isWritten() const { return isWritten_.load(std::memory_order_acquire); }
  /// The tags as text, which is kept from then on. Threads that only read a drawing may ask for it at the same time.
  const std::string_view& text();
  /// The same without keeping them.
  void write(TagWriter& out) const;

  /// Handle of the only persistent reactor, 0 for none.
  std::uint64_t reactor() const { return reactor_; }
  void setReactor(std::uint64_t handle) { reactor_ = handle; }

 private:
  const Slot* slot_;
  const SharedTags* common_;
  const OwnTags* own_;
  std::uint64_t reactor_ = 0;
  std::string_view text_;  // once it is written
  std::atomic<bool> isWritten_ = false;
};

/// The vertices of a new polyline as values, before they become slots. Their handles follow the polyline's, that
/// of the SEQEND last.
struct UnmadeVertices {
  const SharedTags* common = nullptr;
  const AcGePoint3d* points = nullptr;
  std::uint32_t count = 0;

  std::uint64_t handles() const { return std::uint64_t{count} + 1; }
  /// The record of vertex `index`; of the SEQEND for `count`.
  void write(TagWriter& out, const Slot& polyline, std::uint32_t index) const;
  void writeAll(TagWriter& out, const Slot& polyline) const;
};

/// The vertex with the handle of a polyline whose vertices were not made objects with it; null when it has none.
Slot* findVertex(Slot& polyline, std::uint64_t handle);
/// Erases or brings back with the polyline those of its vertices that have not gone their own way.
void followErasing(Slot& polyline);

}  // namespace host::database
