// Address list: any bytes as the list, the look-up by hash against a plain loop.
#include <memory>
#include <vector>

#include "PlainReading.h"
#include "Targets.h"
#include "World.h"
#include "core/DefinitionFiles.h"
#include "core/Refresh.h"

using namespace Qt::StringLiterals;

namespace kalivor::fuzz {
namespace {

constexpr int kParameters = 10;
constexpr qint16 kOffsets[kParameters] = {0, 2, 0, -4, 32767, 1, 0, -32768, 0, 6};

// The heading is not read; its words are the parameters' names here, some more than once.
void NameParameters(Module1& module, QByteArrayView input) {
  const qsizetype end = input.indexOf('\n');
  const QStringList words = QString::fromLatin1(end < 0 ? input : input.first(end)).split(u' ');
  for (int i = 0; i < kParameters; ++i) {
    ParameterRecord& record = module.Par[i + 1];
    record.Variable = words.at(i % words.size());
    record.VarAdresse = u"old"_s;
    record.Offset = kOffsets[i];
  }
  // The last one is behind the table's end: the free slot takes addresses too.
  module.ParCount = kParameters;
}

// "XXXX" plus the offset, by arithmetic on characters that need be no digits.
QString PlainSum(const QString& address, int offset) {
  qint64 number = 0;
  for (const QChar c : address) {
    const qsizetype digit = QStringLiteral("0123456789ABCDEF").indexOf(c, 0, Qt::CaseInsensitive);
    number = number * 16 + std::max<qsizetype>(0, digit);
  }
  number += offset;
  const auto bits = number < 0 ? quint64{static_cast<quint32>(number)} : static_cast<quint64>(number);
  return QString::number(bits, 16).toUpper().rightJustified(16, u'0').right(address.size());
}

bool IsAddress(const QString& text) {
  return text.size() == 4 || text.size() == 8;
}

struct Expected {
  std::vector<QString> addresses = std::vector<QString>(kParameters, u"old"_s);
  bool failed = false;
};

void Give(Expected& expected, const Module1& module, const QString& name, const QString& address) {
  for (int i = 0; i < kParameters; ++i) {
    if (module.Par[i + 1].Variable != name) continue;
    expected.addresses[static_cast<std::size_t>(i)] =
        kOffsets[i] == 0 ? address : PlainSum(address, kOffsets[i]);
  }
}

Expected PlainLoop(const Module1& module, const std::optional<QStringList>& items) {
  Expected expected;
  expected.failed = !items;
  for (qsizetype i = 0; items && i < items->size(); ++i) {
    const PlainColumns columns(items->at(i));
    if (IsAddress(columns.At(1))) {
      Give(expected, module, columns.At(0), columns.At(1));
    } else if (columns.At(0).size() > 20 && columns.At(1).isEmpty()) {
      if (i + 1 == items->size()) {
        expected.failed = true;
        break;
      }
      const QString wrapped = PlainColumns(items->at(i + 1)).At(0);
      if (IsAddress(wrapped)) Give(expected, module, columns.At(0), wrapped);
    }
  }
  return expected;
}

}  // namespace

void AddressList(QByteArrayView input) {
  static const std::unique_ptr<World> made = [] {
    std::unique_ptr<World> world = WorldWithoutLine();
    world->module.Versionen.resize(2);
    world->module.Versionen[1].AdrDatei = u"A.ADR"_s;
    world->module.VersionList.Add(u"AB1-123.4"_s);
    world->module.VersionList.Select(0);
    return world;
  }();
  World& world = *made;
  NameParameters(world.module, input);
  world.files.files[u"ini//A.ADR"_s] = input.toByteArray();
  world.box.texts.clear();
  ReadSelectedAddresses(world.core);

  const Expected expected = PlainLoop(world.module, PlainItems(input));
  Require(world.box.texts.size() == (expected.failed ? 1 : 0),
          "a box where the list cannot be read to its end");
  for (int i = 0; i < kParameters; ++i) {
    Require(world.module.Par[i + 1].VarAdresse == expected.addresses[static_cast<std::size_t>(i)],
            "the address that a plain loop finds");
  }
}

}  // namespace kalivor::fuzz
