// Services around the database: working database, file search.
#pragma once

#include "dbmain.h"

class ADESK_EXPORT AcDbHostApplicationServices : public AcRxObject {
  ACRX_DECLARE_MEMBERS(AcDbHostApplicationServices);

 public:
  enum FindFileHint {
    kDefault = 0,
    kFontFile,
    kCompiledShapeFile,
    kTrueTypeFontFile,
    kEmbeddedImageFile,
    kXRefDrawing,
    kPatternFile,
    kARXApplication,
    kFontMapFile
  };

  AcDbDatabase* workingDatabase() const;
  void setWorkingDatabase(AcDbDatabase* db);
  /// The full path of a file looked for in the current folder, the drawing's folder and the support folders.
  /// eFileNotFound; eBufferTooSmall when the path does not fit.
  virtual Acad::ErrorStatus findFile(ACHAR* pathOut, int bufferLength, const ACHAR* fileName,
                                     AcDbDatabase* db = nullptr, FindFileHint hint = kDefault) = 0;

 protected:
  AcDbHostApplicationServices() = default;
};

ADESK_EXPORT AcDbHostApplicationServices* acdbHostApplicationServices();
