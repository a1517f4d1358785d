// What a text for others does not say: names and folders.
#pragma once

#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <vector>

namespace kalivor {

/// Each becomes "…" wherever it stands, in capitals or not. Empty ones are none.
struct LeftOut {
  QStringList names;    ///< of user and computer, as words of their own
  QStringList folders;  ///< whole paths, with either kind of separator; a root alone is none
};

/// Says everything but what is left out.
class Discretion {
 public:
  explicit Discretion(const LeftOut& leftOut);

  [[nodiscard]] QString Of(QString text) const;

 private:
  std::vector<QRegularExpression> patterns_;  // in the order in which they are looked for
};

}  // namespace kalivor
