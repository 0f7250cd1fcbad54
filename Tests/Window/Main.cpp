// Widgets need their application before the first test; settings and states go to a folder of this run.
#include <gtest/gtest.h>

#include <QApplication>
#include <clocale>

#include "OwnFolder.h"

int main(int count, char** arguments) {
  const tests::OwnFolder home;
  qputenv("QT_QPA_PLATFORM", "offscreen");
  for (const char* const name : {"HOME", "XDG_CONFIG_HOME", "XDG_STATE_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"})
    qputenv(name, QByteArray(home.path.c_str()));
  testing::InitGoogleTest(&count, arguments);
  QApplication application(count, arguments);
  QCoreApplication::setOrganizationName("Tolmex");
  QCoreApplication::setApplicationName("Tolmex");
  QApplication::setQuitOnLastWindowClosed(false);
  std::setlocale(LC_NUMERIC, "C");
  return RUN_ALL_TESTS();
}
