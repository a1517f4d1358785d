// The report for a support desk: all that is known about program, line and controller, on one page.
#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <functional>
#include <utility>
#include <vector>

#include "base/Module1.h"
#include "check/DefinitionCheck.h"
#include "comm/ExchangeLog.h"
#include "core/QualityPicture.h"
#include "diagnosis/LeftOut.h"
#include "platform/FileSystem.h"
#include "platform/PortDirectory.h"

namespace kalivor {

/// A line of a table: what it is called, and what it is.
using NamedText = std::pair<QString, QString>;

/// What the report says.
struct Diagnosis {
  QDateTime time;
  std::vector<NamedText> system;  ///< program, operating system, computer
  QList<platform::PortEntry> ports;
  std::vector<NamedText> settings;
  std::vector<Finding> findings;  ///< of the check of the definition files
  QString findingsFailure;        ///< German, why it did not take place; "" where it did
  LineQuality ofTransfer;
  LineQuality sinceStart;
  QString report;        ///< the lines of the last report
  qint64 exchanges = 0;  ///< since the start
  QString telegrams;     ///< the lines of a trace of the last ones
};

/// What it is taken from. Everything must outlive the collecting.
struct DiagnosisSources {
  const Module1& module;
  const ExchangeLog& exchanges;
  platform::PortDirectory& ports;
  platform::FileSystem& files;
  QString report;
  std::vector<NamedText> system;
};

/// So many exchanges are told.
inline constexpr int kToldExchanges = 1000;

/// Looks at everything as it is now. Reads the definition files, opens no port.
[[nodiscard]] Diagnosis Collect(const DiagnosisSources& sources, const QDateTime& now);

/// One page in German, in UTF-8 when it is written, without anything from elsewhere. Every text is shown as
/// it stands, but for what is left out. `picture` draws the quality of the line.
[[nodiscard]] QString DiagnosisHtml(
    const Diagnosis& diagnosis, const LeftOut& leftOut,
    const std::function<QString(const LineQuality& quality)>& picture = QualitySvg);

}  // namespace kalivor
