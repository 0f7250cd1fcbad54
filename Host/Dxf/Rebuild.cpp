#include "Dxf/Rebuild.h"

#include <algorithm>
#include <charconv>

#include "Database/DefaultDrawing.h"
#include "Database/FreeHandles.h"
#include "Database/Insertion.h"
#include "Dxf/Rebuilder.h"
#include "Text/Text.h"

namespace host::dxf {

namespace {

std::string_view programOf(int version) {
  constexpr std::pair<int, std::string_view> kPrograms[] = {{1014, "R14"}, {1012, "R13"},  {1009, "R12"}, {1006, "R10"},
                                                            {1004, "R9"},  {1003, "R2.6"}, {1002, "R2.5"}};
  for (const auto& [first, name] : kPrograms) {
    if (version >= first) return name;
  }
  return "old";
}

std::string upperCase(std::string_view text) {
  std::string upper(text);
  std::transform(upper.begin(), upper.end(), upper.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
  return upper;
}

/// Variables that drawings of 2000 no longer have.
bool isObsolete(std::string_view variable) {
  static const std::unordered_set<std::string_view> kObsolete = {
      "$FASTZOOM",  "$GRIDMODE", "$GRIDUNIT",     "$SNAPANG",  "$SNAPBASE", "$SNAPISOPAIR", "$SNAPMODE",
      "$SNAPSTYLE", "$SNAPUNIT", "$VIEWCTR",      "$VIEWDIR",  "$VIEWSIZE", "$FLATLAND",    "$HANDLING",
      "$ATTDIA",    "$ATTREQ",   "$BLIPMODE",     "$COORDS",   "$DRAGMODE", "$OSMODE",      "$PICKSTYLE",
      "$MENU",      "$DELOBJ",   "$ACADMAINTVER", "$AXISMODE", "$AXISUNIT", "$DRAGP1",      "$DRAGP2"};
  return kObsolete.contains(variable);
}

/// The empty drawing, whose parts stand in for missing ones. Its text stays, so copies may point into it.
const Outline& basicOutline() {
  static const std::string text = database::defaultDrawingText();
  static const Outline outline = [] {
    ProblemLog silent(text, false);
    return outlineOf(text, silent);
  }();
  return outline;
}

}  // namespace

Rebuilder::Rebuilder(Outline outline, std::string_view lineEnd, ProblemLog& problems)
    : outline_(std::move(outline)), lineEnd_(lineEnd), problems_(problems), basic_(basicOutline()) {}

Rebuilt Rebuilder::run() {
  findVersion();
  giveHandles();
  matchTables();
  matchBlocks();
  findRoot();
  cutBlockCycles();
  settleOwners();
  addMissingNames();

  Rebuilt result;
  result.wasUpgraded = isOld_;
  std::string& out = result.text;
  out.reserve(expectedSize());
  if (outline_.isUtf8) out += kUtf8Mark;
  writeHeader(out);
  writeClasses(out);
  writeSection(out, "TABLES", [&] { writeTables(out); });
  writeSection(out, "BLOCKS", [&] {
    for (Outline::Block& block : outline_.blocks) writeBlock(out, block);
    for (const Outline::Block& block : basic_.blocks) writeBasicBlock(out, block);
  });
  writeSection(out, "ENTITIES", [&] { writeEntities(out); });
  writeSection(out, "OBJECTS", [&] { writeObjects(out); });
  for (const Outline::Section& section : outline_.others) {
    writeSection(out, section.name, [&] {
      out += section.front;
      for (const RawRecord& record : section.records) out += withNewHandles(record.bytes);
    });
  }
  out += writer().raw(0, "EOF").str();
  return result;
}

std::optional<std::string_view> Rebuilder::variable(std::string_view name, int code) const {
  for (const Outline::Variable& candidate : outline_.variables) {
    if (candidate.name == name) return firstValue(candidate.bytes, code);
  }
  return std::nullopt;
}

bool Rebuilder::hasMarks() const {
  const auto isMarked = [](const RawRecord& record) { return record.isMarked(); };
  return std::any_of(outline_.entities.begin(), outline_.entities.end(), isMarked) ||
         std::any_of(outline_.blocks.begin(), outline_.blocks.end(),
                     [&](const Outline::Block& block) { return block.begin.isMarked(); }) ||
         std::any_of(outline_.objects.begin(), outline_.objects.end(), isMarked);
}

void Rebuilder::findVersion() {
  const std::string_view named = trimmed(variable("$ACADVER", 1).value_or(""));
  int number = 0;
  if (named.size() >= 6 && named.substr(0, 2) == "AC") std::from_chars(named.data() + 2, named.data() + 6, number);
  constexpr int kOldest = 1001;
  if (number < kOldest) {
    number = hasMarks() ? kFirstVersion : 1009;
    const std::string what = named.empty() ? "the drawing names no version" : "unknown version " + shown(named);
    problems_.note(Code::VersionConverted, what + "; it is read as AC" + std::to_string(number));
  }
  isOld_ = number < kFirstVersion;
  version_ = isOld_ ? kFirstVersion : number;
  if (isOld_) {
    problems_.note(Code::VersionConverted, "the drawing is of version AC" + std::to_string(number) + " (" +
                                               std::string(programOf(number)) + "); it was upgraded to AC1015 (2000)");
  }
  codePage_ = std::string(trimmed(variable("$DWGCODEPAGE", 3).value_or("ANSI_1252")));
  if (version_ < kFirstUtf8Version && !outline_.isUtf8) codec_ = text::Codec::forCodePage(codePage_);
}

void Rebuilder::giveHandles() {
  std::vector<std::uint64_t> given;
  forEachRecord([&](RawRecord& record, Kind) {
    if (record.handle == 0) return;
    if (handles_.insert(record.handle).second) {
      given.push_back(record.handle);
    } else {
      problems_.add(Code::HandleMended, record.at, record.handle,
                    "the handle is used twice; this " + std::string(record.type.substr(0, 40)) + " gets another");
      record.handle = 0;
    }
  });
  std::sort(given.begin(), given.end());
  highestHandle_ = given.empty() ? 0 : given.back();
  Tag seed;
  seed.value = variable("$HANDSEED", 5).value_or("");
  seed_ = seed.handle();
  nextHandle_ = database::findFreeHandles(given, highestHandle_, seed_).begin;
  forEachRecord([&](RawRecord& record, Kind) {
    if (record.handle != 0) return;
    record.handle = newHandle();
    const auto odd = outline_.oddHandles.find(record.at);
    if (odd == outline_.oddHandles.end() || odd->second.handle.empty()) return;
    problems_.add(Code::HandleMended, record.at, record.handle,
                  shown(odd->second.handle) + " is no handle; this " + std::string(record.type.substr(0, 40)) +
                      " gets another, and so does what names it");
    newHandles_.try_emplace(upperCase(odd->second.handle), record.handle);
  });
  forEachRecord([&](RawRecord& record, Kind) {
    if (record.owner != 0 || newHandles_.empty()) return;
    const auto odd = outline_.oddHandles.find(record.at);
    Tag owner;
    if (odd != outline_.oddHandles.end()) owner.value = odd->second.owner;
    record.owner = resolved(owner);
  });
  // Handles of added objects keep their distances.
  basicOffset_ = nextHandle_;
  constexpr std::uint64_t kRoom = 0x100;
  nextHandle_ += kRoom;
}

std::uint64_t Rebuilder::resolved(const Tag& tag) const {
  if (newHandles_.empty()) return tag.handle();
  if (const std::uint64_t handle = handleIn(tag.value); handle != 0) return handle;
  const auto found = newHandles_.find(upperCase(tag.trimmed()));
  return found != newHandles_.end() ? found->second : 0;
}

bool Rebuilder::namesNew(const Tag& tag, bool isSortTable) const {
  const bool isReference =
      (tag.code >= 320 && tag.code < 330) || database::holdsHandle(tag.code) || (tag.code == 5 && isSortTable);
  return isReference && !newHandles_.empty() && handleIn(tag.value) == 0 && resolved(tag) != 0;
}

std::string Rebuilder::withNewHandles(std::string_view bytes) const {
  if (newHandles_.empty()) return std::string(bytes);
  TagWriter tags = writer();
  Tag tag;
  while (readTag(bytes, tag)) {
    if (namesNew(tag, false)) {
      tags.handle(tag.code, resolved(tag));
    } else {
      tags.bytes(tag.bytes);
    }
  }
  return tags.take();
}

std::uint64_t Rebuilder::newHandle() {
  handles_.insert(nextHandle_);
  return nextHandle_++;
}

std::uint64_t Rebuilder::basicHandle(std::uint64_t handle) const {
  if (handle == 0) return 0;
  const auto found = basicHandles_.find(handle);
  return found != basicHandles_.end() ? found->second : basicOffset_ + handle;
}

std::size_t Rebuilder::expectedSize() {
  constexpr std::size_t kBasic = 50000;
  constexpr std::size_t kPerRecord = 150;
  std::size_t size = kBasic;
  forEachRecord([&](const RawRecord& record, Kind) { size += record.bytes.size() + kPerRecord; });
  return size;
}

std::uint64_t Rebuilder::seed() {
  std::uint64_t count = 1;
  forEachRecord([&](const RawRecord&, Kind) { ++count; });
  // A seed that falls would give new objects the handles of some that are gone.
  return std::max(seed_, database::leastSeed(highestHandle_, nextHandle_ + count));
}

void Rebuilder::writeHeader(std::string& out) {
  const std::uint64_t next = seed();
  TagWriter tags = writer();
  tags.raw(9, "$ACADVER").raw(1, "AC" + std::to_string(version_));
  const auto ver = variable("$ACADVER", 1);
  const bool keepsVersion = ver && !isOld_ && trimmed(*ver) == "AC" + std::to_string(version_);
  std::string content;
  if (!keepsVersion) content = tags.str();
  std::unordered_set<std::string_view> written;
  bool hasSeed = false;
  for (const Outline::Variable& one : outline_.variables) {
    if (isOld_ && isObsolete(one.name)) continue;
    if (!written.insert(one.name).second) {
      problems_.leftOut(one.bytes.data(), one.name, 0, "the header has the variable already");
      continue;
    }
    if (one.name == "$ACADVER" && !keepsVersion) continue;
    if (one.name == "$HANDSEED") {
      hasSeed = true;
      content += writer().raw(9, one.name).handle(5, next).str();
      continue;
    }
    content += withNewHandles(one.bytes);
    if (!content.ends_with('\n')) content += lineEnd_;
  }
  if (!written.contains("$DWGCODEPAGE")) content += writer().raw(9, "$DWGCODEPAGE").raw(3, codePage_).str();
  if (!hasSeed) content += writer().raw(9, "$HANDSEED").handle(5, next).str();
  writeSection(out, "HEADER", [&] { out += content; });
}

void Rebuilder::writeClasses(std::string& out) const {
  std::string content;
  std::unordered_set<std::string_view> names;
  for (const RawRecord& record : outline_.classes) {
    names.insert(trimmed(firstValue(record.bytes, 1).value_or("")));
    content += record.bytes;
  }
  for (const RawRecord& record : basic_.classes) {
    if (names.contains(trimmed(firstValue(record.bytes, 1).value_or("")))) continue;
    TagWriter tags = writer();
    Tag tag;
    for (std::string_view rest = record.bytes; readTag(rest, tag);) {
      if (tag.code != 91 || version_ >= 1018) tags.raw(tag.code, tag.value);
    }
    content += tags.str();
  }
  writeSection(out, "CLASSES", [&] { out += content; });
}

Rebuilt rebuild(Outline outline, std::string_view lineEnd, ProblemLog& problems) {
  return Rebuilder(std::move(outline), lineEnd, problems).run();
}

}  // namespace host::dxf
