#include "Editor/Prompter.h"

#include <algorithm>
#include <cmath>

#include "Editor/DecimalComma.h"
#include "Editor/Session/Session.h"
#include "Text/Text.h"
#include "adscodes.h"

namespace host::editor {
namespace {

/// "Value must be ..." for a number that the bits of acedInitGet exclude; empty when it is allowed.
std::wstring excluded(double value, int bits) {
  const bool noZero = (bits & RSG_NOZERO) != 0;
  const bool noNegative = (bits & RSG_NONEG) != 0;
  if (noZero && noNegative && value <= 0) return L"Value must be positive and nonzero.";
  if (noNegative && value < 0) return L"Value must be positive or zero.";
  if (noZero && value == 0) return L"Value must be nonzero.";
  return {};
}

bool isNoSnap(std::wstring_view text) {
  if (text.starts_with(L'_')) text.remove_prefix(1);
  return text::equalFolded(text, L"non") || text::equalFolded(text, L"none");
}

}  // namespace

Question Limits::question(std::wstring_view prompt, AnswerForm form, Wanted wanted) const {
  Question question;
  question.prompt = prompt;
  question.form = form;
  question.wanted = wanted;
  if (!keywords.isEmpty()) question.keywords = &keywords;
  question.base = base;
  question.direction = direction;
  question.takesEnter = (bits & RSG_NONULL) == 0;
  question.takesNumber = (bits & RSG_OTHER) != 0;
  return question;
}

template <class T>
Reply<T> Prompter::ask(std::wstring_view prompt, AnswerForm form, Wanted wanted, const Limits& limits,
                       std::wstring_view refusal,
                       const std::function<std::optional<T>(const Answer&, std::wstring& refusal)>& read) {
  Reply<T> reply;
  for (;;) {
    const Answer answer = session_.ask(limits.question(prompt, form, wanted));
    std::wstring why{refusal};
    if (answer.kind == Answer::Kind::Cancel || answer.kind == Answer::Kind::End) return reply;
    if (answer.kind == Answer::Kind::Enter) {
      if ((limits.bits & RSG_NONULL) == 0) {
        reply.outcome = Outcome::Enter;
        return reply;
      }
      why = L"An answer is needed here.";
    } else {
      if (answer.kind == Answer::Kind::Text && !answer.quoted) {
        if (const std::optional<std::wstring> keyword = limits.keywords.match(answer.text)) {
          reply.outcome = Outcome::Keyword;
          reply.keyword = *keyword;
          return reply;
        }
      }
      if (std::optional<T> value = read(answer, why)) {
        reply.outcome = Outcome::Value;
        reply.value = std::move(*value);
        return reply;
      }
      if (answer.kind == Answer::Kind::Text && (limits.bits & RSG_OTHER) != 0) {
        reply.outcome = Outcome::Keyword;
        reply.keyword = answer.text;
        return reply;
      }
    }
    if (why.empty()) continue;
    if (!refuse(why)) return reply;
  }
}

Reply<AcGePoint3d> Prompter::point(std::wstring_view prompt, const Limits& limits) {
  Document* const document = session_.documents().current();
  const AcGePoint3d origin = limits.base.value_or(document != nullptr ? document->lastPoint : AcGePoint3d());
  Reply<AcGePoint3d> reply =
      ask<AcGePoint3d>(prompt, AnswerForm::Word, Wanted::Point, limits, L"Invalid point.",
                       [&origin](const Answer& answer, std::wstring& why) -> std::optional<AcGePoint3d> {
                         if (answer.kind == Answer::Kind::Point) return answer.point;
                         if (answer.kind != Answer::Kind::Text) return std::nullopt;
                         // "_non" before a point turns object snaps off at a screen; there are none here.
                         if (isNoSnap(answer.text)) {
                           why.clear();
                           return std::nullopt;
                         }
                         if (std::count(answer.text.begin(), answer.text.end(), L',') > 2)
                           why = L"Invalid point: x,y with decimal points is wanted, as in 12.5,30.";
                         return parsePoint(answer.text, origin);
                       });
  if (reply) session_.recording().wasPoint(reply.value);
  if (reply && (limits.bits & RSG_2D) != 0) reply.value.z = 0;
  if (reply && document != nullptr) document->lastPoint = reply.value;
  return reply;
}

Reply<double> Prompter::real(std::wstring_view prompt, const Limits& limits) {
  return ask<double>(prompt, AnswerForm::Word, Wanted::Number, limits, L"Requires numeric value.",
                     [this, &limits](const Answer& answer, std::wstring& why) -> std::optional<double> {
                       if (answer.kind != Answer::Kind::Text) return std::nullopt;
                       std::optional<double> value = parseNumber(answer.text);
                       if (const auto pointed = withDecimalPoint(answer.text)) {
                         value = parseNumber(*pointed);
                         line(answer.text + L" is taken as " + *pointed + L".");
                       }
                       if (!value) return std::nullopt;
                       std::wstring problem = excluded(*value, limits.bits);
                       if (problem.empty()) return value;
                       why = std::move(problem);
                       return std::nullopt;
                     });
}

Reply<int> Prompter::integer(std::wstring_view prompt, const Limits& limits) {
  return ask<int>(prompt, AnswerForm::Word, Wanted::Number, limits, L"Requires an integer value.",
                  [&limits](const Answer& answer, std::wstring& why) -> std::optional<int> {
                    if (answer.kind != Answer::Kind::Text) return std::nullopt;
                    const std::optional<std::int64_t> value = parseWhole(answer.text);
                    if (!value) return std::nullopt;
                    if (*value < -32768 || *value > 32767) {
                      why = L"Requires an integer between -32768 and 32767.";
                      return std::nullopt;
                    }
                    std::wstring problem = excluded(static_cast<double>(*value), limits.bits);
                    if (problem.empty()) return static_cast<int>(*value);
                    why = std::move(problem);
                    return std::nullopt;
                  });
}

namespace {

std::optional<std::wstring> asText(const Answer& answer) {
  if (answer.kind == Answer::Kind::Point) return shownPoint(answer.point);
  return answer.kind == Answer::Kind::Text ? std::optional(answer.text) : std::nullopt;
}

}  // namespace

Reply<std::wstring> Prompter::word(std::wstring_view prompt, const Limits& limits) {
  return ask<std::wstring>(prompt, AnswerForm::Word, Wanted::Text, limits, L"Requires text.",
                           [](const Answer& answer, std::wstring&) { return asText(answer); });
}

Reply<std::wstring> Prompter::text(std::wstring_view prompt, const Limits& limits) {
  return ask<std::wstring>(prompt, AnswerForm::Text, Wanted::Text, limits, L"Requires text.",
                           [](const Answer& answer, std::wstring&) { return asText(answer); });
}

Reply<std::wstring> Prompter::keyword(std::wstring_view prompt, const Limits& limits) {
  return ask<std::wstring>(prompt, AnswerForm::Word, Wanted::Keyword, limits, L"Invalid option keyword.",
                           [](const Answer&, std::wstring&) { return std::optional<std::wstring>(); });
}

void Prompter::line(std::wstring_view text) { session_.transcript().line(text); }
bool Prompter::refuse(std::wstring_view sentence) { return session_.refuse(sentence); }

void Prompter::fail(Code code, std::wstring_view sentence) { fail(problemOf(code, text::toUtf8(sentence))); }

void Prompter::fail(Problem problem) {
  session_.transcript().line(text::fromUtf8(problem.sentence()));
  session_.fail(std::move(problem), Session::Shown::Yes);
}

}  // namespace host::editor
