#include "OrvLib/ARX/XData.h"

#include "OrvLib/ARX/AdsResbuf.h"
#include "OrvLib/ARX/DataChain.h"
#include "OrvLib/ARX/Opened.h"

namespace OrvLib {

DataItems readXData(const AcDbObject& object, const ACHAR* application) {
  return itemsOf(AdsResbuf(object.xData(application)).get());
}

bool setXDataRegistered(AcDbObject& object, const ACHAR* application, const resbuf* chain) {
  Acad::ErrorStatus status = object.setXData(chain);
  if (status == Acad::eRegappIdNotFound && acdbRegApp(application) == RTNORM) status = object.setXData(chain);
  return status == Acad::eOk;
}

bool removeXData(AcDbObject& object, const ACHAR* application) {
  if (AdsResbuf(object.xData(application)).isEmpty()) return true;
  const bool wasWritable = object.isWriteEnabled();
  if (!makeWritable(object)) return false;
  AdsResbuf nameOnly;
  nameOnly.append(kXDataApplication, application);
  const Acad::ErrorStatus status = object.setXData(nameOnly.get());
  if (!wasWritable) object.downgradeOpen();
  return status == Acad::eOk || status == Acad::eRegappIdNotFound;
}

}  // namespace OrvLib
