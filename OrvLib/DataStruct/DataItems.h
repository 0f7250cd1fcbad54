// Extended data and records as plain lists of items, which need no host.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace OrvLib {

/// Group codes of extended data.
inline constexpr short kXDataText = 1000;
inline constexpr short kXDataApplication = 1001;
inline constexpr short kXDataControl = 1002;
inline constexpr short kXDataHandle = 1005;

/// A group code and the value of the type that goes with it; no value for a type that the system does not read, such as
/// a point. Handles are hexadecimal text.
struct DataItem {
  using Value = std::variant<std::monostate, std::wstring, double, std::int16_t, std::int32_t>;

  explicit DataItem(short itemCode, Value itemValue = {}) : code(itemCode), value(std::move(itemValue)) {}

  short code;
  Value value;

  /// The text, when the value is one.
  const std::wstring* text() const { return std::get_if<std::wstring>(&value); }
  bool isText(std::wstring_view expected) const { return text() != nullptr && *text() == expected; }
  /// The value as a real, when it is a number.
  std::optional<double> number() const;

  bool operator==(const DataItem&) const = default;
};

/// To be filled item by item: where an allocation fails amid a braced list, GCC 12 destroys items that it has not made.
using DataItems = std::vector<DataItem>;

/// The value of a key in the extended data of one application: the item after the first text (code 1000) that equals
/// `key`, as text whatever its own code (numbers as "%g" and "%d"). A closing brace between them is stepped over.
/// Nothing when the list does not begin with the application's name, the key is missing or its value has no text.
std::optional<std::wstring> valueOfKey(const DataItems& items, std::wstring_view application, std::wstring_view key);

}  // namespace OrvLib
