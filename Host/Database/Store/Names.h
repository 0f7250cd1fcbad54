// Names of a drawing as numbers: DXF types and layers.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Database/Slot.h"
#include "Text/Codec.h"
#include "Text/Text.h"

namespace host::database {

/// Names without regard to case, looked up as they are spelled.
struct FoldedHash {
  using is_transparent = void;
  std::size_t operator()(std::wstring_view name) const { return text::foldedHash(name); }
};
struct FoldedEqual {
  using is_transparent = void;
  bool operator()(std::wstring_view a, std::wstring_view b) const { return text::equalFolded(a, b); }
};
template <class T>
using NameMap = std::unordered_map<std::wstring, T, FoldedHash, FoldedEqual>;

struct NameHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
};

/// Fixed DXF names of types ("LWPOLYLINE"); empty from FirstOther on.
std::string_view fixedTypeName(DxfType type);
bool isTableRecord(DxfType type);

/// The DXF types of a drawing: the fixed ones, and others as they are met.
class TypeNames {
 public:
  /// The type of the name, entered when it is new; Unknown when there are too many.
  DxfType enter(std::string_view name);
  std::string_view name(DxfType type) const;

 private:
  std::vector<std::string> others_;  // from DxfType::FirstOther on
  std::unordered_map<std::string, DxfType, NameHash, std::equal_to<>> index_;
};

/// The layers that entities name, whether or not the drawing declares them. Names differ without regard to case; 0 is
/// the number of no layer.
class LayerNames {
 public:
  explicit LayerNames(const text::Codec& codec) : codec_(codec) {}
  LayerNames(const LayerNames&) = delete;
  LayerNames& operator=(const LayerNames&) = delete;

  /// The number of a name in the drawing's encoding, entered when it is new.
  std::uint32_t enter(std::string_view raw);
  /// The number of a name; 0 when no entity and no layer has it.
  std::uint32_t find(std::wstring_view name) const;
  /// The name as its record spells it, else as it was first met.
  std::wstring name(std::uint32_t layer) const;
  /// The layer's table record, or null.
  Slot* record(std::uint32_t layer) const { return layer < layers_.size() ? layers_[layer].record : nullptr; }
  /// Makes the record that of the layer it names, unless a living one is. Asks for no memory when the name is known.
  void bind(Slot* record);
  /// By the layer's record, as it was looked up since `forgetLocks`.
  bool isLocked(std::uint32_t layer);
  void forgetLocks();

 private:
  struct Layer {
    std::string raw;  // in the drawing's encoding, as first met
    Slot* record = nullptr;
    std::optional<bool> isLocked;
  };
  const text::Codec& codec_;
  std::vector<Layer> layers_{Layer{}};
  std::unordered_map<std::string, std::uint32_t, NameHash, std::equal_to<>> byRaw_;
  std::unordered_map<std::wstring, std::uint32_t> byFolded_;
};

}  // namespace host::database
