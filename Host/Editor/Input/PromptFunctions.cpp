// Questions, messages and variables of the C interface.
#include <cmath>
#include <cstdarg>
#include <cwchar>

#include "Editor/DialogInput.h"
#include "Editor/Session/Session.h"
#include "Text/Text.h"
#include "Text/WideFormat.h"
#include "acedads.h"
#include "acutads.h"
#include "acutmem.h"

namespace {

using host::editor::Limits;
using host::editor::Outcome;
using host::editor::Prompter;
using host::editor::Reply;
using host::editor::Session;

constexpr int kErrnoMissed = 7;
constexpr int kErrnoEnter = 52;

std::wstring_view orEmpty(const ACHAR* text) { return text != nullptr ? std::wstring_view(text) : std::wstring_view(); }

/// What acedInitGet set, good for one question.
Limits takeLimits() { return Session::instance().takeNextLimits(); }

template <class T>
int resultOf(const Reply<T>& reply) {
  switch (reply.outcome) {
    case Outcome::Value:
      return RTNORM;
    case Outcome::Enter:
      return RTNONE;
    case Outcome::Keyword:
      Session::instance().setLastInput(reply.keyword);
      return RTKWORD;
    default:
      return RTCAN;
  }
}

/// Copies text with its terminator, cut to the buffer.
void copyText(std::wstring_view text, ACHAR* out, std::size_t size) {
  const std::size_t count = std::min(text.size(), size - 1);
  std::copy_n(text.data(), count, out);
  out[count] = 0;
}

}  // namespace

int acutPrintf(const ACHAR* format, ...) {
  if (format == nullptr) return RTERROR;
  std::va_list arguments;
  va_start(arguments, format);
  const std::wstring text = host::text::formatWide(format, arguments);
  va_end(arguments);
  Session::instance().transcript().print(text);
  return RTNORM;
}

int acedAlert(const ACHAR* text) {
  host::editor::showNotice(host::editor::programName(), orEmpty(text));
  return RTNORM;
}

int acedInitGet(int bits, const ACHAR* keywords) {
  Limits limits;
  limits.bits = bits;
  if (keywords != nullptr) limits.keywords = host::editor::Keywords(keywords);
  Session::instance().setNextLimits(std::move(limits));
  return RTNORM;
}

int acedEntSel(const ACHAR* prompt, ads_name entity, ads_point point) {
  if (entity == nullptr) return RTERROR;
  Session& session = Session::instance();
  if (session.documents().current() == nullptr) return RTERROR;
  session.variables().setErrno(0);
  const auto reply = Prompter(session).entity(prompt != nullptr ? prompt : L"Select object: ", takeLimits());
  switch (reply.outcome) {
    case Outcome::Cancel:
      return RTCAN;
    case Outcome::Keyword:
      return resultOf(reply);
    case Outcome::Enter:
      session.variables().setErrno(kErrnoEnter);
      return RTERROR;
    case Outcome::Value:
      break;
  }
  if (point != nullptr) {
    point[0] = reply.value.point.x;
    point[1] = reply.value.point.y;
    point[2] = reply.value.point.z;
  }
  if (reply.value.entity == nullptr) {
    session.variables().setErrno(kErrnoMissed);
    return RTERROR;
  }
  host::editor::nameOf(reply.value.entity, entity);
  return RTNORM;
}

int acedGetPoint(const ads_point base, const ACHAR* prompt, ads_point out) {
  if (out == nullptr) return RTERROR;
  Limits limits = takeLimits();
  if (base != nullptr) limits.base = AcGePoint3d(base[0], base[1], base[2]);
  const auto reply = Prompter(Session::instance()).point(orEmpty(prompt), limits);
  if (reply) {
    out[0] = reply.value.x;
    out[1] = reply.value.y;
    out[2] = reply.value.z;
  }
  return resultOf(reply);
}

int acedGetReal(const ACHAR* prompt, ads_real* out) {
  if (out == nullptr) return RTERROR;
  const auto reply = Prompter(Session::instance()).real(orEmpty(prompt), takeLimits());
  if (reply) *out = reply.value;
  return resultOf(reply);
}

int acedGetInt(const ACHAR* prompt, int* out) {
  if (out == nullptr) return RTERROR;
  const auto reply = Prompter(Session::instance()).integer(orEmpty(prompt), takeLimits());
  if (reply) *out = reply.value;
  return resultOf(reply);
}

int acedGetString(int spacesAllowed, const ACHAR* prompt, ACHAR* out, std::size_t size) {
  if (out == nullptr || size == 0) return RTERROR;
  Prompter prompter(Session::instance());
  Limits limits = takeLimits();
  limits.keywords = {};  // strings know no keywords
  const auto reply =
      spacesAllowed != 0 ? prompter.text(orEmpty(prompt), limits) : prompter.word(orEmpty(prompt), limits);
  if (reply.outcome == Outcome::Cancel) return RTCAN;
  copyText(reply.value, out, size);
  return RTNORM;
}

int acedGetKword(const ACHAR* prompt, ACHAR* out, std::size_t size) {
  if (out == nullptr || size == 0) return RTERROR;
  const auto reply = Prompter(Session::instance()).keyword(orEmpty(prompt), takeLimits());
  if (reply.outcome == Outcome::Keyword) {
    Session::instance().setLastInput(reply.keyword);
    copyText(reply.keyword, out, size);
    return RTNORM;
  }
  return resultOf(reply);
}

int acedGetInput(ACHAR* out, std::size_t size) {
  if (out == nullptr || size == 0) return RTERROR;
  copyText(Session::instance().lastInput(), out, size);
  return RTNORM;
}

// ---- system variables -----------------------------------------------------------------------------------------------

int acedGetVar(const ACHAR* name, resbuf* out) {
  if (name == nullptr || out == nullptr) return RTERROR;
  using host::editor::Variable;
  const host::editor::SystemVariables& variables = Session::instance().variables();
  const Variable* const variable = variables.find(name);
  if (variable == nullptr) return RTERROR;
  const host::editor::VariableValue value = variables.get(*variable);
  out->rbnext = nullptr;
  out->resval = {};
  switch (variable->type) {
    case Variable::Type::Short:
      out->restype = RTSHORT;
      out->resval.rint = static_cast<short>(std::get<std::int64_t>(value));
      return RTNORM;
    case Variable::Type::Long:
      out->restype = RTLONG;
      out->resval.rlong = static_cast<Adesk::Int32>(std::get<std::int64_t>(value));
      return RTNORM;
    case Variable::Type::Real:
      out->restype = RTREAL;
      out->resval.rreal = std::get<double>(value);
      return RTNORM;
    case Variable::Type::Text:
      out->restype = RTSTR;
      return acutNewString(std::get<std::wstring>(value).c_str(), out->resval.rstring) == Acad::eOk ? RTNORM : RTERROR;
    case Variable::Type::Point2:
    case Variable::Type::Point3: {
      const AcGePoint3d& point = std::get<AcGePoint3d>(value);
      out->restype = variable->type == Variable::Type::Point2 ? RTPOINT : RT3DPOINT;
      out->resval.rpoint[0] = point.x;
      out->resval.rpoint[1] = point.y;
      out->resval.rpoint[2] = point.z;
      return RTNORM;
    }
  }
  return RTERROR;
}

int acedSetVar(const ACHAR* name, const resbuf* in) {
  if (name == nullptr || in == nullptr) return RTERROR;
  using host::editor::Variable;
  host::editor::SystemVariables& variables = Session::instance().variables();
  const Variable* const variable = variables.find(name);
  if (variable == nullptr) return RTERROR;
  host::editor::VariableValue value;
  switch (variable->type) {
    case Variable::Type::Short:
    case Variable::Type::Long:
      if (in->restype == RTSHORT) {
        value = std::int64_t{in->resval.rint};
      } else if (in->restype == RTLONG) {
        value = std::int64_t{in->resval.rlong};
      } else {
        return RTERROR;
      }
      break;
    case Variable::Type::Real:
      if (in->restype == RTREAL) {
        value = in->resval.rreal;
      } else if (in->restype == RTSHORT) {
        value = double{static_cast<double>(in->resval.rint)};
      } else {
        return RTERROR;
      }
      break;
    case Variable::Type::Text:
      if (in->restype != RTSTR || in->resval.rstring == nullptr) return RTERROR;
      value = std::wstring(in->resval.rstring);
      break;
    case Variable::Type::Point2:
    case Variable::Type::Point3:
      if (in->restype != RTPOINT && in->restype != RT3DPOINT) return RTERROR;
      value =
          AcGePoint3d(in->resval.rpoint[0], in->resval.rpoint[1], in->restype == RT3DPOINT ? in->resval.rpoint[2] : 0);
      break;
  }
  return variables.set(*variable, value) ? RTNORM : RTERROR;
}
