#include "Editor/Selection/FilterText.h"

#include <cmath>
#include <cwctype>
#include <string>
#include <utility>
#include <vector>

#include "Database/ResbufTypes.h"
#include "Editor/Answers.h"
#include "Text/Text.h"
#include "acutads.h"

namespace host::editor {
namespace {

using database::Chain;

/// What an expression consists of: texts, words (numbers, names, the dot of a pair) and lists.
struct Expression {
  enum class Kind { Text, Word, List };
  Kind kind = Kind::List;
  std::wstring text;
  std::vector<Expression> items;

  bool isWord(std::wstring_view word) const { return kind == Kind::Word && text::equalFolded(text, word); }
  bool isCall(std::wstring_view name) const { return kind == Kind::List && !items.empty() && items[0].isWord(name); }
};

/// What is wrong with the expression, for its user.
struct Refusal {
  std::wstring why;
};

class Reader {
 public:
  explicit Reader(std::wstring_view text) : rest_(text) {}

  Expression whole() {
    Expression expression = next(0);
    skipBlanks();
    if (!rest_.empty()) throw Refusal{L"text stands behind the last \")\""};
    return expression;
  }

 private:
  static constexpr int kDeepest = 64;

  void skipBlanks() {
    while (!rest_.empty() && std::iswspace(static_cast<wint_t>(rest_.front())) != 0) rest_.remove_prefix(1);
  }

  Expression next(int depth) {
    skipBlanks();
    if (rest_.starts_with(L'\'')) {  // lists stand for themselves here, quoted or not
      rest_.remove_prefix(1);
      skipBlanks();
    }
    if (rest_.empty()) throw Refusal{L"a \")\" is missing"};
    if (rest_.front() == L'"') return quoted();
    if (rest_.front() == L'(') return list(depth);
    if (rest_.front() == L')') throw Refusal{L"there is one \")\" too many"};
    Expression word{Expression::Kind::Word, {}, {}};
    while (!rest_.empty() && std::iswspace(static_cast<wint_t>(rest_.front())) == 0 &&
           std::wstring_view(L"()\"'").find(rest_.front()) == std::wstring_view::npos) {
      word.text += rest_.front();
      rest_.remove_prefix(1);
    }
    return word;
  }

  Expression quoted() {
    Expression text{Expression::Kind::Text, {}, {}};
    for (rest_.remove_prefix(1); !rest_.empty() && rest_.front() != L'"'; rest_.remove_prefix(1)) {
      if (rest_.front() == L'\\' && rest_.size() > 1) rest_.remove_prefix(1);
      text.text += rest_.front();
    }
    if (rest_.empty()) throw Refusal{L"a quotation mark is missing"};
    rest_.remove_prefix(1);
    return text;
  }

  Expression list(int depth) {
    if (depth == kDeepest) throw Refusal{L"it is nested too deeply"};
    Expression list;
    rest_.remove_prefix(1);
    for (;;) {
      skipBlanks();
      if (rest_.starts_with(L')')) break;
      list.items.push_back(next(depth + 1));
    }
    rest_.remove_prefix(1);
    return list;
  }

  std::wstring_view rest_;
};

/// Turns the items of a filter list into a chain of result buffers.
class ListBuilder {
 public:
  void addAll(const Expression& list, std::size_t first) {
    for (std::size_t i = first; i < list.items.size(); ++i) addItem(list.items[i]);
  }
  resbuf* chain() {
    if (chain_ == nullptr) chain_ = building_.release();
    return chain_;
  }
  ~ListBuilder() {
    if (chain_ != nullptr) acutRelRb(chain_);
  }
  ListBuilder() = default;
  ListBuilder(const ListBuilder&) = delete;
  ListBuilder& operator=(const ListBuilder&) = delete;

 private:
  static constexpr int kOperator = -4, kXData = -3, kApplication = 1001;

  /// The code and what stands behind it: `(8 . "0")`, `(cons 8 "0")`, `(list 10 1.0 2.0)`, `(10 1.0 2.0)`.
  struct Pair {
    int code = 0;
    std::vector<const Expression*> values;
  };

  static Pair pairOf(const Expression& item) {
    if (item.kind != Expression::Kind::List)
      throw Refusal{L"a filter consists of pairs like (8 . \"LAYER\"), not of " + item.text};
    std::size_t at = item.isCall(L"cons") || item.isCall(L"list") ? 1 : 0;
    if (at == item.items.size()) throw Refusal{L"a pair is empty"};
    const Expression& code = item.items[at++];
    const std::optional<std::int64_t> number =
        code.kind == Expression::Kind::Word ? parseWhole(code.text) : std::nullopt;
    if (!number || *number < -4 || *number > 1071) throw Refusal{L"\"" + code.text + L"\" is no group code"};
    if (at < item.items.size() && item.items[at].isWord(L".")) ++at;
    Pair pair{static_cast<int>(*number), {}};
    for (; at < item.items.size(); ++at) pair.values.push_back(&item.items[at]);
    if (pair.values.empty()) throw Refusal{L"group " + std::to_wstring(pair.code) + L" has no value"};
    return pair;
  }

  static double numberOf(const Expression& value, int code) {
    const std::optional<double> number = value.kind == Expression::Kind::Word ? parseNumber(value.text) : std::nullopt;
    if (!number) throw Refusal{L"group " + std::to_wstring(code) + L" needs a number"};
    return *number;
  }

  void addItem(const Expression& item) {
    const Pair pair = pairOf(item);
    if (pair.code == kXData) return addXData(pair);
    if (pair.values.size() > 1 && database::valueKind(pair.code) != database::ValueKind::Point)
      throw Refusal{L"group " + std::to_wstring(pair.code) + L" has more than one value"};
    addValue(pair);
  }

  void addXData(const Pair& pair) {
    building_.add(kXData);
    for (const Expression* application : pair.values) {
      const bool isList = application->kind == Expression::Kind::List;
      if (isList && application->items.empty()) throw Refusal{L"group -3 names no application"};
      const Expression& name = isList ? application->items[0] : *application;
      if (name.kind != Expression::Kind::Text) throw Refusal{L"group -3 needs a list like (\"APPLICATION\")"};
      building_.addText(kApplication, name.text);
      for (std::size_t i = 1; isList && i < application->items.size(); ++i) addValue(pairOf(application->items[i]));
    }
  }

  void addValue(const Pair& pair) {
    const Expression& value = *pair.values[0];
    const int code = pair.code;
    const auto text = [&] {
      if (value.kind != Expression::Kind::Text)
        throw Refusal{L"group " + std::to_wstring(code) + L" needs a text in quotation marks"};
      return value.text;
    };
    if (code == kOperator) return building_.addText(code, text());
    if (code == 0) return building_.addText(RTDXF0, text());
    switch (database::valueKind(code)) {
      case database::ValueKind::Text:
        return building_.addText(code, text());
      case database::ValueKind::Name:
        throw Refusal{L"group " + std::to_wstring(code) + L" is no group that a filter tests"};
      case database::ValueKind::Point: {
        resbuf* const item = building_.add(code);
        const std::vector<const Expression*> numbers = coordinates(pair);
        for (std::size_t i = 0; i < 3; ++i)
          item->resval.rpoint[i] = i < numbers.size() ? numberOf(*numbers[i], code) : 0;
        return;
      }
      case database::ValueKind::Real:
        building_.add(code)->resval.rreal = numberOf(value, code);
        return;
      case database::ValueKind::Short:
        building_.add(code)->resval.rint = static_cast<short>(whole(value, code, 32767));
        return;
      case database::ValueKind::Long:
        building_.add(code)->resval.rlong = static_cast<Adesk::Int32>(whole(value, code, 2147483647));
        return;
      case database::ValueKind::Long64:
        building_.add(code)->resval.mnInt64 = whole(value, code, 9.0e15);
        return;
      default:
        throw Refusal{L"group " + std::to_wstring(code) + L" is no group that a filter tests"};
    }
  }

  static std::int64_t whole(const Expression& value, int code, double most) {
    const double number = numberOf(value, code);
    if (number != std::floor(number) || std::abs(number) > most)
      throw Refusal{L"group " + std::to_wstring(code) + L" needs a whole number"};
    return static_cast<std::int64_t>(number);
  }

  /// `(10 1 2)`, `(10 . (1 2))` and `(cons 10 (list 1 2))` say the same.
  static std::vector<const Expression*> coordinates(const Pair& pair) {
    if (pair.values.size() > 1 || pair.values[0]->kind != Expression::Kind::List) return pair.values;
    std::vector<const Expression*> numbers;
    for (const Expression& item : pair.values[0]->items) {
      if (!item.isWord(L"list")) numbers.push_back(&item);
    }
    return numbers;
  }

  Chain building_;
  resbuf* chain_ = nullptr;
};

SelectionFilter compiled(Chain& chain, const database::DrawingDatabase& drawing) {
  resbuf* const list = chain.release();
  std::optional<SelectionFilter> filter = SelectionFilter::compile(list, drawing);
  acutRelRb(list);
  return std::move(*filter);  // without grouping operators every list compiles
}

}  // namespace

bool isFilterExpression(std::wstring_view text) {
  if (!text.starts_with(L'(')) return false;
  text.remove_prefix(1);
  while (!text.empty() && text.front() == L' ') text.remove_prefix(1);
  constexpr std::wstring_view kName = L"ssget";
  return text.size() >= kName.size() && text::equalFolded(text.substr(0, kName.size()), kName);
}

Result<FilterExpression> parseFilterExpression(std::wstring_view text, const database::DrawingDatabase& drawing) {
  try {
    const Expression call = Reader(text).whole();
    const std::vector<Expression>& items = call.items;
    if (items.size() < 2 || items[1].kind != Expression::Kind::Text)
      throw Refusal{L"a method in quotation marks is missing: \"X\" or \"A\""};
    std::wstring method = text::folded(items[1].text);
    if (method.starts_with(L'_')) method.erase(0, 1);
    if (method != L"x" && method != L"a" && method != L"all")
      throw Refusal{L"the method \"" + items[1].text + L"\" is not supported; the methods are \"X\" and \"A\""};
    if (items.size() > 3) throw Refusal{L"one filter list is all that it takes"};
    ListBuilder list;
    if (items.size() == 3) {
      if (items[2].kind != Expression::Kind::List) throw Refusal{L"the filter must be a list"};
      list.addAll(items[2], items[2].isCall(L"list") ? 1 : 0);
    }
    std::optional<SelectionFilter> filter = SelectionFilter::compile(list.chain(), drawing);
    if (!filter) throw Refusal{L"the grouping operators do not pair up"};
    return FilterExpression{method == L"x", std::move(*filter)};
  } catch (const Refusal& refusal) {
    return problemOf(Code::AnswerRefused, "(ssget ...): " + text::toUtf8(refusal.why) + ".");
  }
}

SelectionFilter filterOfTag(std::wstring_view application, std::wstring_view key, std::wstring_view value,
                            const database::DrawingDatabase& drawing) {
  Chain chain;
  chain.add(-3);
  chain.addText(1001, std::wstring(application));
  chain.addText(1000, std::wstring(key));
  chain.addText(1000, std::wstring(value));
  return compiled(chain, drawing);
}

SelectionFilter filterOfLayers(std::wstring_view pattern, const database::DrawingDatabase& drawing) {
  Chain chain;
  chain.addText(8, std::wstring(pattern));
  return compiled(chain, drawing);
}

}  // namespace host::editor
