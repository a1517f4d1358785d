// A small plant and runs over it, as the engine makes them.
#pragma once

#include <QList>
#include <functional>
#include <memory>
#include <vector>

#include "base/Module1.h"
#include "core/SafeTransfer.h"

namespace kalivor::test {

using namespace Qt::StringLiterals;

/// Six values: a number, one of two words, two bytes of one word, a text, an element of an array.
class SafePlant {
 public:
  SafePlant() {
    module->VersionList.Add(u"AB1-123.4"_s);
    module->VersionList.Select(0);
    module->PlantTypeList.Add(u""_s);
    module->PlantTypeList.Add(u"B"_s);
    module->PlantTypeList.Select(1);
    module->Adresse = 7;
    module->Schnittstelle = 2;
    Add(u"zahl"_s, u"1F00"_s, u"int"_s);
    Add(u"lang"_s, u"1F02"_s, u"long"_s);
    Add(u"hoch"_s, u"1F06"_s, u"char"_s);
    Add(u"tief"_s, u"1F07"_s, u"char"_s);
    Add(u"text"_s, u"1F08"_s, u"string4"_s);
    Add(u"feld"_s, u"1F0C"_s, u"int"_s);
    for (quint16 address = 0x1F00; address <= 0x1F0C; address = static_cast<quint16>(address + 2))
      controller[address] = 0x2020;
  }

  /// What was read for all values: each of them is to be another one, and those of `chosen` are chosen.
  [[nodiscard]] SafeRun Run(const QList<int>& chosen, SafeKind kind = SafeKind::Send) const {
    SafeRun run;
    run.kind = kind;
    run.version = u"AB1-123.4"_s;
    run.plant = 1;
    run.before = run.now = controller;
    for (int i = 1; i < module->ParCount; ++i) {
      SafeValue& value = run.values.emplace_back();
      value.index = i;
      value.wanted = i == 5 ? ParameterValue{0, u"neu"_s} : ParameterValue{i == 2 ? -2 : 10 + i, {}};
      value.words = Coded(module->Par[i], value.wanted).words;
      value.before = value.controller = Decoded(module->Par[i], controller);
      value.state = SafeState::Different;
      value.chosen = chosen.contains(i);
    }
    return run;
  }

  /// The run that brings back what `words` hold.
  [[nodiscard]] SafeRun Back(const QList<int>& chosen, const ControllerImage& words) const {
    SafeRun run = Run(chosen, SafeKind::TakeBack);
    for (SafeValue& value : run.values) {
      if (!value.chosen) continue;
      for (CodedWord& word : value.words)
        word.bits = static_cast<quint16>(words.at(word.address) & word.mask);
    }
    return run;
  }

  /// Writes the chosen values as the engine does, at most `most` words: each is told before. Returns the
  /// first error.
  QString Write(SafeKeeper& keeper, SafeRun& run, int most = 100) {
    for (SafeValue& value : run.values) {
      if (!value.chosen) continue;
      value.state = SafeState::Unverified;
      for (const CodedWord& word : value.words) {
        quint16& now = controller[word.address];
        if (word.FitsIn(now)) continue;
        if (most-- == 0) return {};
        QString error = keeper.Before(word.address);
        if (!error.isEmpty()) return error;
        run.begun.insert(word.address);
        now = static_cast<quint16>((now & ~word.mask) | word.bits);
      }
      value.state = SafeState::Verified;
    }
    return {};
  }

  std::unique_ptr<Module1> module = std::make_unique<Module1>();
  ControllerImage controller;

 private:
  void Add(const QString& variable, const QString& address, const QString& type) const {
    ParameterRecord& record = module->Par[module->ParCount++];
    record.Variable = variable;
    record.VarAdresse = address;
    record.Typ = type;
    record.Min = -128;
    record.Max = 127;
  }
};

}  // namespace kalivor::test
