// Replays the corpus of the fuzz targets: every input that once reached something new, or found a defect.
#include <gtest/gtest.h>
#include <QDir>
#include <QFile>
#include <exception>

#include "Targets.h"

using namespace Qt::StringLiterals;

namespace kalivor::fuzz {

// The name of a target in gtest's output.
void PrintTo(const Target& target, std::ostream* out) {
  *out << target.name;
}

// A replay is short enough for every check.
bool InSample(QByteArrayView /*input*/, unsigned /*share*/) {
  return true;
}

namespace {

class Replay : public testing::TestWithParam<Target> {};

TEST_P(Replay, EveryInputOfTheCorpusIsTaken) {
  const QString folder =
      QStringLiteral(KALIVOR_SOURCE_DIR "/fuzz/corpus/") + QLatin1StringView(GetParam().name);
  const QFileInfoList inputs = QDir(folder).entryInfoList(QDir::Files, QDir::Name);
  ASSERT_FALSE(inputs.isEmpty()) << folder.toStdString();
  for (const QFileInfo& input : inputs) {
    QFile file(input.filePath());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << input.filePath().toStdString();
    try {
      GetParam().run(file.readAll());
    } catch (const std::exception& error) {
      ADD_FAILURE() << input.filePath().toStdString() << ": " << error.what();
    }
  }
}

std::string NameOf(const testing::TestParamInfo<Target>& target) {
  return target.param.name;
}

INSTANTIATE_TEST_SUITE_P(Fuzz, Replay, testing::ValuesIn(kTargets), NameOf);

}  // namespace
}  // namespace kalivor::fuzz
