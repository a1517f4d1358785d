// What a program without windows, disk and line gets in their place. It keeps what it is shown, and asks a
// hook where a user could act; it knows no test framework.
#pragma once

#include <QHash>
#include <QStringList>
#include <functional>

#include "core/Forms.h"
#include "core/Progress.h"
#include "core/Report.h"
#include "fakes/FileName.h"
#include "platform/Events.h"
#include "platform/FileSystem.h"
#include "platform/MessageBox.h"
#include "platform/SerialControl.h"

namespace kalivor::test {

class PlainMainForm final : public MainForm {
 public:
  platform::TreeView tree;
  bool plantSelectorVisible = true;
  bool enabled = true;
  QString state;

  [[nodiscard]] platform::TreeView& Tree() override { return tree; }
  void SetPlantSelectorVisible(bool visible) override { plantSelectorVisible = visible; }
  void SetEnabled(bool on) override { enabled = on; }
  void ShowState(const QString& text) override { state = text; }
  void ShowAgain() override {}
};

/// What long work shows.
class PlainProgress final : public ProgressForm {
 public:
  bool shown = false;    ///< ever
  bool visible = false;  ///< now

  void Show(const QString& /*work*/) override { shown = visible = true; }
  void Step(int /*done*/, int /*total*/, double /*remaining_s*/) override {}
  void Hide() override { visible = false; }
};

/// The report as the user sees it. `operations` counts what was added, whole lines and continuations.
class PlainReportView final : public ReportView {
 public:
  QStringList lines{QStringLiteral("Textbox")};  // as designed
  int operations = 0;
  bool visible = false;
  bool okEnabled = true;
  bool abortEnabled = false;

  void SetVisible(bool on) override { visible = on; }
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

/// Keeps the questions. Where no hook answers at once, the answer has to come with an event.
class PlainChoiceForm final : public ChoiceForm {
 public:
  QStringList questions;  ///< question and both choices, separated by "|"
  std::function<void()> onShow;

  void Show(const QString& question, const QString& first, const QString& second) override {
    questions.append(question + u'|' + first + u'|' + second);
    if (onShow) onShow();
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

/// Lets the hooks act where a window program would deliver events. Waiting for one that no hook sends would
/// never end.
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
  QHash<FileName, QByteArray> files;

  [[nodiscard]] platform::FileContent Read(const QString& path, qint64 largest_bytes) override {
    const auto found = files.constFind(path);
    if (found == files.constEnd()) return {{}, QStringLiteral("Datei nicht gefunden."), true};
    if (found->size() > largest_bytes) return {{}, QStringLiteral("Die Datei ist zu groß.")};
    return {*found, {}};
  }
  [[nodiscard]] QString Overwrite(const QString& path, const QByteArray& beginning) override {
    files[path].replace(0, beginning.size(), beginning);
    return {};
  }
  [[nodiscard]] QString Replace(const QString& path, const QByteArray& content) override {
    files[path] = content;
    return {};
  }
  [[nodiscard]] platform::FolderContent List(const QString& folder) override {
    return FolderOf(files, folder);
  }
  [[nodiscard]] QString Remove(const QString& path) override {
    files.remove(path);
    return {};
  }
  [[nodiscard]] platform::OpenedLog OpenLog(const QString& path) override {
    if (!files.contains(path)) return {nullptr, QStringLiteral("Datei nicht gefunden.")};
    return {std::make_unique<CalledLog>([this, path](const QByteArray& bytes) {
              files[path] += bytes;
              return QString();
            }),
            {}};
  }
};

/// No port can be opened.
class NoLine final : public platform::SerialControl {
 public:
  [[nodiscard]] bool Open(int, const QString&) override { return false; }
  void Close() override {}
  [[nodiscard]] bool IsOpen() const override { return false; }
  bool SetRts(bool) override { return false; }
  bool ClearInBuffer() override { return false; }
  bool ClearOutBuffer() override { return false; }
  void SetSThreshold(int) override {}
  void Output(const QByteArray&) override {}
  [[nodiscard]] int InBufferCount() override { return 0; }
  [[nodiscard]] QByteArray Input() override { return {}; }
  [[nodiscard]] platform::InputWait WaitForInput(double) override { return platform::InputWait::LineGone; }
  [[nodiscard]] int CommEvent() override { return platform::kCommEventNone; }
};

}  // namespace kalivor::test
