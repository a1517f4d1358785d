// Runs the tests of windows without a display.
#include <gtest/gtest.h>
#include <QApplication>
#include <iostream>

namespace {

// The offscreen platform tells again and again what it cannot do.
void WriteMessage(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& message) {
  if (message.startsWith(QStringLiteral("This plugin does not support"))) return;
  std::cerr << message.toStdString() << '\n';
}

}  // namespace

int main(int argc, char** argv) {
  // Another platform can be chosen to watch the tests.
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  // Nothing is printed on the printers of the machine.
  qputenv("CUPS_SERVER", "/nicht/vorhanden");
  qInstallMessageHandler(WriteMessage);
  testing::InitGoogleTest(&argc, argv);
  QApplication application(argc, argv);
  QApplication::setApplicationName(QStringLiteral("KALIVOR"));
  return RUN_ALL_TESTS();
}
