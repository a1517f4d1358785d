// The dialog that exchanges the history with that of the department.
#include "ui/history/SyncDialog.h"

#include <QAction>
#include <QTemporaryDir>
#include <atomic>

#include "gui/GuiFixture.h"

namespace kalivor::test {
namespace {

class SyncDialogTest : public testing::Test {
 protected:
  SyncDialogTest() {
    dialog.OnServer = [this](const QString& server) { stored += server; };
    dialog.OnExchanged = [this] { ++exchanged; };
  }

  ui::SyncWork Work() {
    return {[this](const QString&) { return fault; },
            [this](const QString& server, const history::SyncWatch& watch) {
              servers += server;
              watch.step(3, 12);
              while (watch.goOn() && !finished)
                QThread::msleep(1);
              watch.step(12, 12);
              return watch.goOn() ? u"<b>Gesendet</b>"_s : u"Abgebrochen"_s;
            },
            [](const QString& server, const history::GoOn&) { return u"bereit: "_s + server; }};
  }

  template <typename Widget>
  Widget& In(const QString& name) {
    return *dialog.findChild<Widget*>(name);
  }
  QString Text(const QString& name) { return In<QLabel>(name).text(); }
  bool Idle() {
    return QTest::qWaitFor([this] { return In<QPushButton>(u"close"_s).text() == u"Schließen"_s; });
  }

  QString fault;
  QStringList stored;
  QStringList servers;
  std::atomic<bool> finished = false;
  int exchanged = 0;
  ui::SyncDialog dialog{Work(), [](const std::function<void()>& handler) { handler(); }};
};

TEST_F(SyncDialogTest, ShowsHowFarItIsAndWhatCameOfIt) {
  dialog.Open({});
  EXPECT_FALSE(In<QPushButton>(u"exchange"_s).isEnabled());
  EXPECT_EQ(dialog.focusWidget(), &In<QLineEdit>(u"server"_s));
  In<QLineEdit>(u"server"_s).setText(u" abteilung "_s);
  In<QPushButton>(u"exchange"_s).click();
  EXPECT_EQ(stored, QStringList{u"abteilung"_s});
  ASSERT_TRUE(QTest::qWaitFor([this] { return Text(u"count"_s) == u"3 von 12 Zeilen"_s; }));
  EXPECT_EQ(In<QProgressBar>(u"bar"_s).maximum(), 12);
  EXPECT_FALSE(In<QPushButton>(u"exchange"_s).isEnabled());
  EXPECT_TRUE(In<QLineEdit>(u"server"_s).isReadOnly());
  // Opening it again shows what is under way.
  dialog.Open(u"anderer"_s);
  EXPECT_EQ(In<QLineEdit>(u"server"_s).text(), u" abteilung "_s);
  finished = true;
  ASSERT_TRUE(Idle());
  EXPECT_EQ(servers, QStringList{u"abteilung"_s});
  EXPECT_EQ(Text(u"result"_s), u"<b>Gesendet</b>"_s);
  EXPECT_EQ(In<QLabel>(u"result"_s).textFormat(), Qt::PlainText);
  EXPECT_EQ(exchanged, 1);
  EXPECT_TRUE(dialog.isVisible());
}

TEST_F(SyncDialogTest, TheFirstEscapeAbortsTheSecondCloses) {
  dialog.Open(u"abteilung"_s);
  In<QPushButton>(u"exchange"_s).click();
  EXPECT_TRUE(stored.isEmpty());
  ASSERT_TRUE(QTest::qWaitFor([this] { return Text(u"count"_s).startsWith(u"3"); }));
  EXPECT_EQ(In<QPushButton>(u"close"_s).text(), u"Abbrechen"_s);
  QTest::keyClick(&dialog, Qt::Key_Escape);
  EXPECT_TRUE(dialog.isVisible());
  ASSERT_TRUE(Idle());
  EXPECT_EQ(Text(u"result"_s), u"Abgebrochen"_s);
  QTest::keyClick(&dialog, Qt::Key_Escape);
  EXPECT_FALSE(dialog.isVisible());
}

TEST_F(SyncDialogTest, WhatIsAtFaultIsSaidAndNotStored) {
  dialog.Open({});
  fault = u"In die Angabe zum Server gehört kein Kennwort"_s;
  In<QLineEdit>(u"server"_s).setText(u"postgresql://a:b@c/d"_s);
  In<QPushButton>(u"exchange"_s).click();
  EXPECT_EQ(Text(u"result"_s), fault);
  EXPECT_TRUE(stored.isEmpty());
  EXPECT_TRUE(servers.isEmpty());
  EXPECT_TRUE(In<QPushButton>(u"exchange"_s).isEnabled());
}

TEST_F(SyncDialogTest, AServerCanBeTried) {
  dialog.Open(u"abteilung"_s);
  In<QPushButton>(u"test"_s).click();
  ASSERT_TRUE(QTest::qWaitFor([this] { return Text(u"result"_s) == u"bereit: abteilung"_s; }));
  EXPECT_EQ(exchanged, 0);
}

TEST_F(SyncDialogTest, EndsWithTheProgram) {
  ui::SyncDialog other(Work(), [](const std::function<void()>& handler) { handler(); });
  other.Open(u"abteilung"_s);
  other.findChild<QPushButton*>(u"exchange"_s)->click();
}

TEST_F(SyncDialogTest, EveryControlHasAName) {
  for (const QWidget* widget : dialog.findChildren<QWidget*>()) {
    if (const auto* box = qobject_cast<const QLineEdit*>(widget)) {
      EXPECT_FALSE(box->accessibleName().isEmpty());
    }
    if (qobject_cast<const QPushButton*>(widget) || qobject_cast<const QLineEdit*>(widget)) {
      EXPECT_FALSE(widget->objectName().isEmpty());
    }
  }
  EXPECT_FALSE(In<QProgressBar>(u"bar"_s).accessibleName().isEmpty());
}

/// In the program, with the library and no server.
class SyncInProgramTest : public GuiTest {
 protected:
  SyncInProgramTest() { historyStore.file = folder_.filePath(u"Verlauf.sqlite"_s); }

  QTemporaryDir folder_;
};

TEST_F(SyncInProgramTest, IsOpenedFromTheHistoryAndKeepsTheServer) {
  Start();
  Main<QAction>(u"mnuWerkzeugeVerlauf"_s).trigger();
  In<QPushButton>(*desktop->history, u"synchronize"_s).click();
  ASSERT_TRUE(desktop->sync);
  ui::SyncDialog& dialog = *desktop->sync;
  EXPECT_TRUE(dialog.isVisible());

  auto& server = In<QLineEdit>(dialog, u"server"_s);
  server.setText(u"host=127.0.0.1 password=geheim"_s);
  In<QPushButton>(dialog, u"exchange"_s).click();
  EXPECT_TRUE(In<QLabel>(dialog, u"result"_s).text().contains(u"kein Kennwort"_s));
  EXPECT_EQ(history::LoadHistorySettings(settings).server, QString());

  const QString nobody = u"host=127.0.0.1 port=1"_s;
  server.setText(nobody);
  In<QPushButton>(dialog, u"exchange"_s).click();
  ASSERT_TRUE(QTest::qWaitFor([&] {
    return In<QLabel>(dialog, u"result"_s).text().startsWith(u"Der Server ist nicht zu erreichen"_s);
  }));
  EXPECT_EQ(history::LoadHistorySettings(settings).server, nobody);
  dialog.close();
  In<QPushButton>(*desktop->history, u"synchronize"_s).click();
  EXPECT_EQ(server.text(), nobody);
}

}  // namespace
}  // namespace kalivor::test
