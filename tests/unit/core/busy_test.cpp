// The busy state: only the outermost operation switches the windows, and every end of it switches them back.
#include "core/Busy.h"

#include "core/Refresh.h"
#include "fakes/Installation.h"

namespace kalivor::test {
namespace {

void ExpectBusy(const Installation& site) {
  EXPECT_FALSE(site.main.enabled);
  EXPECT_EQ(site.main.state, u"Busy"_s);
  EXPECT_FALSE(site.report.okEnabled);
  EXPECT_TRUE(site.report.abortEnabled);
}

TEST(Busy, DisablesTheWindowAndOffersTheAbort) {
  Installation site;
  ToBusy(site.core);
  EXPECT_EQ(site.module.BusyDepth, 1);
  ExpectBusy(site);
  FromBusy(site.core);
  EXPECT_TRUE(site.Rests());
}

TEST(Busy, ForgetsAnAbortAtItsBeginningAndAtItsEnd) {
  Installation site;
  site.module.Abbruch = kTrue;
  ToBusy(site.core);
  EXPECT_EQ(site.module.Abbruch, kFalse);
  site.module.Abbruch = kTrue;
  FromBusy(site.core);
  EXPECT_EQ(site.module.Abbruch, kFalse);
}

TEST(Busy, LeavingWithoutHavingEnteredMakesTheWindowReady) {
  Installation site;
  site.main.enabled = false;
  FromBusy(site.core);
  EXPECT_TRUE(site.Rests());
}

TEST(Busy, InnerOperationsTouchNothing) {
  Installation site;
  const BusyGuard outer(site.core);
  site.module.Abbruch = kTrue;
  site.main.state = u"untouched"_s;
  {
    const BusyGuard inner(site.core);
    EXPECT_EQ(site.module.BusyDepth, 2);
  }
  EXPECT_EQ(site.module.BusyDepth, 1);
  EXPECT_EQ(site.module.Abbruch, kTrue);
  EXPECT_EQ(site.main.state, u"untouched"_s);
  EXPECT_FALSE(site.main.enabled);
}

TEST(Busy, ARebuildInsideAnOperationKeepsItsAbortRequest) {
  Installation site;
  const BusyGuard operation(site.core);
  site.module.Abbruch = kTrue;
  Refresh(site.core, 2);
  EXPECT_EQ(site.module.Abbruch, kTrue);
  ExpectBusy(site);
}

TEST(Waiting, TakesNoInputButShowsNoWork) {
  Installation site;
  site.main.state = u"untouched"_s;
  {
    const WaitingGuard waiting(site.core);
    EXPECT_EQ(site.module.BusyDepth, 1) << "commands return at once";
    EXPECT_FALSE(site.main.enabled);
    EXPECT_TRUE(site.report.okEnabled);
    EXPECT_FALSE(site.report.abortEnabled);
    // What begins inside it is an inner operation: the window is not switched on behind its back.
    Refresh(site.core, 2);
    EXPECT_FALSE(site.main.enabled);
  }
  EXPECT_EQ(site.module.BusyDepth, 0);
  EXPECT_TRUE(site.main.enabled);
  EXPECT_EQ(site.main.state, u"untouched"_s);
}

TEST(Waiting, InsideAnOperationTouchesNothing) {
  Installation site;
  const BusyGuard operation(site.core);
  { const WaitingGuard waiting(site.core); }
  EXPECT_EQ(site.module.BusyDepth, 1);
  ExpectBusy(site);
}

TEST(Busy, EndsWithAnErrorToo) {
  Installation site;
  EXPECT_TRUE(ThrownKind([&] {
    const BusyGuard operation(site.core);
    throw RuntimeError(RuntimeError::Kind::Bounds);
  }));
  EXPECT_TRUE(site.Rests());
}

}  // namespace
}  // namespace kalivor::test
