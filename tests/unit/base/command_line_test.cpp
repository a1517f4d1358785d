// Words of a command line.
#include "base/CommandLine.h"

#include <gtest/gtest.h>

#include "fakes/QtPrinters.h"

using namespace Qt::StringLiterals;

namespace kalivor::test {
namespace {

TEST(OptionWord, HasItsValueBehindTheFirstEqualsSign) {
  struct {
    QString word, name;
    std::optional<QString> value;
  } const rows[] = {
      {u"--port"_s, u"--port"_s, std::nullopt},
      {u"--port=3"_s, u"--port"_s, u"3"_s},
      {u"--port="_s, u"--port"_s, u""_s},
      {u"--set=a=b"_s, u"--set"_s, u"a=b"_s},
      {u"="_s, u""_s, u""_s},
  };
  for (const auto& row : rows) {
    const OptionWord word(row.word);
    EXPECT_EQ(word.name, row.name);
    EXPECT_EQ(word.value, row.value) << row.word.toStdString();
  }
}

}  // namespace
}  // namespace kalivor::test
