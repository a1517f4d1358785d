// Thousands of random actions, taken back and done again, against copies of the table as a plain model.
#include <deque>

#include "campaign/Random.h"
#include "commands/EditorCommands.h"
#include "commands/TransferCommands.h"
#include "core/ParameterTypes.h"
#include "core/Refresh.h"
#include "core/ValueFiles.h"
#include "unit/core/Recording.h"

namespace kalivor::test {
namespace {

constexpr int kActions = 20'000;
// The table is large: more steps than these are not kept.
constexpr std::size_t kMostSteps = 12;
// Parameters and free slots that the actions reach.
constexpr int kReached = 12;

// A step of the model: the tables on both of its sides, and the marks that it exchanges.
struct ModelStep {
  std::shared_ptr<const Module1> before, after;
  std::unique_ptr<TreeState> otherMarks;
};

class RandomActions : public Recording {
 public:
  explicit RandomActions(quint64 seed)
      : random_(seed), now_(Copy()), marks_(std::make_unique<TreeState>(module)) {
    for (int i = 0; i < kActions; ++i)
      choice.answers.push_back(static_cast<qint16>(random_.Between(1, 2)));
    module.Dateiname = u"a.qpf"_s;
    Do([this] { EXPECT_TRUE(WriteValueFile(core)); });
  }

  void Act() {
    action_ = random_.Below(100);
    if (action_ < 30) {
      UndoOrRedo();
    } else if (action_ < 40) {
      Mark();
    } else {
      Change();
    }
    Expect();
  }

 private:
  void UndoOrRedo() {
    const bool back = random_.Chance(0.6);
    auto& from = back ? done_ : again_;
    ASSERT_EQ(steps.size(), done_.size());
    ASSERT_EQ(undone.size(), again_.size());
    if (from.empty()) return;
    ModelStep step = std::move(from.back());
    from.pop_back();
    back ? Undo() : Redo();
    now_ = back ? step.before : step.after;
    if (step.otherMarks) std::swap(step.otherMarks, marks_);
    (back ? again_ : done_).push_back(std::move(step));
  }

  void Mark() {
    const int index = random_.Below(kReached);
    qint16& mark = random_.Chance(0.5) ? module.ParNode[index] : module.NodeState[index];
    mark = random_.Chance(0.5) ? kTrue : kFalse;
    *marks_ = module;
  }

  void Change() {
    const std::size_t before = steps.size();
    auto marksBefore = std::make_unique<TreeState>(module);
    const int times = forgotten;
    Do([this] { ChangeSomething(); });
    *marks_ = module;
    if (forgotten != times) {
      done_.clear();
      again_.clear();
    } else if (steps.size() != before) {
      ASSERT_EQ(steps.size(), before + 1);
      again_.clear();
      auto after = std::shared_ptr<const Module1>(Copy());
      EXPECT_NE(TableDifference(*now_, *after) + MarkDifference(*marksBefore, *after), QString());
      if (!steps.back().otherSide) marksBefore.reset();
      done_.push_back({now_, after, std::move(marksBefore)});
      now_ = after;
      if (done_.size() > kMostSteps) {
        done_.pop_front();
        steps.erase(steps.begin());
      }
      return;
    }
    // What was read from other files is the new beginning; without a step nothing may differ.
    if (forgotten != times) now_ = Copy();
  }

  void ChangeSomething() {
    if (action_ < 60) return Edit();
    if (action_ < 64) return CommandStandard_Click(core);
    if (action_ < 74) return Transfer();
    if (action_ < 80) return Load();
    if (action_ < 86) return SwitchVersion();
    if (action_ < 92) return SwitchPlantType();
    if (action_ < 94) return ChangeDefinitions();
    if (action_ < 95) return Refresh(core, 5);
    // Several at once.
    Edit();
    SwitchPlantType();
    Edit();
  }

  void Edit() {
    const int index = random_.Between(1, kReached);
    const ValueSource sources[] = {ValueSource::Edited, ValueSource::TakenOver, ValueSource::Recovered};
    const ValueSource source = sources[random_.Below(3)];
    if (TypeOf(module.Par[index].Typ).kind == ValueKind::Text) {
      module.SetText(index, QString(random_.Below(4), u'a'), source);
    } else {
      module.SetNumber(index, random_.Below(4), source);
    }
  }

  // Receives, sends or compares, with silence, an abort or other values on the way.
  void Transfer() {
    Store(0x1F00, {static_cast<quint16>(random_.Below(4)), 0, static_cast<quint16>(random_.Below(4))});
    Store(0x2000, {static_cast<quint16>(random_.Below(4))});
    if (random_.Chance(0.4)) Silence(faults.Exchanges() + random_.Between(1, 8), random_.Between(1, 12));
    const int dots = random_.Below(6);
    int dot = 0;
    report.onDot = [this, dots, dot]() mutable {
      if (++dot > dots) module.Abbruch = kTrue;
    };
    const int kind = random_.Below(5);
    if (kind == 0) {
      CommandSenden_Click(core);
    } else if (kind == 1) {
      CommandVergleichen_Click(core);
    } else {
      CommandEmpfangen_Click(core);
    }
  }

  void Load() {
    if (random_.Chance(0.4)) (void)WriteValueFile(core);
    if (random_.Chance(0.5)) Edit();
    (void)ReadValueFile(core);
  }

  void SwitchVersion() { module.VersionList.Select(random_.Below(module.VersionList.Count())); }

  void SwitchPlantType() {
    if (module.PlantTypeList.Count() > 0)
      module.PlantTypeList.Select(random_.Below(module.PlantTypeList.Count()));
  }

  // The second version's file becomes bad, or good again, and is read.
  void ChangeDefinitions() {
    const QString good = u"Antrieb  Drehzahl  0  30000  1000  1/m  1  0  int  abc[3]  _abc  -  -"_s;
    const QString bad = u"Antrieb  Zu groß  0  99999999999  1  -  0  0  int  1F00  _g  -  -"_s;
    SetDefinitions(u"B.TXT"_s, random_.Chance(0.5) ? QStringList{good} : QStringList{good, good, bad});
    Refresh(core, 4);
  }

  void Expect() {
    (void)box.Take();
    // Loading what is there already is no step, but pads texts.
    const int last = ++actions_ % 50 == 0 ? kLastParameter : kReached + 1;
    ASSERT_EQ(TableDifference(*now_, module, false, last), QString()) << "action " << action_;
    ASSERT_EQ(MarkDifference(*marks_, module), QString()) << "action " << action_;
    ASSERT_TRUE(log.Rests());
    ASSERT_TRUE(Rests());
  }

  campaign::Random random_;
  std::shared_ptr<const Module1> now_;  // the table as it has to be
  std::unique_ptr<TreeState> marks_;
  std::deque<ModelStep> done_, again_;
  int action_ = 0;   // which
  int actions_ = 0;  // how many
};

TEST(ChangeLog, TwentyThousandRandomActions) {
  RandomActions site(17);
  for (int i = 0; i < kActions && !testing::Test::HasFatalFailure(); ++i)
    site.Act();
}

}  // namespace
}  // namespace kalivor::test
