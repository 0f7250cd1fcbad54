#include "Editor/Input/CodeInput.h"

#include <cstdarg>
#include <memory>

#include "Editor/Session/Session.h"
#include "Text/Text.h"
#include "acedCmdNF.h"

namespace host::editor {
namespace {

Answer makeText(std::wstring text) {
  Answer answer;
  answer.kind = text.empty() ? Answer::Kind::Enter : Answer::Kind::Text;
  answer.text = std::move(text);
  return answer;
}

Answer makePoint(double x, double y, double z) {
  Answer answer;
  answer.kind = Answer::Kind::Point;
  answer.point = {x, y, z};
  return answer;
}

}  // namespace

bool addSelectionSet(CodeInput& input, const ads_name set) {
  const SelectionSet* const found = Session::instance().sets().find(set);
  if (found == nullptr) return false;
  for (database::Slot* entity : found->members) {
    Answer answer;
    answer.kind = Answer::Kind::Entity;
    answer.entity = AcDbObjectId(entity);
    input.add(std::move(answer));
  }
  input.add(makeText({}));
  return true;
}

bool CodeInput::add(const resbuf& item) {
  switch (item.restype) {
    case RTSTR:
      add(makeText(item.resval.rstring != nullptr ? item.resval.rstring : L""));
      return true;
    case RTREAL:
    case RTANG:
    case RTORINT:
      add(makeText(text::fromUtf8(text::formatReal(item.resval.rreal))));
      return true;
    case RTSHORT:
      add(makeText(std::to_wstring(item.resval.rint)));
      return true;
    case RTLONG:
      add(makeText(std::to_wstring(item.resval.rlong)));
      return true;
    case RTPOINT:
      add(makePoint(item.resval.rpoint[0], item.resval.rpoint[1], 0));
      return true;
    case RT3DPOINT:
      add(makePoint(item.resval.rpoint[0], item.resval.rpoint[1], item.resval.rpoint[2]));
      return true;
    case RTENAME: {
      Answer answer;
      answer.kind = Answer::Kind::Entity;
      database::Slot* const slot = entityOf(item.resval.rlname);
      if (slot == nullptr) return false;
      answer.entity = AcDbObjectId(slot);
      add(std::move(answer));
      return true;
    }
    case RTPICKS:
      return addSelectionSet(*this, item.resval.rlname);
    case RTLB:
    case RTLE:
      return true;  // list brackets around a point or an entity
    default:
      return false;
  }
}

Answer CodeInput::next(const Question&) { return next_ < answers_.size() ? answers_[next_++] : Answer(); }

}  // namespace host::editor

int acedCmdS(const resbuf* chain) {
  auto input = std::make_unique<host::editor::CodeInput>();
  for (; chain != nullptr; chain = chain->rbnext) {
    if (!input->add(*chain)) return RTERROR;
  }
  return host::editor::Session::instance().runner().runFromCode(std::move(input));
}

int acedCommandS(int rtype, ...) {
  auto input = std::make_unique<host::editor::CodeInput>();
  bool understood = true;
  std::va_list arguments;
  va_start(arguments, rtype);
  for (int type = rtype; understood && type != 0 && type != RTNONE; type = va_arg(arguments, int)) {
    resbuf item{};
    item.restype = static_cast<short>(type);
    switch (type) {
      case RTSTR:
        item.resval.rstring = const_cast<ACHAR*>(va_arg(arguments, const ACHAR*));
        break;
      case RTREAL:
      case RTANG:
      case RTORINT:
        item.resval.rreal = va_arg(arguments, double);
        break;
      case RTSHORT:
        item.resval.rint = static_cast<short>(va_arg(arguments, int));
        break;
      case RTLONG:
        item.resval.rlong = va_arg(arguments, Adesk::Int32);
        break;
      case RTPOINT:
      case RT3DPOINT: {
        const ads_real* const point = va_arg(arguments, const ads_real*);
        for (int i = 0; point != nullptr && i < (type == RTPOINT ? 2 : 3); ++i) item.resval.rpoint[i] = point[i];
        understood = point != nullptr;
        break;
      }
      case RTENAME:
      case RTPICKS: {
        const Adesk::Int64* const name = va_arg(arguments, const Adesk::Int64*);
        if (name != nullptr) ads_name_set(name, item.resval.rlname);
        understood = name != nullptr;
        break;
      }
      default:
        break;
    }
    understood = understood && input->add(item);
  }
  va_end(arguments);
  if (!understood) return RTERROR;
  return host::editor::Session::instance().runner().runFromCode(std::move(input));
}
