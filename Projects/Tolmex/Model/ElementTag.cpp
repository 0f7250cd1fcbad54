#include "Tolmex/Model/ElementTag.h"

#include "Tolmex/Model/Names.h"

namespace OrvLib {

ElementTag readElementTag(const DataItems& data) {
  return {valueOfKey(data, kTagApplication, kEntityTypeKey), valueOfKey(data, kTagApplication, kHeightKey),
          valueOfKey(data, kTagApplication, kHatchHandleKey)};
}

DataItems elementTagItems(const std::wstring& category, const std::wstring& height, const std::wstring& hatchHandle) {
  DataItems items;
  items.emplace_back(kXDataApplication, kTagApplication);
  for (const std::wstring& text : {std::wstring(kVersionKey), std::wstring(kVersion), std::wstring(kEntityTypeKey),
                                   category, std::wstring(kHeightKey), height, std::wstring(kHatchHandleKey)}) {
    items.emplace_back(kXDataText, text);
  }
  items.emplace_back(kXDataHandle, hatchHandle);
  return items;
}

}  // namespace OrvLib
