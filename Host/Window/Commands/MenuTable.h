// The tables of commands (menu.tsv of the window and of each loaded module): menu, palette, completion, names of undo
// steps, and what the window knows of the things that commands make. The columns are described on top of the files.
#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <deque>
#include <vector>

namespace host::window {

struct MenuRow {
  QString group;
  QString command;  // as the table has it: "ZOOM,E", "window:print"
  QString nameFi, nameEn, tipFi, tipEn;
  QString key;
  QStringList typed;
  QString icon;    // file, empty for none
  QString colour;  // layer
  QStringList layers;
  QString doubleClick;
  QString preview;
  QStringList emptied;
  bool isOfModule = false;

  /// In the window's language; "%1" still in it.
  const QString& name() const;
  const QString& tip() const;
  /// The command and the answers behind it.
  QStringList lines() const { return command.split(','); }
  QString commandName() const { return command.section(',', 0, 0); }
  /// The window itself does it; scripts know no such word.
  bool isOfWindow() const { return command.startsWith("window:"); }
};

struct MenuGroup {
  QString key, nameFi, nameEn;
  std::vector<const MenuRow*> rows;
  const QString& name() const;
};

/// One file.
struct MenuTable {
  std::vector<MenuGroup> groups;
  std::deque<MenuRow> rows;  // addresses stay
  bool isOfModule = false;

  /// False when it cannot be read.
  bool read(const QString& file, bool ofModule);
};

/// All tables that there are.
class CommandTables {
 public:
  /// The host's table lies in the folder `window` beside the library, a module's beside the module:
  /// `<module's stem>.menu/menu.tsv`.
  void load(const QString& hostFolder, const QStringList& modules);
  const MenuTable& host() const { return host_; }
  const std::deque<MenuTable>& modules() const { return modules_; }

  /// Row of a command as it is typed or as undo names it: name, short form or beginning with "_" "." "'"; null for
  /// none.
  const MenuRow* find(const QString& command) const;
  /// The row by what the table calls it: "window:print", "ZOOM,E".
  const MenuRow* row(const QString& command) const;
  /// The command that makes things on the layer; null for layers of no command.
  const MenuRow* makerOf(const QString& layer) const;
  /// The command whose things on the layer are erased when it runs.
  const MenuRow* emptierOf(const QString& layer) const;
  /// Fills stand on the later layers of their row, lines on the first.
  bool isFillLayer(const QString& layer) const;
  const std::vector<const MenuRow*>& all() const { return all_; }
  /// Name for people of a command that was run: "Nurmikko"; the command itself when no table has it.
  QString title(const QString& command) const;

 private:
  MenuTable host_;
  std::deque<MenuTable> modules_;
  std::vector<const MenuRow*> all_;
  QHash<QString, const MenuRow*> byWord_, byLayer_, byEmptied_;
  QHash<QString, int> placeOfLayer_;
};

}  // namespace host::window
