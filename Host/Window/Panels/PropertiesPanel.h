// What is selected, or the drawing when nothing is. What plug-ins know of a thing comes by their tooltip; what can be
// edited is edited by commands.
#pragma once

#include <QGridLayout>
#include <QLabel>
#include <QScrollArea>
#include <QWidget>

#include "Window/Panels/Facts.h"
#include "Window/Panels/Panel.h"

namespace host::window {

class PropertiesPanel : public QScrollArea {
  Q_OBJECT

 public:
  explicit PropertiesPanel(const PanelContext& context, QWidget* parent = nullptr);
  void refresh();
  /// "Ala" → "1408.00 m²" of what is shown; for tests and screen readers.
  QString value(const QString& name) const;

 private:
  void showDrawing();
  void showOne(database::Slot& entity);
  void showSeveral(const std::vector<database::Slot*>& entities);
  void showPlain(const std::vector<database::Slot*>& entities, const EntityFacts& facts);

  void begin(const QString& title);
  void row(const QString& name, const QString& value);
  /// A value from a list; another choice runs `lines` of it.
  void choice(const QString& name, const QString& value, const QStringList& values,
              const std::function<QStringList(const QString&)>& lines);
  /// A value to be typed: Enter applies it, Esc restores it.
  void field(const QString& name, const QString& value, const std::function<QStringList(const QString&)>& lines);
  void button(const QString& text, const MenuRow& row);
  void end();
  QLabel* label(const QString& name);
  QStringList changed(const QString& option, const QString& value) const;

  PanelContext context_;
  QWidget* page_ = nullptr;
  QGridLayout* grid_ = nullptr;
  int rows_ = 0;
  std::vector<std::pair<QString, QString>> values_;
};

}  // namespace host::window
