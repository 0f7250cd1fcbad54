// Widgets need their application before the first test.
#include <gtest/gtest.h>

#include <QApplication>
#include <clocale>

int main(int count, char** arguments) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  testing::InitGoogleTest(&count, arguments);
  QApplication application(count, arguments);
  std::setlocale(LC_NUMERIC, "C");
  return RUN_ALL_TESTS();
}
