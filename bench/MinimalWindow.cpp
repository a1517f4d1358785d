// The least that a program with a window of this toolkit does: what start-up is measured against.
#include <QApplication>
#include <QLabel>
#include <QMainWindow>

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QMainWindow window;
  window.setCentralWidget(new QLabel(QStringLiteral("Minimal"), &window));
  window.resize(800, 600);
  window.show();
  return QApplication::exec();
}
