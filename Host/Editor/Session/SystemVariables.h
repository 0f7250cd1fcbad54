// System variables: a table of names, types and homes.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "dbcolor.h"
#include "gepnt3d.h"

namespace host::editor {

class Session;

using VariableValue = std::variant<std::int64_t, double, std::wstring, AcGePoint3d>;

struct Variable;  // a row of the table

class SystemVariables {
 public:
  explicit SystemVariables(Session& session) : session_(session) {}

  /// Row of a name, without regard to case; null when unknown.
  const Variable* find(std::wstring_view name) const;
  std::vector<std::wstring> names() const;
  VariableValue get(const Variable& variable) const;
  /// Why it cannot be set (one sentence without the variable's name), or nothing. Tells the editor's reactors.
  std::optional<std::wstring> set(const Variable& variable, const VariableValue& value);
  /// The same from text as typed; `origin` of relative points.
  std::optional<std::wstring> setText(const Variable& variable, std::wstring_view text);
  /// Value as SETVAR shows it: strings in quotes.
  std::wstring shown(const Variable& variable) const;

  /// Integer variables of the session that the editor itself reads.
  std::int64_t integer(std::wstring_view name) const;
  void setErrno(int number) { values_[L"ERRNO"] = std::int64_t{number}; }
  void reset() { values_.clear(); }

 private:
  std::optional<std::wstring> setSpecial(const Variable& variable, const VariableValue& value, bool& handled);

  Session& session_;
  std::map<std::wstring, VariableValue, std::less<>> values_;
};

/// "red", "3", "BYLAYER", "RGB:10,20,30" or "10,20,30"; nothing for anything else.
std::optional<AcCmColor> parseColor(std::wstring_view text);

/// What a variable is: for the C interface.
struct Variable {
  enum class Type { Short, Long, Real, Text, Point2, Point3 };
  enum class Home { Session, Header, Computed };
  const wchar_t* name;
  Type type;
  Home home;
  bool readOnly;
  const char* headerName;  // Home::Header
  int headerCode;
  double initial;           // numbers; texts start empty
  double minimum, maximum;  // of numbers
};

}  // namespace host::editor
