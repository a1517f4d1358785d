// What a list has to do, by itself and with a list box that shows it: the same tests for both.
#pragma once

#include <gtest/gtest.h>

#include "base/SelectionList.h"
#include "fakes/QtPrinters.h"
#include "fakes/ThrownKind.h"

namespace kalivor::test {

/// `Harness` is default-constructible and offers
///   SelectionList& List();
///   void UserSelects(int position);  // what the user does with mouse or keyboard
/// Instantiate with INSTANTIATE_TYPED_TEST_SUITE_P(Name, SelectionListContract, Harness).
template <typename Harness>
class SelectionListContract : public testing::Test {
 protected:
  SelectionListContract() {
    list.OnChange = [this] {
      ++changes;
      positionInHandler = list.Position();
    };
  }

  void AddThree() {
    for (const char16_t* text : {u"eins", u"zwei", u"drei"})
      list.Add(QString::fromUtf16(text));
  }

  Harness harness;
  SelectionList& list = harness.List();
  int changes = 0;
  int positionInHandler = -2;
};

TYPED_TEST_SUITE_P(SelectionListContract);

TYPED_TEST_P(SelectionListContract, StartsEmpty) {
  EXPECT_EQ(this->list.Count(), 0);
  EXPECT_EQ(this->list.Position(), -1);
  EXPECT_EQ(this->list.SelectedText(), QString());
}

TYPED_TEST_P(SelectionListContract, FillingNeitherSelectsNorRunsTheHandler) {
  this->AddThree();
  EXPECT_EQ(this->list.Count(), 3);
  EXPECT_EQ(this->list.Position(), -1);
  EXPECT_EQ(this->changes, 0);
}

TYPED_TEST_P(SelectionListContract, KeepsTheOrderAndTheTexts) {
  this->AddThree();
  this->list.Add(QString());
  this->list.Add(QStringLiteral("eins"));
  EXPECT_EQ(this->list.Text(0), QStringLiteral("eins"));
  EXPECT_EQ(this->list.Text(1), QStringLiteral("zwei"));
  EXPECT_EQ(this->list.Text(2), QStringLiteral("drei"));
  EXPECT_EQ(this->list.Text(3), QString());
  EXPECT_EQ(this->list.Text(4), QStringLiteral("eins")) << "entries may repeat";
}

TYPED_TEST_P(SelectionListContract, OutsideTheListThereIsNoText) {
  this->AddThree();
  EXPECT_EQ(this->list.Text(-1), QString());
  EXPECT_EQ(this->list.Text(3), QString());
}

TYPED_TEST_P(SelectionListContract, SelectingRunsTheHandlerOnceAtTheNewPosition) {
  this->AddThree();
  this->list.Select(1);
  EXPECT_EQ(this->list.Position(), 1);
  EXPECT_EQ(this->list.SelectedText(), QStringLiteral("zwei"));
  EXPECT_EQ(this->changes, 1);
  EXPECT_EQ(this->positionInHandler, 1) << "the handler must already see the new position";
  this->list.Select(0);
  EXPECT_EQ(this->changes, 2);
  EXPECT_EQ(this->positionInHandler, 0);
}

TYPED_TEST_P(SelectionListContract, TheUsersSelectionRunsTheHandlerOnce) {
  this->AddThree();
  this->harness.UserSelects(2);
  EXPECT_EQ(this->list.Position(), 2);
  EXPECT_EQ(this->changes, 1);
  EXPECT_EQ(this->positionInHandler, 2);
}

TYPED_TEST_P(SelectionListContract, SelectingTheSamePositionAgainRunsNothing) {
  this->AddThree();
  this->list.Select(1);
  this->list.Select(1);
  this->harness.UserSelects(1);
  EXPECT_EQ(this->changes, 1);
}

TYPED_TEST_P(SelectionListContract, APositionWithTheSameTextIsAnotherPosition) {
  this->list.Add(QStringLiteral("gleich"));
  this->list.Add(QStringLiteral("gleich"));
  this->list.Select(0);
  this->list.Select(1);
  EXPECT_EQ(this->list.Position(), 1);
  EXPECT_EQ(this->changes, 2);
}

TYPED_TEST_P(SelectionListContract, SelectingOutsideIsRefusedAndChangesNothing) {
  const auto kindOf = [this](int position) { return ThrownKind([&] { this->list.Select(position); }); };
  EXPECT_EQ(kindOf(0), RuntimeError::Kind::InvalidSelection) << "the list is empty";
  this->AddThree();
  this->list.Select(1);
  EXPECT_EQ(kindOf(-1), RuntimeError::Kind::InvalidSelection);
  EXPECT_EQ(kindOf(3), RuntimeError::Kind::InvalidSelection);
  EXPECT_EQ(this->list.Position(), 1);
  EXPECT_EQ(this->changes, 1);
}

TYPED_TEST_P(SelectionListContract, AddingLaterKeepsTheSelection) {
  this->AddThree();
  this->list.Select(1);
  this->list.Add(QStringLiteral("vier"));
  EXPECT_EQ(this->list.Position(), 1);
  EXPECT_EQ(this->changes, 1);
}

TYPED_TEST_P(SelectionListContract, ClearingRemovesAllWithoutRunningTheHandler) {
  this->AddThree();
  this->list.Select(1);
  this->list.Clear();
  EXPECT_EQ(this->list.Count(), 0);
  EXPECT_EQ(this->list.Position(), -1);
  EXPECT_EQ(this->list.SelectedText(), QString());
  EXPECT_EQ(this->changes, 1);
}

TYPED_TEST_P(SelectionListContract, TheSamePositionAfterClearingIsAChange) {
  this->AddThree();
  this->list.Select(0);
  this->list.Clear();
  this->AddThree();
  this->list.Select(0);
  EXPECT_EQ(this->changes, 2);
}

TYPED_TEST_P(SelectionListContract, TheHandlerMayRefillTheList) {
  this->AddThree();
  int runs = 0;
  this->list.OnChange = [this, &runs] {
    if (++runs > 1) return;
    this->list.Clear();
    this->list.Add(QStringLiteral("neu"));
    this->list.Select(0);
  };
  this->list.Select(2);
  EXPECT_EQ(runs, 2);
  EXPECT_EQ(this->list.Position(), 0);
  EXPECT_EQ(this->list.SelectedText(), QStringLiteral("neu"));
}

TYPED_TEST_P(SelectionListContract, WorksWithoutAHandler) {
  this->list.OnChange = nullptr;
  this->AddThree();
  this->list.Select(2);
  EXPECT_EQ(this->list.Position(), 2);
}

REGISTER_TYPED_TEST_SUITE_P(SelectionListContract, StartsEmpty, FillingNeitherSelectsNorRunsTheHandler,
                            KeepsTheOrderAndTheTexts, OutsideTheListThereIsNoText,
                            SelectingRunsTheHandlerOnceAtTheNewPosition, TheUsersSelectionRunsTheHandlerOnce,
                            SelectingTheSamePositionAgainRunsNothing,
                            APositionWithTheSameTextIsAnotherPosition,
                            SelectingOutsideIsRefusedAndChangesNothing, AddingLaterKeepsTheSelection,
                            ClearingRemovesAllWithoutRunningTheHandler, TheSamePositionAfterClearingIsAChange,
                            TheHandlerMayRefillTheList, WorksWithoutAHandler);

}  // namespace kalivor::test
