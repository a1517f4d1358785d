// The places of the added windows, their parts and the columns of their tables among the settings.
#include "ui/main/StoredPlace.h"

#include <QScreen>
#include <QTableWidget>

#include "gui/GuiFixture.h"

namespace kalivor::test {
namespace {

const QString kKey = u"Platz"_s;

TEST(StoredPlace, AWindowComesBackToWhereItWas) {
  MemorySettings settings;
  QWidget window;
  window.resize(400, 300);
  window.move(60, 40);
  ui::SavePlace(window, settings, kKey);
  QWidget next;
  ui::LoadPlace(next, settings, kKey);
  EXPECT_EQ(next.geometry(), QRect(60, 40, 400, 300));
}

TEST(StoredPlace, IsStoredInTwips) {
  MemorySettings settings;
  QWidget window;
  const double dpi = window.screen()->logicalDotsPerInchX();
  window.resize(qRound(2 * dpi), qRound(dpi));
  window.move(0, 0);
  ui::SavePlace(window, settings, kKey);
  EXPECT_EQ(settings.values[kKey], u"0 0 2880 1440"_s);
}

TEST(StoredPlace, OneOutOfReachIsMovedOntoAScreen) {
  MemorySettings settings;
  settings.values[kKey] = u"300000 300000 4500 4500"_s;
  QWidget window;
  ui::LoadPlace(window, settings, kKey);
  EXPECT_TRUE(QGuiApplication::primaryScreen()->availableGeometry().contains(window.geometry()));
}

TEST(StoredPlace, WhatCannotBeReadChangesNothing) {
  for (const QString& text : {QString(), u"x"_s, u"1 2 3"_s, u"1 2 3 4 5"_s, u"0 0 0 0"_s, u"0 0 -5 100"_s,
                              u"0 0 100 99999999999"_s, u"1,5 2 3000 4000"_s}) {
    MemorySettings settings;
    settings.values[kKey] = text;
    QWidget window;
    window.setGeometry(11, 12, 130, 140);
    ui::LoadPlace(window, settings, kKey);
    EXPECT_EQ(window.geometry(), QRect(11, 12, 130, 140)) << text.toStdString();
  }
}

TEST(StoredPlace, AWindowThatFillsTheScreenKeepsTheOneBefore) {
  MemorySettings settings;
  settings.values[kKey] = u"before"_s;
  QWidget window;
  window.setWindowState(Qt::WindowMaximized);
  ui::SavePlace(window, settings, kKey);
  EXPECT_EQ(settings.values[kKey], u"before"_s);
}

struct Columns {
  MemorySettings settings;
  QTableWidget table{0, 4};
  QHeaderView& header = *table.horizontalHeader();

  Columns() { table.setSortingEnabled(true); }

  void Load(const QString& text) {
    settings.values[kKey] = text;
    ui::LoadColumns(header, settings, kKey);
  }
  QString Saved() {
    ui::SaveColumns(header, settings, kKey);
    return settings.values[kKey];
  }
};

TEST(StoredColumns, ComeBackInTheirOrderWithWidthsHidingAndSorting) {
  Columns columns;
  const double dpi = columns.header.screen()->logicalDotsPerInchX();
  columns.header.moveSection(3, 0);
  for (int column = 0; column < 4; ++column)
    columns.header.resizeSection(column, qRound(dpi * (column + 1)));
  columns.header.setSectionHidden(2, true);
  columns.header.setSortIndicator(1, Qt::DescendingOrder);
  const QString text = columns.Saved();
  EXPECT_EQ(text, u"3:5760 0:1440 1:2880 2:0 <1"_s);
  Columns next;
  next.Load(text);
  EXPECT_EQ(next.Saved(), text);
  EXPECT_EQ(next.header.visualIndex(3), 0);
  EXPECT_TRUE(next.header.isSectionHidden(2));
  EXPECT_EQ(next.header.sortIndicatorSection(), 1);
  EXPECT_EQ(next.header.sortIndicatorOrder(), Qt::DescendingOrder);
}

TEST(StoredColumns, ComeBackWithoutSortingToo) {
  Columns columns;
  columns.header.setSortIndicator(-1, Qt::AscendingOrder);
  columns.header.moveSection(3, 0);
  const QString text = columns.Saved();
  EXPECT_FALSE(text.contains(u'>') || text.contains(u'<'));
  Columns next;
  next.Load(text);
  EXPECT_EQ(next.header.visualIndex(3), 0);
}

TEST(StoredColumns, WhatCannotBeReadChangesNothing) {
  for (const QString& text :
       {QString(), u"x"_s, u"0:1440 1:1440 2:1440"_s, u"0:1440 1:1440 2:1440 2:1440"_s,
        u"0:1440 1:1440 2:1440 4:1440"_s, u"0:1440 1:1440 2:1440 3"_s, u"0:0 1:0 2:0 3:0"_s,
        u"0:1440 1:1440 2:1440 3:-5"_s, u"0:1440 1:1440 2:1440 3:1440 >4"_s, u"-1:1 0:1 1:1 2:1 3:1"_s}) {
    Columns columns;
    const QString before = columns.Saved();
    columns.Load(text);
    EXPECT_EQ(columns.Saved(), before) << text.toStdString();
  }
}

TEST(StoredColumns, TheLastOneGoesOnFillingTheTable) {
  Columns columns;
  columns.header.setStretchLastSection(true);
  columns.Load(u"3:1440 0:1440 1:1440 2:1440"_s);
  columns.table.resize(1500, 300);
  columns.table.show();
  EXPECT_EQ(columns.header.length(), columns.table.viewport()->width());
}

TEST(StoredColumns, NoColumnGetsTooNarrowToBeTakenHoldOf) {
  Columns columns;
  columns.Load(u"0:1 1:1440 2:1440 3:1440"_s);
  EXPECT_GE(columns.header.sectionSize(0), columns.header.minimumSectionSize());
}

struct Parted {
  Parted() {
    for (int part = 0; part < 2; ++part)
      splitter.addWidget(new QWidget);
    splitter.resize(400 + splitter.handleWidth(), 100);
    splitter.setSizes({300, 100});
  }
  QSplitter splitter;
};

TEST(StoredParts, AreSharedAsBefore) {
  MemorySettings settings;
  Parted before;
  ui::SaveParts(before.splitter, settings, kKey);
  Parted next;
  next.splitter.setSizes({200, 200});
  ui::LoadParts(next.splitter, settings, kKey);
  EXPECT_EQ(next.splitter.sizes(), (QList<int>{300, 100}));
}

TEST(StoredParts, WhatCannotBeReadChangesNothing) {
  for (const QString& text :
       {QString(), u"x"_s, u"1"_s, u"1 2 3"_s, u"0 4000"_s, u"-5 100"_s, u"1 99999999999"_s}) {
    MemorySettings settings;
    settings.values[kKey] = text;
    Parted parted;
    ui::LoadParts(parted.splitter, settings, kKey);
    EXPECT_EQ(parted.splitter.sizes(), (QList<int>{300, 100})) << text.toStdString();
  }
}

}  // namespace
}  // namespace kalivor::test
