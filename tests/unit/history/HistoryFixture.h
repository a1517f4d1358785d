// A history in a folder of its own, and observations to add to it.
#pragma once

#include <gtest/gtest.h>
#include <QTemporaryDir>

#include "history/Store.h"

namespace kalivor::history {

class HistoryFixture : public testing::Test {
 protected:
  /// `count` parameters Soll1, Soll2… of type int with one decimal; that of number i is `number` + i.
  static std::shared_ptr<ParameterTable> TableWith(qint32 number, int count = 2) {
    auto table = std::make_shared<ParameterTable>();
    table->ParCount = static_cast<qint16>(count + 1);
    for (int i = 1; i <= count; ++i) {
      ParameterRecord& record = table->Par[i];
      record.Rubrik = QStringLiteral("Regelung");
      record.Name = QStringLiteral("Sollwert %1").arg(i);
      record.Variable = QStringLiteral("Soll%1").arg(i);
      record.VarAdresse = QStringLiteral("%1").arg(10 * i, 4, 16, QLatin1Char('0'));
      record.Typ = QStringLiteral("int");
      record.Einheit = QStringLiteral("K");
      record.Zahl1 = 1;
      record.Wert = number + i;
    }
    return table;
  }

  /// All values of a controller of version V1 and address 3.
  static Observation Received(const std::shared_ptr<const ParameterTable>& table) {
    Observation observation;
    observation.entry.kind = DeedKind::Received;
    observation.entry.version = QStringLiteral("V1");
    observation.entry.address = 3;
    observation.table = table;
    for (int i = 1; i < table->ParCount; ++i)
      observation.values.push_back({i, true, {}, {}});
    return observation;
  }
  static Observation Received(qint32 number, int count = 2) { return Received(TableWith(number, count)); }

  [[nodiscard]] StoreWorld World(const QString& file) const {
    return {file, QStringLiteral("1.0"), QStringLiteral("PC")};
  }

  /// That of the test, for writing; anything to be told is a failure.
  [[nodiscard]] std::unique_ptr<Store> Opened(const QString& file) const {
    Store::Opened opened = Store::Open(World(file), Access::Write);
    EXPECT_EQ(opened.note, QString());
    return std::move(opened.store);
  }
  [[nodiscard]] std::unique_ptr<Store> Opened() const { return Opened(file_); }

  QTemporaryDir folder_;
  QString file_ = folder_.filePath(QStringLiteral("a/Verlauf.sqlite"));
};

}  // namespace kalivor::history
