#include "ui/history/SyncDialog.h"

#include <QBoxLayout>
#include <new>

#include "history/server/ServerStore.h"
#include "ui/dialogs/Controls.h"
#include "ui/list/ProgressDialog.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

constexpr int kCharacters = 70;
constexpr double kMillisecond_s = 0.001;

QString ExplanationText() {
  return u"Was einer Seite fehlt, bekommt sie von der anderen; geändert oder gelöscht wird nirgends etwas. "
         u"Den Server "
         "richtet ein Verwalter der Datenbank einmal mit kalivor-cli history init-server ein. Hier steht "
         "eine "
         "Verbindungszeichenkette von libpq (host=… dbname=…) oder der Name eines Dienstes, ohne Kennwort."_s;
}

}  // namespace

SyncWork WorkOn(const history::StoreWorld& place) {
  return {[](const QString& server) { return history::ServerFault(server).text; },
          [place](const QString& server, const history::SyncWatch& watch) {
            const history::Store::Opened opened = history::Store::Open(place, history::Access::Write);
            if (!opened.store || !opened.store->Writable()) return opened.note;
            return history::SyncText(history::Synchronize(*opened.store, server, watch));
          },
          [](const QString& server, const history::GoOn& goOn) {
            const history::ServerStore::Opened opened = history::ServerStore::Open(server, goOn);
            return opened.failure ? opened.failure.text
                                  : u"Der Server ist bereit. Mit „Abgleichen“ geht es weiter."_s;
          }};
}

SyncDialog::SyncDialog(SyncWork work, const platform::EventGuard& guard)
    : Form(u"SyncDialog"_s, u"Verlauf abgleichen"_s),
      work_(std::move(work)),
      server_(NewTextBox(this, u"server"_s, u"Server"_s)),
      test_(NewButton(this, u"test"_s, u"Verbindung &prüfen"_s)),
      count_(NewLabel(this, u"count"_s, QString())),
      remaining_(NewLabel(this, u"remaining"_s, QString())),
      bar_(Named(new QProgressBar(this), u"bar"_s)),
      result_(NewLabel(this, u"result"_s, QString(), true)),
      exchange_(NewButton(this, u"exchange"_s, u"&Abgleichen"_s)),
      close_(NewButton(this, u"close"_s, u"Schließen"_s)) {
  bar_->setTextVisible(false);
  bar_->setAccessibleName(u"Fortschritt"_s);
  // Errors of a server are to be copied.
  result_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  QLabel* label = NewCaption(this, u"&Server:"_s, server_);
  auto* top = new QHBoxLayout;
  top->addWidget(label);
  top->addWidget(server_, 1);
  top->addWidget(test_);
  auto* texts = new QHBoxLayout;
  texts->addWidget(count_);
  texts->addStretch();
  texts->addWidget(remaining_);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(NewLabel(this, u"explanation"_s, ExplanationText(), true));
  layout->addLayout(top);
  layout->addSpacing(Air(*this));
  layout->addLayout(texts);
  layout->addWidget(bar_);
  layout->addWidget(result_);
  layout->addSpacing(Air(*this));
  layout->addLayout(NewButtonRow({exchange_, close_}));
  exchange_->setDefault(true);
  SetTabOrder({server_, test_, exchange_, close_});
  connect(server_, &QLineEdit::textChanged, this, [this] { ShowState(); });
  connect(test_, &QPushButton::clicked, this, [this, guard] {
    guard([this] {
      Start([this](const QString& server) { return work_.test(server, [this] { return !aborted_; }); },
            false);
    });
  });
  connect(exchange_, &QPushButton::clicked, this, [this, guard] {
    guard([this] {
      Start(
          [this](const QString& server) {
            return work_.exchange(server, {[this] { return !aborted_; },
                                           [this](int done, int total) {
                                             QMetaObject::invokeMethod(
                                                 this, [this, done, total] { Step(done, total); });
                                           }});
          },
          true);
    });
  });
  connect(close_, &QPushButton::clicked, this, [this] { reject(); });
}

SyncDialog::~SyncDialog() {
  aborted_ = true;
  if (thread_.joinable()) thread_.join();
}

void SyncDialog::Open(const QString& server) {
  if (!busy_) {
    stored_ = server;
    server_->setText(server);
    result_->clear();
    ShowState();
    FitToContent(*this, kCharacters);
    (server.isEmpty() ? static_cast<QWidget*>(server_) : exchange_)->setFocus();
  }
  ShowAboveOwner();
}

void SyncDialog::Start(const std::function<QString(const QString& server)>& work, bool exchanges) {
  if (busy_) return;
  const QString server = server_->text().trimmed();
  // What is at fault is not stored: it may hold a password.
  const QString fault = work_.fault(server);
  result_->setText(fault);
  if (!fault.isEmpty()) {
    FitToContent(*this, kCharacters);
    return;
  }
  if (server != stored_ && OnServer) OnServer(server);
  stored_ = server;
  busy_ = true;
  aborted_ = false;
  count_->setText(u"Verbindung wird aufgebaut"_s);
  since_.start();
  ShowState();
  thread_ = std::thread([this, work, server, exchanges] {
    QString result;
    try {
      result = work(server);
    } catch (const std::bad_alloc&) {
      result = u"Der Arbeitsspeicher reicht nicht aus."_s;
    }
    QMetaObject::invokeMethod(
        this, [this, result, exchanges] { End(result, exchanges); }, Qt::QueuedConnection);
  });
}

void SyncDialog::Step(int done, int total) {
  bar_->setRange(0, std::max(total, 1));
  bar_->setValue(total == 0 ? 1 : done);
  count_->setText(u"%1 von %2 Zeilen"_s.arg(done).arg(total));
  const double passed_s = static_cast<double>(since_.elapsed()) * kMillisecond_s;
  remaining_->setText(RemainingText(done > 0 ? passed_s / done * (total - done) : -1));
}

void SyncDialog::End(const QString& result, bool exchanged) {
  thread_.join();
  busy_ = false;
  count_->clear();
  remaining_->clear();
  result_->setText(result);
  ShowState();
  FitToContent(*this, kCharacters);
  if (exchanged && OnExchanged) OnExchanged();
}

void SyncDialog::ShowState() {
  const bool named = !server_->text().trimmed().isEmpty();
  server_->setReadOnly(busy_);
  test_->setEnabled(named && !busy_);
  exchange_->setEnabled(named && !busy_);
  close_->setText(busy_ ? u"Abbrechen"_s : u"Schließen"_s);
  close_->setEnabled(!busy_ || !aborted_);
  // Nothing is known yet: the bar runs to and fro.
  bar_->setRange(0, busy_ ? 0 : 1);
  bar_->reset();
  bar_->setEnabled(busy_);
}

void SyncDialog::reject() {
  if (!busy_) {
    Form::reject();
    return;
  }
  aborted_ = true;
  close_->setEnabled(false);
}

}  // namespace kalivor::ui
