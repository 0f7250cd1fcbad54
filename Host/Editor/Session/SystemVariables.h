// System variables: a table of names, types, and where each value is kept or how it is got and set.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "Problems/Problem.h"
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
  /// A refusal is a clause without the variable's name. Tells the editor's reactors.
  Result<> set(const Variable& variable, const VariableValue& value);
  /// The same from text as typed; `origin` of relative points.
  Result<> setText(const Variable& variable, std::wstring_view text);
  /// Value as SETVAR shows it: strings in quotes.
  std::wstring shown(const Variable& variable) const;

  /// Integer variables of the session that the editor itself reads.
  std::int64_t integer(std::wstring_view name) const;
  void setErrno(int number) { values_[L"ERRNO"] = std::int64_t{number}; }
  void reset() { values_.clear(); }

 private:
  Result<> store(const Variable& variable, const VariableValue& value);

  Session& session_;
  std::map<std::wstring, VariableValue, std::less<>> values_;
};

/// "red", "3", "BYLAYER", "RGB:10,20,30" or "10,20,30"; nothing for anything else.
std::optional<AcCmColor> parseColor(std::wstring_view text);

/// A row of the table.
struct Variable {
  enum class Type { Short, Long, Real, Text, Point2, Point3 };
  enum class Home {
    Session,  // kept by the session until it ends
    Header,   // a variable of the drawing's header
    Host,     // got from the host
    Drawing,  // got from the current drawing; as empty as its type allows without one
  };
  const wchar_t* name;
  Type type;
  Home home;
  bool readOnly;
  const char* headerName = nullptr;  // Home::Header
  int headerCode = 0;
  double initial = 0;                                // numbers; texts start empty
  double minimum = 0, maximum = 0;                   // of numbers that are kept
  VariableValue (*get)(Session& session) = nullptr;  // Home::Host, Home::Drawing
  /// Home::Drawing: sets a value of the right type. A refusal is a clause.
  Result<> (*set)(Session& session, const VariableValue& value) = nullptr;
};

}  // namespace host::editor
