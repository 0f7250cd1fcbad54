// What a drawing knows by name: layers and linetypes, whose names compare without regard to case, and objects by their
// handles. A null database means the working one. What the host refuses is printed on the command line, a missing layer
// is not.
#pragma once

#include <optional>
#include <string>

#include "OrvLib/ARX/HostInterface.h"

namespace OrvLib {

/// The linetype that every drawing has.
inline constexpr const ACHAR* kContinuous = L"CONTINUOUS";

enum class MakeCurrent { No, Yes };
enum class EnsuredLayer { Failed = 0, Created = 1, Existed = 2, WithoutLinetype = 3 };

/// Makes sure that the layer exists with the colour index (1 to 255; any other leaves the layer's own) and linetype,
/// overwriting those of an existing layer, but for a true colour that the index is the nearest to. A linetype that is
/// neither in the drawing nor in the host's linetype file leaves the layer's own and answers WithoutLinetype. Throws
/// OrvExpAcad when no layer record can be allocated.
EnsuredLayer ensureLayer(const ACHAR* name, int colorIndex, const ACHAR* linetype,
                         MakeCurrent makeCurrent = MakeCurrent::No, AcDbDatabase* db = nullptr);

/// The layer's id. A missing layer is made with the linetype CONTINUOUS and otherwise the host's defaults; an existing
/// one is left as it is. Null id on failure. Throws as ensureLayer.
AcDbObjectId layerMadeIfMissing(const ACHAR* name, AcDbDatabase* db = nullptr);

/// The layer's id; null when it is missing.
AcDbObjectId findLayer(const ACHAR* name, AcDbDatabase* db = nullptr);

/// Colour index of the layer (of a true colour the nearest one); nothing when the layer is missing.
std::optional<int> layerColor(const ACHAR* name, AcDbDatabase* db = nullptr);

/// Whether the layer is there with a true colour, which the index of layerColor only stands for.
bool hasTrueColor(const ACHAR* name, AcDbDatabase* db = nullptr);

/// False for a missing layer and for an index outside 1 to 255; nothing is changed then. A true colour stays when the
/// index is that of layerColor.
bool setLayerColor(const ACHAR* name, int colorIndex, AcDbDatabase* db = nullptr);

struct LayerState {
  bool off = false;
  bool frozen = false;
  bool locked = false;
};

/// Sets all three properties as given. False for a missing layer and when the host refuses (freezing the current one).
bool setLayerState(const ACHAR* name, const LayerState& state, AcDbDatabase* db = nullptr);

/// The linetype's id; a missing one is loaded from the host's "acad.lin". Null id when it is not there either.
AcDbObjectId findOrLoadLinetype(const ACHAR* name, AcDbDatabase* db = nullptr);

/// The handle of an object that is in a drawing as hexadecimal text; "0", which names nothing, for any other.
std::wstring handleText(const AcDbObject& object);

/// The object of the working database that the text names; it may be an erased one. Null id when there is none.
AcDbObjectId objectOfHandle(const std::wstring& handle);

}  // namespace OrvLib
