// Objects, entities, the database and the openers.
#pragma once

#include <cstddef>

#include "acadstrc.h"
#include "acutmem.h"
#include "adslib.h"
#include "dbcolor.h"
#include "dbhandle.h"
#include "dbid.h"
#include "dbidar.h"
#include "gepnt3d.h"
#include "gepnt3dar.h"
#include "rxboiler.h"

class AcDbBlockTable;
class AcDbDatabase;
class AcDbDatabaseReactor;
class AcDbDictionary;
class AcDbEntity;
class AcDbLayerTable;
class AcDbLinetypeTable;
class AcDbRegAppTable;
class AcDbTextStyleTable;

namespace host::database {
class DrawingDatabase;
struct ObjectData;
class Record;
}  // namespace host::database

struct AcDb {
  enum OpenMode { kForRead = 0, kForWrite = 1, kForNotify = 2 };
  enum MeasurementValue { kEnglish = 0, kMetric = 1 };
  enum LineWeight { kLnWt000 = 0, kLnWtByLayer = -1, kLnWtByBlock = -2, kLnWtByLwDefault = -3 };
  enum Poly2dType { k2dSimplePoly = 0, k2dFitCurvePoly = 1, k2dQuadSplinePoly = 2, k2dCubicSplinePoly = 3 };
  enum Poly3dType { k3dSimplePoly = 0, k3dQuadSplinePoly = 1, k3dCubicSplinePoly = 2 };
  enum Vertex2dType { k2dVertex = 0, k2dSplineCtlVertex = 1, k2dSplineFitVertex = 2, k2dCurveFitVertex = 3 };
  enum Vertex3dType { k3dSimpleVertex = 0, k3dControlVertex = 1, k3dFitVertex = 2 };
  enum OsnapMask { kOsMaskNone = 0 };
};

/// Axis-aligned box; empty until the first point.
class AcDbExtents {
 public:
  const AcGePoint3d& minPoint() const { return min_; }
  const AcGePoint3d& maxPoint() const { return max_; }
  Acad::ErrorStatus set(const AcGePoint3d& min, const AcGePoint3d& max) {
    min_ = min;
    max_ = max;
    return Acad::eOk;
  }
  void addPoint(const AcGePoint3d& p) {
    min_ = {std::min(min_.x, p.x), std::min(min_.y, p.y), std::min(min_.z, p.z)};
    max_ = {std::max(max_.x, p.x), std::max(max_.y, p.y), std::max(max_.z, p.z)};
  }

 private:
  AcGePoint3d min_{1e20, 1e20, 1e20};
  AcGePoint3d max_{-1e20, -1e20, -1e20};
};

class ADESK_EXPORT AcGiDrawable : public AcRxObject {
  ACRX_DECLARE_MEMBERS(AcGiDrawable);
};

/// An object of a database. Made with new; once added to a database it belongs to it and is closed, never
/// deleted. Getters of an object opened for read and setters of one opened for write; a setter on an object that is not
/// open for write answers eNotOpenForWrite and changes nothing.
class ADESK_EXPORT AcDbObject : public AcGiDrawable {
  ACRX_DECLARE_MEMBERS(AcDbObject);

 public:
  ~AcDbObject() override;

  AcDbObjectId objectId() const;
  AcDbObjectId ownerId() const;
  AcDbDatabase* database() const;
  void getAcDbHandle(AcDbHandle& handle) const;

  /// Commits and notifies. eNotOpenForRead when it is not open (closed twice, or never in a database).
  Acad::ErrorStatus close();
  /// Read to write. eWasOpenForWrite when it already is; eHadMultipleReaders with several readers.
  Acad::ErrorStatus upgradeOpen();
  /// Write to read. eNotOpenForWrite when it is not open for write.
  Acad::ErrorStatus downgradeOpen();
  /// Marks erased, or with false brings it back. Needs write.
  Acad::ErrorStatus erase(Adesk::Boolean erasing = true);

  Adesk::Boolean isErased() const;
  Adesk::Boolean isReadEnabled() const;
  Adesk::Boolean isWriteEnabled() const;
  Adesk::Boolean isNewObject() const;
  Adesk::Boolean isModified() const;

  /// Null id when there is none.
  AcDbObjectId extensionDictionary() const;
  /// eAlreadyInDb when there is one.
  Acad::ErrorStatus createExtensionDictionary();

  /// A copy of the extended data of one application, or of all with null; null when there is none. Free with acutRelRb.
  virtual resbuf* xData(const ACHAR* regappName = nullptr) const;
  /// Replaces the extended data of the applications named by 1001 items; a name with nothing after it removes it.
  /// eRegappIdNotFound, eXdataSizeExceeded (16 kB per object), eInvalidDxfCode, eBadDxfSequence.
  virtual Acad::ErrorStatus setXData(const resbuf* xdata);

  Acad::ErrorStatus addPersistentReactor(AcDbObjectId reactor);
  Acad::ErrorStatus removePersistentReactor(AcDbObjectId reactor);
  bool hasPersistentReactor(AcDbObjectId reactor) const;

  // For the host's own modules; a plug-in cannot see the types behind them.
  host::database::Slot* hostSlot() const { return slot_; }

 protected:
  AcDbObject();
  friend class host::database::DrawingDatabase;
  friend struct HostObjectAccess;

  host::database::Slot* slot_ = nullptr;                // null until added to a database
  host::database::Record* detached_ = nullptr;          // the record of an object outside any database
  mutable host::database::ObjectData* data_ = nullptr;  // parsed geometry or container, made when first asked for
};

/// Something drawn. Points are in world coordinates unless a class says otherwise.
class ADESK_EXPORT AcDbEntity : public AcDbObject {
  ACRX_DECLARE_MEMBERS(AcDbEntity);

 public:
  AcDbObjectId blockId() const { return ownerId(); }
  AcDbObjectId layerId() const;
  /// A copy of the layer's name, to be freed with acutDelString.
  ACHAR* layer() const;
  /// eKeyNotFound, eDeletedEntry, eWrongObjectType, eWasOpenForWrite (the layer record is open for write).
  virtual Acad::ErrorStatus setLayer(const ACHAR* name, Adesk::Boolean doSubents = true, bool allowHidden = false);
  virtual Acad::ErrorStatus setLayer(AcDbObjectId layer, Adesk::Boolean doSubents = true, bool allowHidden = false);

  /// 0 by block, 256 by layer, 257 not set yet (new entities).
  Adesk::UInt16 colorIndex() const;
  /// eBadColorIndex outside 0..256; the colour then stays.
  virtual Acad::ErrorStatus setColorIndex(Adesk::UInt16 index, Adesk::Boolean doSubents = true);
  AcCmColor color() const;
  virtual Acad::ErrorStatus setColor(const AcCmColor& color, bool doSubents = true, AcDbDatabase* db = nullptr);

  AcDbObjectId linetypeId() const;
  virtual Acad::ErrorStatus setLinetype(const ACHAR* name, Adesk::Boolean doSubents = true);
  virtual Acad::ErrorStatus setLinetype(AcDbObjectId linetype, Adesk::Boolean doSubents = true);

  /// What was not set explicitly becomes the drawing's current layer, colour, linetype; done on append by the host.
  void setDatabaseDefaults(AcDbDatabase* db = nullptr);

  virtual Acad::ErrorStatus highlight() const;
  virtual Acad::ErrorStatus unhighlight() const;

 protected:
  AcDbEntity() = default;
};

class ADESK_EXPORT AcDbCurve : public AcDbEntity {
  ACRX_DECLARE_MEMBERS(AcDbCurve);

 protected:
  AcDbCurve() = default;
};

/// An entity of a class that the host does not model: kept as it is, can be moved to a layer, tagged, erased, ordered.
class ADESK_EXPORT AcDbProxyEntity : public AcDbEntity {
  ACRX_DECLARE_MEMBERS(AcDbProxyEntity);
};

/// An object of a class that the host does not model, kept as it is.
class ADESK_EXPORT AcDbProxyObject : public AcDbObject {
  ACRX_DECLARE_MEMBERS(AcDbProxyObject);
};

/// Told what happens to a database's objects; not owned by the database.
class ADESK_EXPORT AcDbDatabaseReactor : public AcRxObject {
  ACRX_DECLARE_MEMBERS(AcDbDatabaseReactor);

 public:
  virtual void objectAppended(const AcDbDatabase*, const AcDbObject*) {}
  virtual void objectModified(const AcDbDatabase*, const AcDbObject*) {}
  virtual void objectErased(const AcDbDatabase*, const AcDbObject*, Adesk::Boolean) {}
  virtual void goodbye(const AcDbDatabase*) {}
};

/// One drawing.
class ADESK_EXPORT AcDbDatabase : public AcRxObject {
  ACRX_DECLARE_MEMBERS(AcDbDatabase);

 public:
  /// True: the standard tables and dictionaries, metric. False: empty, for readDwgFile.
  explicit AcDbDatabase(bool buildDefaultDrawing = true, bool noDocument = false);
  ~AcDbDatabase() override;

  enum OpenMode {
    kForReadAndReadShare = 1,
    kForReadAndWriteNoShare = 2,
    kForReadAndAllShare = 3,
    kTryForReadShare = 4
  };
  /// Reads a drawing, DXF or DWG, into an empty database; always as a whole, so that sharing modes mean nothing and
  /// nothing stays open. eFileNotFound; eInvalidInput when the database is not empty; eNotAcadFile when the file cannot
  /// be read, the reason being a problem of the database.
  Acad::ErrorStatus readDwgFile(const ACHAR* file, OpenMode mode = kForReadAndReadShare, bool allowCPConversion = false,
                                const wchar_t* password = nullptr);
  Acad::ErrorStatus closeInput(bool closeFile);

  /// Makes a block of the source's model space, with every layer, linetype, style, application and nested block it
  /// uses; names that this drawing has keep this drawing's meaning. A block of the name is redefined: its old contents
  /// go. Objects are always copied, whatever `preserveSource`. eInvalidInput for a name no block can have;
  /// eSelfReference when the source holds a block of the name, or the block would contain itself.
  Acad::ErrorStatus insert(AcDbObjectId& blockId, const ACHAR* name, AcDbDatabase* source, bool preserveSource = true);
  /// The same from a named block of the source. eKeyNotFound when it has none of the name.
  Acad::ErrorStatus insert(AcDbObjectId& blockId, const ACHAR* sourceBlock, const ACHAR* name, AcDbDatabase* source,
                           bool preserveSource = true);

  Acad::ErrorStatus getLayerTable(AcDbLayerTable*& table, AcDb::OpenMode mode = AcDb::kForRead);
  Acad::ErrorStatus getLinetypeTable(AcDbLinetypeTable*& table, AcDb::OpenMode mode = AcDb::kForRead);
  Acad::ErrorStatus getRegAppTable(AcDbRegAppTable*& table, AcDb::OpenMode mode = AcDb::kForRead);
  Acad::ErrorStatus getBlockTable(AcDbBlockTable*& table, AcDb::OpenMode mode = AcDb::kForRead);
  Acad::ErrorStatus getSymbolTable(AcDbLayerTable*& table, AcDb::OpenMode mode) { return getLayerTable(table, mode); }
  Acad::ErrorStatus getSymbolTable(AcDbLinetypeTable*& t, AcDb::OpenMode mode) { return getLinetypeTable(t, mode); }
  Acad::ErrorStatus getSymbolTable(AcDbRegAppTable*& table, AcDb::OpenMode mode) { return getRegAppTable(table, mode); }
  Acad::ErrorStatus getSymbolTable(AcDbBlockTable*& table, AcDb::OpenMode mode) { return getBlockTable(table, mode); }
  Acad::ErrorStatus getNamedObjectsDictionary(AcDbDictionary*& dict, AcDb::OpenMode mode = AcDb::kForRead);
  Acad::ErrorStatus getGroupDictionary(AcDbDictionary*& dict, AcDb::OpenMode mode = AcDb::kForRead);

  AcDbObjectId layerTableId() const;
  AcDbObjectId linetypeTableId() const;
  AcDbObjectId regAppTableId() const;
  AcDbObjectId blockTableId() const;
  AcDbObjectId textStyleTableId() const;
  AcDbObjectId namedObjectsDictionaryId() const;
  AcDbObjectId groupDictionaryId() const;
  AcDbObjectId layerZero() const;
  AcDbObjectId continuousLinetype() const;
  AcDbObjectId byLayerLinetype() const;
  AcDbObjectId byBlockLinetype() const;

  AcDbObjectId clayer() const;
  Acad::ErrorStatus setClayer(AcDbObjectId layer);
  AcDbObjectId celtype() const;
  Acad::ErrorStatus setCeltype(AcDbObjectId linetype);
  AcCmColor cecolor() const;
  Acad::ErrorStatus setCecolor(const AcCmColor& color);
  AcDb::MeasurementValue measurement() const;
  Acad::ErrorStatus setMeasurement(AcDb::MeasurementValue value);

  /// eUnknownHandle for a handle never used. Erased objects resolve; opening them then says eWasErased.
  Acad::ErrorStatus getAcDbObjectId(AcDbObjectId& id, bool createIfNotFound, const AcDbHandle& handle,
                                    Adesk::UInt32 xrefId = 0) const;

  Acad::ErrorStatus addReactor(AcDbDatabaseReactor* reactor) const;
  Acad::ErrorStatus removeReactor(AcDbDatabaseReactor* reactor) const;

  // For the host's own modules.
  host::database::DrawingDatabase& hostDatabase() const { return *impl_; }

 private:
  host::database::DrawingDatabase* impl_;
};

/// Opens any object. eNullObjectId, eWasErased, eWasOpenForWrite, eWasOpenForRead, eAtMaxReaders, eOnLockedLayer.
/// `object` is set only on eOk.
ADESK_EXPORT Acad::ErrorStatus acdbOpenAcDbObject(AcDbObject*& object, AcDbObjectId id, AcDb::OpenMode mode,
                                                  bool openErased = false);
/// The same for entities; eNotAnEntity for others.
ADESK_EXPORT Acad::ErrorStatus acdbOpenAcDbEntity(AcDbEntity*& entity, AcDbObjectId id, AcDb::OpenMode mode,
                                                  bool openErased = false);
/// The same for one class; eNotThatKindOfClass for others.
template <class T>
Acad::ErrorStatus acdbOpenObject(T*& object, AcDbObjectId id, AcDb::OpenMode mode = AcDb::kForRead,
                                 bool openErased = false) {
  AcDbObject* any = nullptr;
  const Acad::ErrorStatus status = acdbOpenAcDbObject(any, id, mode, openErased);
  if (status != Acad::eOk) return status;
  if (!any->isKindOf(T::desc())) {
    any->close();
    return Acad::eNotThatKindOfClass;
  }
  object = static_cast<T*>(any);
  return Acad::eOk;
}

ADESK_EXPORT Acad::ErrorStatus acdbGetObjectId(AcDbObjectId& id, const ads_name name);
ADESK_EXPORT Acad::ErrorStatus acdbGetAdsName(ads_name& name, AcDbObjectId id);

/// Loads one linetype ("*" for all) from a linetype file on the support path. eFileNotFound, eUndefinedLineType,
/// eDuplicateRecordName (already loaded, unchanged).
ADESK_EXPORT Acad::ErrorStatus acdbLoadLineTypeFile(const ACHAR* name, const ACHAR* fileName, AcDbDatabase* db);
