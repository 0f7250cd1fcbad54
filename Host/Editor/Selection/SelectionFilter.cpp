#include "Editor/Selection/SelectionFilter.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Database/ResbufTypes.h"
#include "Text/Text.h"
#include "dbmain.h"

namespace host::editor {
namespace {

using database::Slot;

enum class ValueKind { None, Text, Real, Integer, Point, Handle };

/// How a group's value is compared, by the ranges of group codes.
ValueKind kindOf(int code) {
  if (code == 5 || code == 105 || (code >= 320 && code <= 369) || (code >= 390 && code <= 399))
    return ValueKind::Handle;
  if ((code >= 0 && code <= 9) || code == 100 || code == 102 || (code >= 300 && code <= 319) ||
      (code >= 410 && code <= 419) || (code >= 430 && code <= 439) || (code >= 470 && code <= 481))
    return ValueKind::Text;
  if ((code >= 10 && code <= 18) || code == 210) return ValueKind::Point;
  if ((code >= 19 && code <= 59) || (code >= 110 && code <= 149) || (code >= 211 && code <= 239) ||
      (code >= 460 && code <= 469))
    return ValueKind::Real;
  if ((code >= 60 && code <= 99) || (code >= 160 && code <= 179) || (code >= 270 && code <= 299) ||
      (code >= 370 && code <= 389) || (code >= 400 && code <= 409) || (code >= 420 && code <= 429) ||
      (code >= 440 && code <= 459))
    return ValueKind::Integer;
  return ValueKind::None;
}

bool compareReal(double a, std::wstring_view relation, double b) {
  if (relation.empty() || relation == L"=") return a == b;
  if (relation == L"*") return true;
  if (relation == L"!=" || relation == L"/=" || relation == L"<>") return a != b;
  if (relation == L"<") return a < b;
  if (relation == L"<=") return a <= b;
  if (relation == L">") return a > b;
  if (relation == L">=") return a >= b;
  return false;
}

bool compareInteger(std::int64_t a, std::wstring_view relation, std::int64_t b) {
  if (relation == L"&") return (a & b) != 0;
  if (relation == L"&=") return (a & b) == b;
  if (relation.empty() || relation == L"=") return a == b;
  if (relation == L"*") return true;
  if (relation == L"!=" || relation == L"/=" || relation == L"<>") return a != b;
  if (relation == L"<") return a < b;
  if (relation == L"<=") return a <= b;
  if (relation == L">") return a > b;
  if (relation == L">=") return a >= b;
  return false;
}

/// "*,>=,*" has one relation for each coordinate; a single one holds for all.
bool comparePoint(const double (&a)[3], std::wstring_view relation, const double (&b)[3]) {
  std::wstring_view rest = relation;
  std::wstring_view current = relation;
  const bool isList = relation.find(L',') != std::wstring_view::npos;
  for (int i = 0; i < 3; ++i) {
    if (isList) {
      const std::size_t comma = std::min(rest.find(L','), rest.size());
      current = rest.substr(0, comma);
      rest = comma < rest.size() ? rest.substr(comma + 1) : std::wstring_view();
      if (current.empty()) current = L"*";
    }
    if (!compareReal(a[i], current, b[i])) return false;
  }
  return true;
}

struct Test {
  int code = 0;
  std::wstring relation;
  std::wstring text;
  double real = 0;
  std::int64_t integer = 0;
  std::uint64_t handle = 0;
  double point[3] = {0, 0, 0};
  /// Code -3: an application's name and values of its data, which stand one after the other.
  struct XDataTest {
    std::wstring application;
    struct Value {
      int code = 0;
      std::wstring text;
      double number = 0;
    };
    std::vector<Value> values;
  };
  std::vector<XDataTest> xdata;
};

/// Value of a group that an entity without it has; nothing when it has none.
std::optional<std::int64_t> missingInteger(int code) {
  switch (code) {
    case 62:
      return 256;
    case 370:
      return -1;
    case 60:
    case 67:
      return 0;
    default:
      return std::nullopt;
  }
}

std::optional<double> missingReal(int code) {
  if (code == 48) return 1.0;
  if (code == 39) return 0.0;
  return std::nullopt;
}

}  // namespace

struct SelectionFilter::Node {
  enum class Kind { And, Or, Xor, Not, Type, Layer, Space, Layout, Group, XData };

  Kind kind = Kind::And;
  std::vector<std::unique_ptr<Node>> children;
  Test test;
  const database::DrawingDatabase* drawing = nullptr;
  // Answers by type, layer and block are the same for thousands of entities.
  enum class Known : std::uint8_t { NotYet, No, Yes };
  mutable std::vector<Known> knownByNumber;
  mutable std::unordered_map<const Slot*, bool> knownByBlock;

  /// Types and layers are small numbers.
  template <class Ask>
  bool remembered(std::size_t number, const Ask& ask) const {
    if (number >= knownByNumber.size()) knownByNumber.resize(number + 1, Known::NotYet);
    Known& known = knownByNumber[number];
    if (known == Known::NotYet) known = ask() ? Known::Yes : Known::No;
    return known == Known::Yes;
  }
  template <class Ask>
  bool remembered(const Slot* block, const Ask& ask) const {
    const auto found = knownByBlock.find(block);
    if (found != knownByBlock.end()) return found->second;
    return knownByBlock.emplace(block, ask()).first->second;
  }

  bool matchesText(std::wstring_view value) const {
    const bool equal = text::matchesWildcard(value, test.text);
    const std::wstring& relation = test.relation;
    return relation == L"!=" || relation == L"/=" || relation == L"<>" ? !equal : equal;
  }

  bool isInPaper(const Slot& entity) const {
    return remembered(entity.owner, [&] { return entity.owner != drawing->modelSpace().record; });
  }

  bool matchesLayout(const Slot& entity) const {
    return remembered(entity.owner, [&] {
      for (const auto& [name, block] : drawing->layouts()) {
        if (block != nullptr && block->record == entity.owner) return matchesText(name);
      }
      return false;
    });
  }

  bool matchesTag(const database::Tag& tag, database::TagCursor rest) const {
    switch (kindOf(test.code)) {
      case ValueKind::Text:
        return matchesText(drawing->codec().decode(tag.value));
      case ValueKind::Handle:
        return test.handle == tag.handle();
      case ValueKind::Real:
        return compareReal(tag.real(), test.relation, test.real);
      case ValueKind::Integer:
        return compareInteger(tag.integer(), test.relation, test.integer);
      case ValueKind::Point: {
        double point[3] = {tag.real(), 0, 0};
        database::Tag next;
        for (int i = 1; i < 3 && rest.next(next) && next.code == test.code + 10 * i; ++i) point[i] = next.real();
        return comparePoint(point, test.relation, test.point);
      }
      case ValueKind::None:
        break;
    }
    return true;
  }

  bool matchesGroup(const Slot& entity) const {
    database::Tag tag;
    bool isPresent = false;
    bool inBraces = false;
    for (database::TagCursor tags = entity.tags(); tags.next(tag);) {
      if (tag.code == 1001) break;
      if (tag.code == 102) inBraces = tag.trimmed().starts_with('{');
      if (inBraces || tag.code != test.code) continue;
      isPresent = true;
      if (matchesTag(tag, tags)) return true;
    }
    if (isPresent) return false;
    if (test.code == 6) return matchesText(L"BYLAYER");
    if (const auto integer = missingInteger(test.code)) return compareInteger(*integer, test.relation, test.integer);
    if (const auto real = missingReal(test.code)) return compareReal(*real, test.relation, test.real);
    return false;
  }

  bool isXDataValue(const database::Tag& tag, const Test::XDataTest::Value& value) const {
    if (tag.code != value.code) return false;
    const bool isText = database::valueKind(value.code) == database::ValueKind::Text;
    return isText ? text::matchesWildcard(drawing->codec().decode(tag.value), value.text) : tag.real() == value.number;
  }

  /// Whether the values stand one after the other in the data that the cursor is at the beginning of.
  bool hasValues(database::TagCursor data, const std::vector<Test::XDataTest::Value>& values) const {
    if (values.empty()) return true;
    database::Tag tag;
    for (database::TagCursor at = data; data.next(tag) && tag.code != 1001; at = data) {
      std::size_t fits = 0;
      while (fits < values.size() && at.next(tag) && isXDataValue(tag, values[fits])) ++fits;
      if (fits == values.size()) return true;
    }
    return false;
  }

  bool hasXData(const Slot& entity) const {
    if ((entity.flags & database::kHasXData) == 0) return false;
    std::vector<bool> found(test.xdata.size());
    std::size_t missing = found.size();
    database::Tag tag;
    bool any = false;
    for (database::TagCursor tags = entity.tags(); tags.next(tag);) {
      if (tag.code != 1001) continue;
      any = true;
      const std::wstring name = drawing->codec().decode(tag.value);
      for (std::size_t i = 0; i < found.size(); ++i) {
        const Test::XDataTest& wanted = test.xdata[i];
        if (found[i] || !text::matchesWildcard(name, wanted.application) || !hasValues(tags, wanted.values)) continue;
        found[i] = true;
        --missing;
      }
    }
    return any && missing == 0;
  }

  bool matches(const Slot& entity) const {
    switch (kind) {
      case Kind::And:
        for (const auto& child : children) {
          if (!child->matches(entity)) return false;
        }
        return true;
      case Kind::Or:
        for (const auto& child : children) {
          if (child->matches(entity)) return true;
        }
        return false;
      case Kind::Xor:
        return children[0]->matches(entity) != children[1]->matches(entity);
      case Kind::Not:
        return !children[0]->matches(entity);
      case Kind::Type:
        return remembered(static_cast<std::size_t>(entity.type),
                          [&] { return matchesText(text::fromUtf8(drawing->typeName(entity))); });
      case Kind::Layer:
        return remembered(std::size_t{entity.layer}, [&] { return matchesText(drawing->layerName(entity.layer)); });
      case Kind::Space:
        return compareInteger(isInPaper(entity) ? 1 : 0, test.relation, test.integer);
      case Kind::Layout:
        return matchesLayout(entity);
      case Kind::Group:
        return matchesGroup(entity);
      case Kind::XData:
        return hasXData(entity);
    }
    return false;
  }
};

namespace {

using Node = SelectionFilter::Node;

/// Builds the tree; a failure is remembered, not thrown.
class Compiler {
 public:
  Compiler(const resbuf* list, const database::DrawingDatabase& drawing) : next_(list), drawing_(drawing) {}

  std::unique_ptr<Node> compile() {
    std::unique_ptr<Node> root = make(Node::Kind::And);
    fill(*root, {}, 0);
    return failed_ ? nullptr : std::move(root);
  }

 private:
  static constexpr int kDeepest = 64;

  std::unique_ptr<Node> make(Node::Kind kind) const {
    auto node = std::make_unique<Node>();
    node->kind = kind;
    node->drawing = &drawing_;
    return node;
  }

  /// Takes items up to the closing operator, which is empty for the list itself.
  void fill(Node& parent, std::wstring_view closing, int depth) {
    std::wstring relation;
    while (next_ != nullptr && !failed_) {
      const resbuf& item = *next_;
      next_ = next_->rbnext;
      if (item.restype != -4) {
        addTest(parent, item, std::exchange(relation, {}));
        continue;
      }
      const std::wstring op = item.resval.rstring != nullptr ? text::folded(item.resval.rstring) : std::wstring();
      if (op.size() > 1 && op.back() == L'>' && op != L"<>") {
        failed_ = op != closing;
        return;
      }
      if (op == L"<and" || op == L"<or" || op == L"<xor" || op == L"<not") {
        openGroup(parent, op, depth);
      } else {
        relation = op;
      }
    }
    if (!closing.empty()) failed_ = true;
  }

  void openGroup(Node& parent, const std::wstring& op, int depth) {
    const Node::Kind kind = op == L"<and"   ? Node::Kind::And
                            : op == L"<or"  ? Node::Kind::Or
                            : op == L"<xor" ? Node::Kind::Xor
                                            : Node::Kind::Not;
    std::unique_ptr<Node> group = make(kind);
    if (depth >= kDeepest) {
      failed_ = true;
      return;
    }
    fill(*group, op.substr(1) + L">", depth + 1);
    const std::size_t count = group->children.size();
    const bool fits = kind == Node::Kind::Xor ? count == 2 : kind == Node::Kind::Not ? count == 1 : count >= 1;
    failed_ = failed_ || !fits;
    parent.children.push_back(std::move(group));
  }

  void addTest(Node& parent, const resbuf& item, std::wstring relation) {
    const int code = item.restype;
    if (code == -3) {
      std::unique_ptr<Node> node = make(Node::Kind::XData);
      for (; next_ != nullptr && next_->restype >= 1000; next_ = next_->rbnext) {
        if (next_->restype == 1001) {
          node->test.xdata.push_back({textOf(*next_), {}});
        } else if (!node->test.xdata.empty()) {
          node->test.xdata.back().values.push_back(xdataValue(*next_));
        }
      }
      parent.children.push_back(std::move(node));
      return;
    }
    const int group = code == RTDXF0 ? 0 : code;
    const ValueKind kind = kindOf(group);
    // Codes that no entity is tested by are passed over.
    if (group < 0 || group == 5 || group > 1000 || kind == ValueKind::None) return;
    std::unique_ptr<Node> node = make(group == 0     ? Node::Kind::Type
                                      : group == 8   ? Node::Kind::Layer
                                      : group == 67  ? Node::Kind::Space
                                      : group == 410 ? Node::Kind::Layout
                                                     : Node::Kind::Group);
    Test& test = node->test;
    test.code = group;
    test.relation = std::move(relation);
    switch (kind) {
      case ValueKind::Text:
        test.text = textOf(item);
        break;
      case ValueKind::Handle:
        test.handle = handleOf(item);
        break;
      case ValueKind::Real:
        test.real = item.resval.rreal;
        break;
      case ValueKind::Integer:
        test.integer = integerOf(item);
        break;
      case ValueKind::Point:
        for (int i = 0; i < 3; ++i) test.point[i] = item.resval.rpoint[i];
        break;
      case ValueKind::None:
        break;
    }
    parent.children.push_back(std::move(node));
  }

  // The code of an item says where it holds its value, as everywhere in chains.

  static std::wstring textOf(const resbuf& item) { return item.resval.rstring != nullptr ? item.resval.rstring : L""; }

  static Test::XDataTest::Value xdataValue(const resbuf& item) {
    switch (database::valueKind(item.restype)) {
      case database::ValueKind::Text:
        return {item.restype, textOf(item), 0};
      case database::ValueKind::Real:
        return {item.restype, {}, item.resval.rreal};
      default:
        return {item.restype, {}, static_cast<double>(integerOf(item))};
    }
  }

  static std::uint64_t handleOf(const resbuf& item) {
    if (database::valueKind(item.restype) != database::ValueKind::Name)
      return text::parseHandle(text::toUtf8(textOf(item)));
    AcDbObjectId id;
    return acdbGetObjectId(id, item.resval.rlname) == Acad::eOk ? static_cast<Adesk::UInt64>(id.handle()) : 0;
  }

  static std::int64_t integerOf(const resbuf& item) {
    switch (database::valueKind(item.restype)) {
      case database::ValueKind::Long64:
        return item.resval.mnInt64;
      case database::ValueKind::Long:
        return item.resval.rlong;
      default:
        return item.resval.rint;
    }
  }

  const resbuf* next_;
  const database::DrawingDatabase& drawing_;
  bool failed_ = false;
};

}  // namespace

SelectionFilter::SelectionFilter(std::unique_ptr<Node> root) : root_(std::move(root)) {}
SelectionFilter::SelectionFilter(SelectionFilter&&) noexcept = default;
SelectionFilter& SelectionFilter::operator=(SelectionFilter&&) noexcept = default;
SelectionFilter::~SelectionFilter() = default;

std::optional<SelectionFilter> SelectionFilter::compile(const resbuf* list, const database::DrawingDatabase& drawing) {
  std::unique_ptr<Node> root = Compiler(list, drawing).compile();
  if (root == nullptr) return std::nullopt;
  return SelectionFilter(std::move(root));
}

bool SelectionFilter::matches(const Slot& entity) const { return root_->matches(entity); }

}  // namespace host::editor
