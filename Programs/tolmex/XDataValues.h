// Extended data of entities as keys and values, by the rules of the plug-in.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "Database/DrawingDatabase.h"
#include "acutads.h"

namespace tolmex {

/// The extended data of one application on one entity.
class XDataValues {
 public:
  /// `application` outlives the values.
  XDataValues(const host::database::Slot& slot, const host::database::DrawingDatabase& drawing,
              const wchar_t* application);

  bool isThere() const { return chain_ != nullptr; }
  /// As OrvLib::valueInChain.
  std::optional<std::wstring> value(const wchar_t* key) const;

 private:
  const wchar_t* application_;
  std::unique_ptr<resbuf, int (*)(resbuf*)> chain_{nullptr, &acutRelRb};
};

}  // namespace tolmex
