#include "Tolmex/Model/ElementTag.h"

#include "Tolmex/Model/Names.h"

namespace OrvLib {

ElementTag readElementTag(const DataItems& data) {
  return {valueOfKey(data, kTagApplication, kEntityTypeKey), valueOfKey(data, kTagApplication, kHeightKey),
          valueOfKey(data, kTagApplication, kHatchHandleKey)};
}

DataItems elementTagItems(const std::wstring& category, const std::wstring& height, const std::wstring& hatchHandle) {
  return {{kXDataApplication, kTagApplication},
          {kXDataText, kVersionKey},
          {kXDataText, kVersion},
          {kXDataText, kEntityTypeKey},
          {kXDataText, category},
          {kXDataText, kHeightKey},
          {kXDataText, height},
          {kXDataText, kHatchHandleKey},
          {kXDataHandle, hatchHandle}};
}

}  // namespace OrvLib
