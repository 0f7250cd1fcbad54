#include "OrvLib/ARX/Handles.h"

#include <iterator>

#include "OrvLib/ARX/Opened.h"

namespace OrvLib {

std::wstring handleText(const AcDbObject& object) {
  AcDbHandle handle;
  object.getAcDbHandle(handle);
  ACHAR text[20] = {};
  return handle.getIntoAsciiBuffer(text, std::size(text)) ? text : L"0";
}

AcDbObjectId objectOfHandle(const std::wstring& text) {
  const AcDbDatabase* const db = orWorkingDatabase(nullptr);
  const AcDbHandle handle(text.c_str());
  AcDbObjectId id;
  if (db == nullptr || handle.isNull() || db->getAcDbObjectId(id, false, handle) != Acad::eOk) return {};
  return id;
}

}  // namespace OrvLib
