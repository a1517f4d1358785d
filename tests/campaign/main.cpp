// kalivor-campaign: the long runs that ordinary tests have no time for. script/campaign starts it.
#include <QCoreApplication>
#include <QStringList>
#include <cstdio>

#include "campaign/RealEndurance.h"
#include "campaign/SafeTransfers.h"
#include "campaign/Transfers.h"

using namespace Qt::StringLiterals;

namespace {

constexpr int kUsage = 2;

int Usage() {
  (void)std::fprintf(stderr,
                     "usage: kalivor-campaign transfers|safe [--seeds N] [--seed FIRST]\n"
                     "       kalivor-campaign endurance [--hours N | --real MINUTES]\n"
                     "See script/campaign --help.\n");
  return kUsage;
}

// The number behind option `name`; `fallback` without the option, -1 when it is none.
double Option(const QStringList& arguments, const QString& name, double fallback) {
  const qsizetype at = arguments.indexOf(name);
  if (at < 0) return fallback;
  bool valid = false;
  const double number = arguments.value(at + 1).toDouble(&valid);
  return valid && number >= 0 ? number : -1;
}

}  // namespace

int main(int argc, char** argv) {
  using namespace kalivor::campaign;
  const QCoreApplication application(argc, argv);
  const QStringList arguments = QCoreApplication::arguments().sliced(1);
  const QString what = arguments.value(0);
  if (what == u"transfers" || what == u"safe") {
    const double seeds = Option(arguments, u"--seeds"_s, 10'000);
    const double first = Option(arguments, u"--seed"_s, 1);
    if (seeds >= 1 && first >= 0) {
      return (what == u"safe" ? RunSafeTransfers : RunTransfers)(static_cast<quint64>(first),
                                                                 static_cast<qint64>(seeds));
    }
  }
  if (what == u"endurance") {
    const double minutes = Option(arguments, u"--real"_s, -1);
    if (minutes >= 0) return RunRealEndurance(minutes * 60);
    const double hours = Option(arguments, u"--hours"_s, 24);
    if (hours > 0 && !arguments.contains(u"--real"_s)) return RunSimulatedEndurance(hours);
  }
  return Usage();
}
