// What the classes of the host interface build on: the record behind an object, its parsed data, its registration.
//
// An object's truth is its record. Simple classes (lines, layers) read and edit tags directly; classes with much
// geometry (polylines, hatches, dictionaries) keep an ObjectData that is read from the record when first asked for and
// written back when the object is closed.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "Database/DrawingDatabase.h"
#include "dbmain.h"

namespace host::database {

class OwnTags;
struct UnmadeVertices;

/// Parsed geometry of one object.
struct ObjectData {
  virtual ~ObjectData() = default;
  /// Set by setters; the owner then rewrites the object's own tags on close.
  bool changed = false;
  /// The object's own tags: from its own subclass marker ("100 AcDbHatch") up to, not including, extended data.
  virtual void write(TagWriter& out) const = 0;
  /// What spells the same tags later, in the memory of the drawing; null when the data are nothing that commands make
  /// by the thousand.
  virtual const OwnTags* shelve(DrawingDatabase& /*db*/) const { return nullptr; }
};

/// What an entity outside any database was given as long as it has no tags.
struct EntityDraft {
  Slot* layer = nullptr;
  std::uint64_t drawing = 0;  // life of the layer's drawing, which may end before the entity does
  int color = -1;             // colour index; -1: none
  bool isColorFirst = false;
};

/// Tags of a subclass that came with a version of the format; drawings of older ones do not have them.
struct LaterTags {
  std::string_view subclass;
  int first, last;  // codes
  DrawingVersion since;
};

/// A run of handles among the tags of a class, behind a tag that counts them. A copy in another drawing keeps those
/// whose objects were copied too.
struct CountedHandles {
  int countCode = 0;  // 0: the class has none
  int handleCode = 0;
};

/// Ties a DXF type to its class of the host interface.
struct ClassEntry {
  DxfType type = DxfType::Unknown;
  AcRxClass* (*description)() = nullptr;
  AcDbObject* (*create)() = nullptr;  // an object to be bound to a slot; owned by the database
  // What copying between drawings has to know of the class's tags.
  std::span<const LaterTags> laterTags = {};
  CountedHandles countedHandles = {};
};
/// Called from namespace-scope initialisers of the module that implements the class. Always answers true.
bool registerClass(const ClassEntry& entry);
const ClassEntry* classEntry(DxfType type);  // null when no module registered the type
/// The type a class was registered for; Unknown for none.
DxfType typeOfClass(const AcRxClass* description);
/// The class of a type; AcDbProxyEntity / AcDbProxyObject for types no module registered.
AcRxClass* classOf(DxfType type, bool isEntity);

}  // namespace host::database

/// The way into AcDbObject for the host's own modules.
struct HostObjectAccess {
  using DrawingDatabase = host::database::DrawingDatabase;
  using ObjectData = host::database::ObjectData;
  using Record = host::database::Record;
  using Slot = host::database::Slot;

  /// While it lives, objects made by this thread are for slots: `initDetached` does nothing.
  struct Binding {
    Binding();
    Binding(const Binding&) = delete;
    Binding& operator=(const Binding&) = delete;
    ~Binding();
  };

  static Slot* slot(const AcDbObject& object) { return object.slot_; }
  /// Ties an object to a slot; the record that it had outside any database goes.
  static void bind(AcDbObject& object, Slot& slot);
  static DrawingDatabase* database(const AcDbObject& object);

  /// Makes the record of an object that is not in a database: "0 <dxf name>", for entities "100 AcDbEntity", then `own`
  /// (tags in UTF-8, from the object's own subclass marker on; may be empty when an ObjectData writes them). Does
  /// nothing while the database makes an object for a slot (Binding), so default constructors simply call it.
  static void initDetached(AcDbObject& object, std::string_view dxfName, bool isEntity, std::string_view own = {});

  /// The tags as they stand (detached, changed or the file's bytes), without pending ObjectData changes.
  static host::database::TagCursor tags(const AcDbObject& object);
  /// The whole record of an object outside any database.
  static std::string detachedBytes(const AcDbObject& object);
  /// Encoding of those tags: the drawing's, or UTF-8 for detached objects.
  static const host::text::Codec& codec(const AcDbObject& object);
  /// A record to edit. Only for objects that are detached or open for write; marks the object modified.
  static Record& editRecord(AcDbObject& object);
  static bool canWrite(const AcDbObject& object);  // detached or open for write
  /// Keeps bytes alive as long as the object's record.
  static std::string_view keep(const AcDbObject& object, std::string_view bytes);
  static host::database::TagWriter tagWriter(const AcDbObject& object);

  /// First tag of the code inside the subclass (empty: anywhere before extended data and outside 102 groups).
  static bool findTag(const AcDbObject& object, std::string_view subclass, int code, host::database::Tag& tag);
  /// Replaces that tag, or adds it at the end of the subclass. `value` is in the record's encoding.
  static void setTag(AcDbObject& object, std::string_view subclass, int code, std::string_view value);
  static void removeTag(AcDbObject& object, std::string_view subclass, int code);

  /// Adds a persistent reactor that the object, open for write, is known not to have.
  static void plantReactor(AcDbObject& object, AcDbObjectId reactor);

  /// The draft of an entity that has no tags yet; null for any other object. Asking for tags ends it.
  static host::database::EntityDraft* draft(const AcDbObject& object);

  static ObjectData* data(const AcDbObject& object) { return object.data_; }
  static void setData(const AcDbObject& object, ObjectData* data);  // takes ownership
};

namespace host::database {

/// The parsed data of an object, read from its record when there is none yet. `T` needs
/// `void read(TagCursor tags, const text::Codec& codec)` and a default constructor.
template <class T>
T& dataOf(const AcDbObject& object) {
  if (HostObjectAccess::data(object) == nullptr) {
    auto data = std::make_unique<T>();
    data->read(HostObjectAccess::tags(object), HostObjectAccess::codec(object));
    HostObjectAccess::setData(object, data.release());
  }
  return static_cast<T&>(*HostObjectAccess::data(object));
}

/// Data to change, or null when the object may not be written to (the setter then answers eNotOpenForWrite).
template <class T>
T* dataToChange(AcDbObject& object) {
  if (!HostObjectAccess::canWrite(object)) return nullptr;
  T& data = dataOf<T>(object);
  if (HostObjectAccess::slot(object) != nullptr) HostObjectAccess::editRecord(object);
  data.changed = true;
  return &data;
}

/// Object coordinate system of an extrusion direction by the arbitrary-axis rule: world = x * ax + y * ay + z * normal.
struct ObjectAxes {
  AcGeVector3d ax{1, 0, 0}, ay{0, 1, 0}, az{0, 0, 1};
  explicit ObjectAxes(const AcGeVector3d& normal = AcGeVector3d::kZAxis);
  AcGePoint3d toWorld(double x, double y, double z) const;
  AcGePoint3d fromWorld(const AcGePoint3d& world) const;
  bool isWorld() const { return az.z > 0 && az.x == 0 && az.y == 0; }
};

}  // namespace host::database
