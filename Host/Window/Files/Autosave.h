// Copies of changed drawings in the user's state folder: written on a worker between commands and before those that are
// known to work long, gone when the drawing is
// saved or closed, offered when a session has not ended by itself.
#pragma once

#include <QDateTime>
#include <QHash>
#include <QObject>
#include <QString>
#include <QThreadPool>
#include <QTimer>
#include <vector>

#include "Window/Frame/Engine.h"

namespace host::window {

/// What a session left behind.
struct Recovery {
  QString record;   // the file that tells of it
  QString content;  // the drawing as it was
  QString file;     // of the drawing; empty for a new one
  QString name;
  QDateTime at;       // of the content
  QDateTime savedAt;  // of the drawing's file when the session had it; invalid for a new one
};

class Autosave : public QObject {
  Q_OBJECT

 public:
  explicit Autosave(Engine& engine, QObject* parent = nullptr);
  ~Autosave() override;

  /// Those of sessions that are gone; of running ones nothing.
  static std::vector<Recovery> found();
  static void forget(const Recovery& recovery);
  static QString folder();

  /// Takes the changed drawings now, as far as they may be read.
  void saveNow();
  /// The drawing was saved or is being closed: its copy goes.
  void drop(const database::DrawingDatabase& drawing);
  /// Waits until what was taken is written.
  void finish() { pool_.waitForDone(); }
  void dropAll();

 private:
  void keep();
  QString stem(const database::DrawingDatabase& drawing);

  Engine& engine_;
  QTimer timer_;
  QThreadPool pool_;
  QHash<const void*, QString> stems_;
  QHash<const void*, quint64> savedCounts_;
  QStringList long_;  // commands that have worked long
  int next_ = 0;
};

}  // namespace host::window
