// Saves two images in turn into one file until it is killed.
// usage: save_repeatedly FILE BYTES
#include <QCoreApplication>
#include <cstdio>

#include "platform/win32/Win32FileSystem.h"

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  const QStringList arguments = QCoreApplication::arguments();
  kalivor::platform::Win32FileSystem files;
  for (int i = 0;; ++i) {
    const QByteArray image(arguments.at(2).toInt(), i % 2 == 0 ? 'A' : 'B');
    const QString error = files.Overwrite(arguments.at(1), image);
    if (!error.isEmpty()) {
      std::fprintf(stderr, "%s\n", qPrintable(error));
      return 1;
    }
    if (i == 1) {
      std::puts("saving");
      std::fflush(stdout);
    }
  }
}
