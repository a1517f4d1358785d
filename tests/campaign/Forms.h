// The windows of a PC without a user: they keep what they are shown, and ask a hook where a user could act.
#pragma once

#include <QHash>
#include <QStringList>
#include <functional>
#include <vector>

#include "base/Module1.h"
#include "core/Forms.h"
#include "core/Report.h"
#include "platform/Events.h"
#include "platform/FileSystem.h"
#include "platform/MessageBox.h"
#include "platform/plain/PlainTreeView.h"

namespace kalivor::campaign {

class PlainMainForm final : public MainForm {
 public:
  platform::PlainTreeView tree;
  bool enabled = true;
  QString state;

  [[nodiscard]] platform::TreeView& Tree() override { return tree; }
  void SetPlantSelectorVisible(bool) override {}
  void SetEnabled(bool on) override { enabled = on; }
  void ShowState(const QString& text) override { state = text; }
  void ShowAgain() override {}
};

/// The report as the user sees it. `operations` counts what was added, whole lines and continuations.
class PlainReportView final : public ReportView {
 public:
  QStringList lines;
  int operations = 0;
  bool okEnabled = true;
  bool abortEnabled = false;

  void SetVisible(bool) override {}
  void Clear() override { lines.clear(); }
  void AppendLine(const QString& text) override {
    ++operations;
    lines.append(text);
  }
  void ContinueLine(const QString& text) override {
    ++operations;
    lines.last() += text;
  }
  void SetOkEnabled(bool on) override { okEnabled = on; }
  void SetAbortEnabled(bool on) override { abortEnabled = on; }
};

/// Keeps the questions; the answer comes with the next event.
class PlainChoiceForm final : public ChoiceForm {
 public:
  QStringList questions;  ///< question and both choices, separated by "|"

  void Show(const QString& question, const QString& first, const QString& second) override {
    questions.append(question + u'|' + first + u'|' + second);
  }
};

class NoEditors final : public EditorForms {
 public:
  void ShowNumberEditor(const NumberEdit&) override {}
  void ShowTextEditor(const TextEdit&) override {}
  void HideEditors() override {}
};

class PlainMessageBox final : public platform::MessageBox {
 public:
  QStringList texts;

  void Show(const QString& text, const QString&, Icon) override { texts.append(text); }
};

/// Lets the hooks act where a window program would deliver events.
class HookedEvents final : public platform::Events {
 public:
  std::function<void()> onPending;
  std::function<void()> onWait;

  void ProcessPending() override {
    if (onPending) onPending();
  }
  void WaitForNext() override {
    if (!onWait) throw RuntimeError(RuntimeError::Kind::MissingObject);
    onWait();
  }
};

class MemoryFiles final : public platform::FileSystem {
 public:
  QHash<QString, QByteArray> files;

  [[nodiscard]] platform::FileContent Read(const QString& path, qint64) override {
    const auto found = files.constFind(path);
    if (found == files.constEnd()) return {{}, QStringLiteral("Datei nicht gefunden.")};
    return {*found, {}};
  }
  [[nodiscard]] QString Overwrite(const QString& path, const QByteArray& beginning) override {
    files[path].replace(0, beginning.size(), beginning);
    return {};
  }
};

}  // namespace kalivor::campaign
