// Runs the tests of windows without a display.
#include <gtest/gtest.h>
#include <QApplication>
#include <QFontDatabase>
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
#ifdef Q_OS_WIN
  // It knows no fonts there; these are those of the system below Wine.
  if (!qEnvironmentVariableIsSet("QT_QPA_FONTDIR"))
    qputenv("QT_QPA_FONTDIR", "Z:/usr/share/fonts/truetype/dejavu");
#endif
  // Nothing is printed on the printers of the machine.
  qputenv("CUPS_SERVER", "/nicht/vorhanden");
  qInstallMessageHandler(WriteMessage);
  testing::InitGoogleTest(&argc, argv);
  QApplication application(argc, argv);
#ifdef Q_OS_WIN
  QFont::insertSubstitution(QFontDatabase::systemFont(QFontDatabase::FixedFont).family(),
                            QStringLiteral("DejaVu Sans Mono"));
#endif
  QApplication::setApplicationName(QStringLiteral("KALIVOR"));
  return RUN_ALL_TESTS();
}
