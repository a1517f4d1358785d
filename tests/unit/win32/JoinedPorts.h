// Two serial ports of the system that are joined by a cable.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>
#include <QByteArray>
#include <QFile>
#include <QString>
#include <algorithm>

namespace kalivor::test {

/// The far end of the cable; the port under test is the other one. KALIVOR_JOINED_PORTS names both and a
/// folder
/// ("COM9 COM10 Z:\folder"), through which whoever provides the ports is asked to pull out the first.
class JoinedPorts {
 public:
  JoinedPorts() {
    const QString name = QStringLiteral("\\\\.\\") + Word(1);
    port_ = CreateFileW(name.toStdWString().c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                        0, nullptr);
    EXPECT_NE(port_, INVALID_HANDLE_VALUE) << name.toStdString();
    // A read ends with the first characters, or after the time.
    COMMTIMEOUTS timeouts{MAXDWORD, MAXDWORD, 2000, 0, 0};
    EXPECT_TRUE(SetCommTimeouts(port_, &timeouts));
    EXPECT_TRUE(PurgeComm(port_, PURGE_RXCLEAR | PURGE_TXCLEAR));
  }
  ~JoinedPorts() {
    CloseHandle(port_);
    if (pulledOut_) Ask(QStringLiteral("plug-in"));
  }
  JoinedPorts(const JoinedPorts&) = delete;
  JoinedPorts& operator=(const JoinedPorts&) = delete;

  /// The name of the port under test; "" where there are no joined ports.
  [[nodiscard]] static QString PcName() { return Word(0); }

  /// Reads `count` bytes, fewer when none come for two seconds.
  [[nodiscard]] QByteArray Receive(qsizetype count) const {
    QByteArray bytes;
    while (bytes.size() < count) {
      char piece[256];
      DWORD got = 0;
      const auto wanted = static_cast<DWORD>(std::min<qsizetype>(count - bytes.size(), sizeof piece));
      if (ReadFile(port_, piece, wanted, &got, nullptr) == 0 || got == 0) break;
      bytes.append(piece, static_cast<qsizetype>(got));
    }
    return bytes;
  }
  void Send(const QByteArray& bytes) const {
    DWORD written = 0;
    EXPECT_TRUE(WriteFile(port_, bytes.constData(), static_cast<DWORD>(bytes.size()), &written, nullptr));
    EXPECT_EQ(written, static_cast<DWORD>(bytes.size()));
  }

  void PullOut() {
    Ask(QStringLiteral("pull-out"));
    pulledOut_ = true;
  }

 private:
  [[nodiscard]] static QString Word(int number) {
    return qEnvironmentVariable("KALIVOR_JOINED_PORTS").section(u' ', number, number);
  }
  // A file is the question; that it is gone again is the answer.
  static void Ask(const QString& what) {
    const QString question = Word(2) + u'/' + what;
    QFile file(question);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << question.toStdString();
    file.close();
    for (int i = 0; i < 2000 && QFile::exists(question); ++i)
      Sleep(5);
    EXPECT_FALSE(QFile::exists(question));
  }

  HANDLE port_ = INVALID_HANDLE_VALUE;
  bool pulledOut_ = false;
};

}  // namespace kalivor::test
