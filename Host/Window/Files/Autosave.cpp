#include "Window/Files/Autosave.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSettings>
#include <algorithm>

#include "Dxf/DxfFile.h"
#include "Platform/Paths.h"
#include "Platform/System.h"
#include "Window/Commands/Language.h"

namespace host::window {
namespace {

constexpr int kEverySeconds = 5 * 60;
constexpr qint64 kLongMs = 2000;  // of a command between two questions

/// The time at which a process was started: with it a number names one process for good.
QString startOf(qint64 process) { return QString::fromStdString(platform::processStart(process)); }

QString pathOf(const std::filesystem::path& path) { return QString::fromStdString(path.string()); }
std::filesystem::path pathOf(const QString& path) { return platform::pathOf(path.toStdString()); }

}  // namespace

Autosave::Autosave(Engine& engine, QObject* parent) : QObject(parent), engine_(engine) {
  pool_.setMaxThreadCount(1);  // the later copy of a drawing is written last
  timer_.setInterval(std::max(1, QSettings().value("autosave/seconds", kEverySeconds).toInt()) * 1000);
  connect(&timer_, &QTimer::timeout, this, &Autosave::saveNow);
  timer_.start();
  // A command that has worked long once will do so again; its drawing still stands still now.
  connect(&engine_, &Engine::worked, this, [this](const QString& command, qint64 milliseconds) {
    if (milliseconds >= kLongMs && !long_.contains(command)) long_ += command;
  });
  connect(&engine_, &Engine::workBegan, this, [this] {
    if (long_.contains(engine_.command()) && engine_.result().answers.isEmpty()) keep();
  });
}

Autosave::~Autosave() { pool_.waitForDone(); }

QString Autosave::folder() { return pathOf(platform::stateFolder() / "recovery"); }

QString Autosave::stem(const database::DrawingDatabase& drawing) {
  QString& stem = stems_[&drawing];
  if (stem.isEmpty()) stem = QString("%1/%2-%3").arg(folder()).arg(platform::processId()).arg(++next_);
  return stem;
}

void Autosave::saveNow() {
  if (engine_.isWaiting() && engine_.input().isAtRest()) keep();
}

void Autosave::keep() {
  QDir().mkpath(folder());
  QFile::setPermissions(folder(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  for (const auto& open : engine_.application().drawings()) {
    if (!open.drawing->isModified()) {
      drop(*open.drawing);
      continue;
    }
    if (savedCounts_.value(open.drawing) == open.drawing->changeCount() && stems_.contains(open.drawing)) continue;
    std::string text;
    try {
      text = dxf::drawingText(*open.drawing);
    } catch (const std::bad_alloc&) {
      continue;  // the next time
    }
    savedCounts_[open.drawing] = open.drawing->changeCount();
    QJsonObject record{{"file", pathOf(open.file)},
                       {"name", QFileInfo(toQt(open.name)).fileName()},
                       {"process", qint64{platform::processId()}},
                       {"start", startOf(platform::processId())},
                       {"at", QDateTime::currentDateTime().toString(Qt::ISODate)}};
    const QFileInfo info(pathOf(open.file));
    if (!open.file.empty() && info.exists()) record["savedAt"] = info.lastModified().toString(Qt::ISODate);
    const QString base = stem(*open.drawing);
    pool_.start([text = std::move(text), json = QJsonDocument(record).toJson().toStdString(), base] {
      // The record comes last: one without a drawing would promise too much.
      if (dxf::writeFileWhole(pathOf(base + ".dxf"), text)) (void)dxf::writeFileWhole(pathOf(base + ".json"), json);
    });
  }
}

void Autosave::drop(const database::DrawingDatabase& drawing) {
  const QString base = stems_.take(&drawing);
  savedCounts_.remove(&drawing);
  if (base.isEmpty()) return;
  pool_.start([base] {
    QFile::remove(base + ".json");
    QFile::remove(base + ".dxf");
  });
}

void Autosave::dropAll() {
  for (const QString& base : stems_) {
    pool_.start([base] {
      QFile::remove(base + ".json");
      QFile::remove(base + ".dxf");
    });
  }
  stems_.clear();
  pool_.waitForDone();
}

std::vector<Recovery> Autosave::found() {
  std::vector<Recovery> all;
  const QDir dir(folder());
  for (const QFileInfo& info : dir.entryInfoList({"*.json"}, QDir::Files, QDir::Time)) {
    QFile file(info.filePath());
    if (!file.open(QIODevice::ReadOnly)) continue;
    const QJsonObject record = QJsonDocument::fromJson(file.readAll()).object();
    const qint64 process = record["process"].toInteger();
    const QString start = startOf(process);
    if (!start.isEmpty() && start == record["start"].toString()) continue;  // it still runs
    Recovery one{info.filePath(),
                 info.path() + "/" + info.completeBaseName() + ".dxf",
                 record["file"].toString(),
                 record["name"].toString(),
                 QDateTime::fromString(record["at"].toString(), Qt::ISODate),
                 QDateTime::fromString(record["savedAt"].toString(), Qt::ISODate)};
    if (QFile::exists(one.content)) all.push_back(one);
  }
  return all;
}

void Autosave::forget(const Recovery& recovery) {
  QFile::remove(recovery.record);
  QFile::remove(recovery.content);
}

}  // namespace host::window
