// Settings: any bytes as the stored file; what is stored reads back the same.
#include <memory>

#include "PlainReading.h"
#include "Targets.h"
#include "World.h"
#include "base/Numbers.h"
#include "commands/OptionsCommands.h"
#include "commands/SettingsTable.h"
#include "platform/plain/IniText.h"

using namespace Qt::StringLiterals;

namespace kalivor::fuzz {
namespace {

class MemoryStore final : public platform::SettingsStore {
 public:
  MemoryStore() = default;
  explicit MemoryStore(QByteArrayView file) : texts_(platform::ReadIni(file)) {}

  [[nodiscard]] const QSettings::SettingsMap& Texts() const { return texts_; }

  [[nodiscard]] QString Get(const QString& section, const QString& key,
                            const QString& fallback) const override {
    return texts_.value(section + u'/' + key, fallback).toString();
  }
  void Save(const QString& section, const QString& key, const QString& value) override {
    texts_[section + u'/' + key] = value;
  }

 private:
  QSettings::SettingsMap texts_;
};

// True when the stored text is a number that its field can hold.
bool IsUsable(const QString& text) {
  try {
    (void)StrictInt16(text);
    return true;
  } catch (const RuntimeError&) {
    return false;
  }
}

void CheckNumber(const platform::SettingsStore& store, const QString& key, qint16 loaded, int& boxes) {
  const QString text = store.Get(u"Settings"_s, key, u"1"_s);
  if (IsUsable(text)) {
    Require(loaded == StrictInt16(text), "a stored number is taken");
  } else {
    Require(loaded == 1, "the default stands for what is no number");
    ++boxes;
  }
}

bool SameSettings(const Module1& a, const Module1& b) {
  return a.Adresse == b.Adresse && a.Schnittstelle == b.Schnittstelle && a.Userpath == b.Userpath &&
         a.Inipath == b.Inipath && a.Inifile == b.Inifile;
}

}  // namespace

void Settings(QByteArrayView input) {
  static const std::unique_ptr<Module1> loaded = std::make_unique<Module1>();
  static const std::unique_ptr<Module1> again = std::make_unique<Module1>();
  const MemoryStore store(input);
  Require(platform::ReadIni(platform::WriteIni(store.Texts())) == store.Texts(),
          "a file written anew reads the same");
  test::PlainMessageBox box;
  LoadSettings(*loaded, store, box, u"/programs"_s);

  int boxes = 0;
  CheckNumber(store, u"Adresse"_s, loaded->Adresse, boxes);
  CheckNumber(store, u"Schnittstelle"_s, loaded->Schnittstelle, boxes);
  Require(box.texts.size() == boxes, "a box for each number that is none");
  const OptionsContent options = OptionsOf(*loaded);
  Require(options.portPosition >= -1 && options.portPosition < 8, "the dialog has eight ports");
  Require(options.addressPosition >= -1 && options.addressPosition < 256, "the dialog has 256 addresses");

  // Storing costs as much again, and depends on few of the bytes.
  if (!InSample(input, 8)) return;
  MemoryStore changed;
  SaveSettings(*loaded, changed);
  const MemoryStore stored(platform::WriteIni(changed.Texts()));
  LoadSettings(*again, stored, box, u"/elsewhere"_s);
  Require(box.texts.size() == boxes, "what is stored needs no box");
  Require(SameSettings(*loaded, *again), "what is stored reads back the same");
}

}  // namespace kalivor::fuzz
