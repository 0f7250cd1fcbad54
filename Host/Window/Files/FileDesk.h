// Drawings in and out, as people do it: asking for names, asking about changes, telling what went wrong. Every deed is
// a command in the command line.
#pragma once

#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>
#include <functional>

#include "Editor/FileStamp.h"
#include "Window/Desktop.h"
#include "Window/Frame/Conversation.h"
#include "Window/Frame/DocumentBar.h"
#include "Window/Frame/Engine.h"

class QTimer;

namespace host::window {

class Autosave;

class FileDesk : public QObject {
  Q_OBJECT

 public:
  FileDesk(Engine& engine, Conversation& talk, HistoryView& history, Banner& banner, QWidget& window);
  ~FileDesk() override;

  void openByDialog();
  void open(const QStringList& files);
  /// An example, as a new drawing that has no file yet.
  void openCopy(const QString& file);
  void save();
  void saveAs();
  void close();
  void close(const database::DrawingDatabase& drawing);
  /// Asks about everything that is not saved, then ends the run.
  void quit();
  void runScript();
  void saveScript();
  void loadModule();
  /// Offers what was kept of a session that did not end by itself.
  void offerRecovery();
  Autosave& autosave() { return *autosave_; }

  static QStringList recent();
  static void forgetRecent(const QString& file);
  /// Looks whether the file of the current drawing was changed by somebody else; the banner tells.
  void lookAtDisk();

 signals:
  void recentChanged();
  void problemsWanted();
  /// Nothing is left to ask: the window may go.
  void quitting();

 private:
  void ended(const CommandResult& result);
  void drawingSwitched();
  void tellOpening();
  void saveFailed(const QString& reason);
  /// Asks whether to save; false when the user stays. What has to be typed for it goes to `lines`.
  bool mayLeave(const editor::Application::OpenDrawing& drawing, QStringList& lines);
  bool mayReplace(bool& saveElsewhere);
  const editor::Application::OpenDrawing* find(const database::DrawingDatabase* drawing) const;
  editor::Application::OpenDrawing current() const;
  QString askForDrawing(const QString& proposed);
  void remember(const QString& file);
  bool isDwg(const std::filesystem::path& file) const;

  Engine& engine_;
  Conversation& talk_;
  HistoryView& history_;
  Banner& banner_;
  QWidget& window_;
  Autosave* autosave_;
  QHash<const void*, editor::FileStamp> stamps_;  // of the files as we know them
  QHash<const void*, editor::FileStamp> kept_;    // that the user has said to leave
  QString failure_;                               // of the command that runs
  Code failureCode_ = Code::HostNote;
  const void* told_ = nullptr;  // the drawing whose opening was told last
  QTimer* watch_;
};

}  // namespace host::window
