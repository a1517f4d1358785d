#include "cli/HistoryServerRun.h"

#include <QJsonDocument>

#include "cli/Edits.h"
#include "cli/HistoryRun.h"
#include "cli/Output.h"
#include "history/HistorySettings.h"
#include "history/server/ServerStore.h"
#include "history/server/Sync.h"

using namespace Qt::StringLiterals;

namespace kalivor::cli {
namespace {

using history::ServerFailure;

history::GoOn UntilInterrupted(const World& world) {
  return [&world] { return !world.interrupted || !world.interrupted(); };
}

int StatusOf(const ServerFailure& failure) {
  if (!failure) return kDone;
  return failure.kind == ServerFailure::BadServer ? kBadInput : kNoTransfer;
}

Row CountRow(const history::SyncCount& count) {
  return {{u"Inhalt"_s, history::RowsText(count.table)},
          {u"Gesendet"_s, count.sent},
          {u"Empfangen"_s, count.received}};
}

}  // namespace

int RunHistorySync(World& world, platform::MessageBox& box, const Arguments& arguments) {
  const QString server =
      arguments.server ? *arguments.server : history::LoadHistorySettings(world.settings).server;
  history::Store::Opened opened =
      history::Store::Open(HistoryPlace(world, arguments), history::Access::Write);
  if (!opened.note.isEmpty()) box.Show(opened.note);
  if (!opened.store || !opened.store->Writable()) throw BadInput{};
  const history::SyncResult result =
      history::Synchronize(*opened.store, server, {UntilInterrupted(world), [](int, int) {}});

  Table counts;
  for (const history::SyncCount& count : result.counts)
    counts.push_back(CountRow(count));
  if (arguments.json) {
    const QJsonObject all{{u"rows"_s, ToJson(counts)},
                          {u"leftOut"_s, result.leftOut},
                          {u"reasons"_s, QJsonArray::fromStringList(result.reasons)},
                          {u"failure"_s, result.failure.text}};
    world.out << QJsonDocument(all).toJson().toStdString();
  } else {
    world.out << (NamesLine(CountRow({})) + ToText(counts)).toStdString();
  }
  if (result.leftOut > 0) box.Show(history::LeftOutText(result));
  if (result.failure) box.Show(result.failure.text);
  const int status = StatusOf(result.failure);
  return status == kDone && result.leftOut > 0 ? kFindings : status;
}

int RunHistoryInitServer(World& world, platform::MessageBox& box, const Arguments& arguments) {
  const history::Preparation prepared =
      history::PrepareServer(arguments.server.value_or(QString()), UntilInterrupted(world));
  if (prepared.failure) {
    box.Show(prepared.failure.text);
  } else if (arguments.json) {
    world.out << QJsonDocument(QJsonObject{{u"text"_s, prepared.text}}).toJson().toStdString();
  } else {
    world.out << prepared.text.toStdString() << '\n';
  }
  return StatusOf(prepared.failure);
}

}  // namespace kalivor::cli
