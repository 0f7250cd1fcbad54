#include "Editor/PlugIns/Services.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <cwchar>
#include <fstream>
#include <iterator>

#include "Editor/PlugIns/Modules.h"
#include "Editor/Session/Session.h"
#include "Platform/Paths.h"
#include "Text/FilePath.h"
#include "Text/Text.h"
#include "acdbads.h"
#include "acedads.h"
#include "rxmfcapi.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcRxDictionary, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcRxEventReactor, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcEditorReactor, AcRxEventReactor)
ACRX_NO_CONS_DEFINE_MEMBERS(AcEditor, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbHostApplicationServices, AcRxObject)

namespace host::editor {
namespace {

// Readers of settings give up on larger ones.
constexpr std::uintmax_t kLargestSettings = std::uintmax_t{16} << 20;
constexpr std::wstring_view kSettingsEndings[] = {L".ini", L".cfg"};

/// The file in the folder, also when only the case of its name differs.
std::filesystem::path inFolder(const std::filesystem::path& folder, const std::filesystem::path& name,
                               std::vector<std::filesystem::path>* passedOver) {
  std::error_code error;
  std::filesystem::path exact = folder / name;
  if (std::filesystem::is_regular_file(exact, error)) return exact;
  // Not a folder, which may have any name.
  const bool isThere = std::filesystem::symlink_status(exact, error).type() > std::filesystem::file_type::not_found;
  if (passedOver != nullptr && isThere && !std::filesystem::is_directory(exact, error)) passedOver->push_back(exact);
  const std::filesystem::path parent = exact.parent_path();
  const std::wstring wanted = text::fromUtf8(exact.filename().string());
  for (const std::filesystem::path& entry : platform::namesIn(parent, error)) {
    if (!text::equalFolded(text::fromUtf8(entry.string()), wanted)) continue;
    std::filesystem::path found = parent / entry;
    if (std::filesystem::is_regular_file(found, error)) return found;
  }
  return {};
}

/// Folder of support files that comes with the host, beside its library.
const std::filesystem::path& ownSupportFolder() {
  static const std::filesystem::path folder = [] {
    std::error_code error;
    const std::filesystem::path library = libraryFile();
    return library.empty() ? library : std::filesystem::absolute(library, error).parent_path() / "support";
  }();
  return folder;
}

AcColorSettings& colors() {
  static AcColorSettings settings = [] {
    AcColorSettings initial;
    initial.dwGfxLayoutBkColor = 0x00FFFFFF;
    initial.dwBEditBkColor = 0;
    initial.dwCmdLineBkColor = 0x00FFFFFF;
    initial.dwPlotPrevBkColor = 0x00FFFFFF;
    return initial;
  }();
  return settings;
}

}  // namespace

AcRxObject* Registry::at(const ACHAR* key) const {
  if (key == nullptr) return nullptr;
  const std::wstring_view name = key;
  if (name == ACRX_DYNAMIC_LINKER) return &session_.modules();
  if (name == ACRX_COMMAND_DOCK) return &session_.commands();
  if (name == ACED_EDITOR_OBJ) return &session_.editor();
  return nullptr;
}

void reportThrown(Session& session, const void* object, const std::string& reason) {
  session.modules().reportThrown(object, reason);
}

void ProgressMeter::show(std::wstring label, int minimum, int maximum) {
  isShown_ = true;
  label_ = std::move(label);
  minimum_ = position_ = minimum;
  maximum_ = maximum;
  session_.observer().showProgress(label_, 0);
}

bool ProgressMeter::move(int position) {
  if (!isShown_) return false;
  const long long wanted = position >= 0 ? position : static_cast<long long>(position_) - position;
  position_ = static_cast<int>(std::clamp<long long>(wanted, minimum_, maximum_));
  repeat();
  return true;
}

void ProgressMeter::repeat() {
  if (!isShown_) {
    session_.observer().working();
    return;
  }
  const double range = static_cast<double>(maximum_) - minimum_;
  session_.observer().showProgress(label_, range > 0 ? (static_cast<double>(position_) - minimum_) / range : 1);
}

void ProgressMeter::hide() {
  if (isShown_) session_.observer().showProgress(label_, -1);
  isShown_ = false;
}

void EditorService::addReactor(AcEditorReactor* reactor) {
  if (reactor != nullptr && !has(reactor)) reactors_.push_back(reactor);
}

void EditorService::removeReactor(AcEditorReactor* reactor) { std::erase(reactors_, reactor); }

bool EditorService::has(const AcEditorReactor* reactor) const {
  return std::find(reactors_.begin(), reactors_.end(), reactor) != reactors_.end();
}

std::vector<AcEditorReactor*> EditorService::reactorsOf(const void* moduleBase) const {
  return objectsOfModule(reactors_, moduleBase);
}

namespace {

/// Where files are looked for, in this order.
std::vector<std::filesystem::path> searchedFolders(const AcDbDatabase* db) {
  std::error_code error;
  Session& session = Session::instance();
  std::vector<std::filesystem::path> folders{std::filesystem::current_path(error)};
  const auto* document = static_cast<const Document*>(session.documents().document(db));
  if (document == nullptr) document = session.documents().current();
  if (document != nullptr && !document->file().empty()) folders.push_back(document->file().parent_path());
  if (document != nullptr) folders.push_back(document->contentFolder);
  folders.insert(folders.end(), session.options().supportFolders.begin(), session.options().supportFolders.end());
  folders.push_back(ownSupportFolder());
  std::erase_if(folders, [](const std::filesystem::path& folder) { return folder.empty(); });
  return folders;
}

}  // namespace

std::filesystem::path HostServices::find(const std::filesystem::path& name, const AcDbDatabase* db,
                                         std::vector<std::filesystem::path>* passedOver) {
  std::error_code error;
  if (name.empty()) return {};
  if (name.is_absolute()) return std::filesystem::is_regular_file(name, error) ? name : std::filesystem::path();
  for (const std::filesystem::path& folder : searchedFolders(db)) {
    const std::filesystem::path found = inFolder(folder, name, passedOver);
    if (!found.empty()) return fullPath(found);
  }
  return {};
}

std::filesystem::path HostServices::findFolder(const std::filesystem::path& name) {
  if (name.empty()) return {};
  for (const std::filesystem::path& folder : searchedFolders(nullptr)) {
    std::error_code error;
    const std::filesystem::path found = folder / name;  // an absolute name replaces the folder
    if (std::filesystem::is_directory(found, error)) return std::filesystem::absolute(found, error).lexically_normal();
  }
  return {};
}

namespace {

/// Why a reader of the file will not get its contents; empty when nothing is wrong.
std::string faultOf(const std::filesystem::path& file) {
  std::error_code error;
  errno = 0;
  std::ifstream in(file, std::ios::binary);
  const bool isRead = in && (in.get() != std::ifstream::traits_type::eof() || !in.bad());
  if (!isRead) return std::string("cannot be read") + (errno != 0 ? ": " + platform::openingFault() : "");
  const std::wstring ending = text::folded(text::fromUtf8(file.extension().string()));
  const bool isSettings =
      std::find(std::begin(kSettingsEndings), std::end(kSettingsEndings), ending) != std::end(kSettingsEndings);
  if (isSettings && std::filesystem::file_size(file, error) > kLargestSettings && !error)
    return "is passed over: it is longer than " + std::to_string(kLargestSettings >> 20) + " MB";
  return {};
}

}  // namespace

void HostServices::tellOnce(const std::filesystem::path& file, const std::string& what) {
  if (told_.insert(file).second)
    Session::instance().reportProblem(problemOf(Code::FilePassedOver, file.string(), what));
}

Acad::ErrorStatus HostServices::findFile(ACHAR* pathOut, int bufferLength, const ACHAR* fileName, AcDbDatabase* db,
                                         FindFileHint) {
  if (pathOut == nullptr || fileName == nullptr || bufferLength <= 0) return Acad::eInvalidInput;
  std::vector<std::filesystem::path> passedOver;
  const std::filesystem::path found = find(platform::pathOf(text::toUtf8(fileName)), db, &passedOver);
  for (const std::filesystem::path& file : passedOver) tellOnce(file, "is passed over: it is no file");
  if (found.empty()) return Acad::eFileNotFound;
  if (const std::string fault = faultOf(found); !fault.empty()) tellOnce(found, fault);
  const std::wstring path = text::fromUtf8(found.string());
  if (path.size() >= static_cast<std::size_t>(bufferLength)) return Acad::eBufferTooSmall;
  std::copy(path.begin(), path.end(), pathOut);
  pathOut[path.size()] = 0;
  return Acad::eOk;
}

}  // namespace host::editor

AcRxDictionary* acrxSysRegistry() { return &host::editor::Session::instance().registry(); }

AcDbDatabase* AcDbHostApplicationServices::workingDatabase() const {
  return static_cast<const host::editor::HostServices*>(this)->working();
}

void AcDbHostApplicationServices::setWorkingDatabase(AcDbDatabase* db) {
  static_cast<host::editor::HostServices*>(this)->setWorking(db);
}

AcDbHostApplicationServices* acdbHostApplicationServices() { return &host::editor::Session::instance().services(); }

int acedGetCurrentColors(AcColorSettings* settings) {
  if (settings == nullptr) return 0;
  *settings = host::editor::colors();
  return 1;
}

int acedSetCurrentColors(const AcColorSettings* settings) {
  if (settings == nullptr) return 0;
  host::editor::colors() = *settings;
  return 1;
}

// The user coordinate system is always World.
int acdbUcs2Wcs(const ads_point p, ads_point q, bool) {
  if (p == nullptr || q == nullptr) return RTERROR;
  if (p != q) ads_point_set(p, q);
  return RTNORM;
}

int acdbWcs2Ucs(const ads_point p, ads_point q, bool vec) { return acdbUcs2Wcs(p, q, vec); }

extern "C" int ads_regen(void) {
  host::editor::Session::instance().observer().regenerate();
  return RTNORM;
}

int acedSetStatusBarProgressMeter(const ACHAR* label, int min, int max) {
  if (max < min) return -1;
  host::editor::Session::instance().meter().show(label != nullptr ? label : L"", min, max);
  return 0;
}

int acedSetStatusBarProgressMeterPos(int position) {
  host::editor::Session& session = host::editor::Session::instance();
  const bool isShown = session.meter().move(position);
  session.runner().atWork();
  return isShown ? 0 : -1;
}

void acedRestoreStatusBar() { host::editor::Session::instance().meter().hide(); }
