// Keeps the scene of a space up to date with the drawing. Reads the drawing, so it is called only while that stands
// still; the scenes that it gives out may be read by any thread.
#pragma once

#include <atomic>
#include <limits>
#include <memory>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "Editor/Observer.h"
#include "Window/Canvas/BoxIndex.h"
#include "Window/Canvas/Scene.h"

namespace host::window {

/// An entity in a scene.
struct SceneRef {
  const SceneChunk* chunk = nullptr;
  std::uint32_t index = 0;
  explicit operator bool() const { return chunk != nullptr; }
  const SceneEntity& operator*() const { return chunk->entities[index]; }
  const SceneEntity* operator->() const { return &chunk->entities[index]; }
};

class SceneKeeper {
 public:
  SceneKeeper(database::DrawingDatabase& drawing, const database::BlockContents& space);
  /// Of the same space as `former`, laid out anew with its coordinates. Gives up when `isUnwanted` says so meanwhile:
  /// there is no scene then.
  SceneKeeper(const SceneKeeper& former, const std::atomic<bool>& isUnwanted);
  ~SceneKeeper();

  /// What looks different now, scene coordinates; many parts are given as one. Nothing, and the keeper is not to be
  /// asked any more, when more than `most` entities had to be laid out.
  std::optional<std::vector<Box>> update(const editor::DrawingChange& change,
                                         std::size_t most = std::numeric_limits<std::size_t>::max());
  /// Lays the curves that can be seen out anew when they are coarser than `deviation` (drawing units).
  std::vector<Box> refine(const Box& visible, double deviation);

  const std::shared_ptr<const Scene>& scene() const { return scene_; }
  SceneRef find(const database::Slot* entity) const;
  /// Calls visit(SceneRef) for entities whose boxes share a point with `box` (scene coordinates), endless ones always.
  template <class Visit>
  void query(const Box& box, const Visit& visit) const {
    index_.query(box, [&](const database::Slot* slot, const Box&) {
      if (const SceneRef entity = find(slot)) visit(entity);
    });
    for (const database::Slot* slot : endless_)
      if (const SceneRef entity = find(slot)) visit(entity);
  }
  /// Place in the draw order, for comparing entities: upper ones have larger numbers.
  std::uint64_t heightOf(SceneRef entity) const;
  database::DrawingDatabase& drawing() const { return drawing_; }
  const database::BlockContents& space() const { return space_; }

 private:
  struct Composer;
  struct Place {
    std::shared_ptr<const SceneChunk> chunk;
    std::uint32_t index = 0;
  };
  /// What entities look like by, apart from their own records.
  struct Styles {
    std::uint64_t general = 0;    // header variables, linetypes, text and dimension styles
    std::uint64_t elsewhere = 0;  // what stands in other blocks
    std::unordered_map<std::uint32_t, std::uint64_t> layers;
    bool operator==(const Styles&) const = default;
  };
  /// Entities to be laid out anew, and how finely.
  using Anew = std::unordered_map<const database::Slot*, double>;

  Styles readStyles() const;
  bool dependsOnOthers(const database::Slot& entity) const;
  std::unordered_set<const database::Slot*> blockRecords() const;
  void begin();
  void chooseOriginAndDeviation();
  void addOlder(const Styles& now, Anew& anew) const;
  std::vector<Box> rebuild(const std::vector<database::Slot*>& order, const Anew& anew);

  database::DrawingDatabase& drawing_;
  const database::BlockContents& space_;
  std::shared_ptr<const Scene> scene_;
  std::unordered_map<const database::Slot*, Place> places_;
  std::unordered_map<const SceneChunk*, std::uint32_t> chunkOrder_;
  BoxIndex<const database::Slot*> index_;
  std::vector<const database::Slot*> endless_;
  Styles styles_;
  std::unordered_set<const database::Slot*> blocks_;  // records of blocks that were there at the last look
  picture::GlyphSource glyphs_;
  Point origin_;
  double deviation_ = 0;  // of curves, until they are looked at closely
  const std::atomic<bool>* isUnwanted_ = nullptr;
};

}  // namespace host::window
