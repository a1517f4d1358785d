// Waiting for the user's answer.
#include "core/Busy.h"

#include "fakes/Installation.h"

namespace kalivor::test {
namespace {

/// The user answers when this many events have come.
class AnsweringEvents final : public platform::Events {
 public:
  AnsweringEvents(Module1& module, qint16 answer, int after)
      : module_(module), answer_(answer), after_(after) {}

  int waits = 0;

  void ProcessPending() override {}
  void WaitForNext() override {
    if (++waits == after_) module_.Antwort = answer_;
  }

 private:
  Module1& module_;
  qint16 answer_;
  int after_;
};

/// Shows the question and leaves the answer to the events.
class PendingChoiceForm final : public ChoiceForm {
 public:
  explicit PendingChoiceForm(Module1& module) : module_(module) {}

  QStringList shown;
  qint16 answerWhenShown = 0;

  void Show(const QString& question, const QString& first, const QString& second) override {
    shown = {question, first, second};
    answerWhenShown = module_.Antwort;
  }

 private:
  Module1& module_;
};

TEST(AskChoice, WaitsInTheEventLoopUntilTheUserHasAnswered) {
  for (const qint16 answer : {qint16{1}, qint16{2}}) {
    Installation site;
    AnsweringEvents events(site.module, answer, 3);
    PendingChoiceForm form(site.module);
    Wiring wiring(site.module, site.timers, site.line,
                  {site.main, site.report, form, site.editors, site.box, site.files, events});
    site.module.Antwort = 2;  // of an earlier question
    EXPECT_EQ(AskChoice(wiring.core, u"Frage"_s, u"eins"_s, u"zwei"_s), answer);
    EXPECT_EQ(events.waits, 3);
    EXPECT_EQ(form.shown, (QStringList{u"Frage"_s, u"eins"_s, u"zwei"_s}));
    EXPECT_EQ(form.answerWhenShown, -1) << "an earlier answer must not count";
    EXPECT_EQ(site.main.shownAgain, 1);
  }
}

TEST(AskChoice, DoesNotWaitForAnAnswerThatIsThere) {
  Installation site;
  site.choice.answers = {2};
  EXPECT_EQ(AskChoice(site.core, u"Frage"_s, u"eins"_s, u"zwei"_s), 2);
  EXPECT_EQ(site.main.shownAgain, 1);
}

}  // namespace
}  // namespace kalivor::test
