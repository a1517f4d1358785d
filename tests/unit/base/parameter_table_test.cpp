// The one way to change a value: what is stored, and who is told of it.
#include <gtest/gtest.h>
#include <memory>
#include <vector>

#include "base/ParameterTable.h"
#include "fakes/QtPrinters.h"
#include "fakes/ThrownKind.h"

using namespace Qt::StringLiterals;
using kalivor::test::ThrownKind;

namespace kalivor {
namespace {

struct ParameterTableTest : testing::Test {
  // On the heap: a table is large.
  std::unique_ptr<ParameterTable> table = std::make_unique<ParameterTable>();
  std::vector<ValueChange> changes;

  void Listen() {
    table->OnValue = [this](const ValueChange& change) { changes.push_back(change); };
  }
};

TEST_F(ParameterTableTest, StoresNumberTextOrBoth) {
  table->SetNumber(1, 5, ValueSource::Edited);
  EXPECT_EQ(table->Par[1].Wert, 5);
  table->SetText(1, u"a"_s, ValueSource::Edited);
  EXPECT_EQ(table->Par[1].WertText, u"a"_s);
  EXPECT_EQ(table->Par[1].Wert, 5) << "the other value stays";
  table->SetNumber(1, 6, ValueSource::Edited);
  EXPECT_EQ(table->Par[1].WertText, u"a"_s) << "the other value stays";
  table->SetValue(kLastParameter, {7, u"b"_s}, ValueSource::Edited);
  EXPECT_EQ(table->Par[kLastParameter].Wert, 7);
  EXPECT_EQ(table->Par[kLastParameter].WertText, u"b"_s);
}

TEST_F(ParameterTableTest, TellsIndexOldNewAndWhyBehindTheChange) {
  table->SetValue(3, {1, u"old"_s}, ValueSource::Standard);
  qint32 seen = 0;
  table->OnValue = [&](const ValueChange& change) {
    seen = table->Par[3].Wert;
    changes.push_back(change);
  };
  table->SetValue(3, {2, u"new"_s}, ValueSource::Loaded);
  ASSERT_EQ(changes.size(), 1U);
  EXPECT_EQ(changes[0].index, 3);
  EXPECT_EQ(changes[0].before, (ParameterValue{1, u"old"_s}));
  EXPECT_EQ(changes[0].after, (ParameterValue{2, u"new"_s}));
  EXPECT_EQ(changes[0].source, ValueSource::Loaded);
  EXPECT_EQ(seen, 2);
}

// Who wants to know what was received last needs those values as well.
TEST_F(ParameterTableTest, TellsOfAValueThatStaysTheSameThatItDoes) {
  table->SetValue(3, {1, u"a"_s}, ValueSource::Standard);
  Listen();
  table->SetValue(3, {1, u"a"_s}, ValueSource::Received);
  table->SetNumber(3, 1, ValueSource::Received);
  table->SetText(3, u"a"_s, ValueSource::Received);
  ASSERT_EQ(changes.size(), 3U);
  for (const ValueChange& change : changes)
    EXPECT_FALSE(change.Differs());
  table->SetText(3, u"b"_s, ValueSource::Received);
  EXPECT_TRUE(changes.back().Differs());
}

TEST_F(ParameterTableTest, AValueMayComeWithAType) {
  table->SetTyped(3, {1, u"a"_s}, u"int"_s, ValueSource::Loaded);
  Listen();
  table->SetTyped(3, {1, u"a"_s}, u"long"_s, ValueSource::Loaded);
  EXPECT_EQ(table->Par[3].Typ, u"long"_s);
  table->SetValue(3, {2, u"a"_s}, ValueSource::Edited);
  EXPECT_EQ(table->Par[3].Typ, u"long"_s) << "the type stays";
  ASSERT_EQ(changes.size(), 2U);
  EXPECT_EQ(changes[0].typBefore, u"int"_s);
  EXPECT_EQ(changes[0].typAfter, u"long"_s);
  EXPECT_TRUE(changes[0].Differs()) << "another type is another value";
  EXPECT_EQ(changes[1].typAfter, u"long"_s);
}

TEST_F(ParameterTableTest, ACopyIsSilentAndTheOriginalStaysObserved) {
  Listen();
  int readings = 0;
  table->OnDefinitions = [&](Rereading) { ++readings; };
  const auto copy = std::make_unique<ParameterTable>(*table);
  copy->SetNumber(1, 5, ValueSource::Edited);
  copy->OnDefinitions.Tell(Rereading::Definitions);
  EXPECT_EQ(changes.size(), 0U);
  EXPECT_EQ(readings, 0);
  *table = *copy;
  EXPECT_EQ(table->Par[1].Wert, 5);
  EXPECT_EQ(changes.size(), 0U) << "assigning a whole table tells nothing";
  table->SetNumber(1, 6, ValueSource::Edited);
  table->OnDefinitions.Tell(Rereading::Definitions);
  EXPECT_EQ(changes.size(), 1U);
  EXPECT_EQ(readings, 1);
}

TEST_F(ParameterTableTest, RefusesAnIndexOutsideTheTable) {
  Listen();
  for (const int index : {-1, kLastParameter + 1}) {
    EXPECT_EQ(ThrownKind([&] { table->SetNumber(index, 1, ValueSource::Edited); }),
              RuntimeError::Kind::Bounds);
    EXPECT_EQ(ThrownKind([&] { table->SetText(index, {}, ValueSource::Edited); }),
              RuntimeError::Kind::Bounds);
    EXPECT_EQ(ThrownKind([&] { table->SetValue(index, {}, ValueSource::Edited); }),
              RuntimeError::Kind::Bounds);
    EXPECT_EQ(ThrownKind([&] { table->SetTyped(index, {}, u"int"_s, ValueSource::Edited); }),
              RuntimeError::Kind::Bounds);
  }
  EXPECT_EQ(changes.size(), 0U);
}

}  // namespace
}  // namespace kalivor
