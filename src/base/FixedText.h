// A text of fixed width, padded with blanks.
#pragma once

#include <QString>

namespace kalivor {

[[nodiscard]] inline QString WithoutTrailingBlanks(const QString& text) {
  qsizetype length = text.size();
  while (length > 0 && text.at(length - 1) == u' ')
    --length;
  return text.left(length);
}

/// Always exactly Width characters: shorter texts are padded with blanks on the right, longer ones cut.
/// Comparing with a text pads the shorter side, so "int" equals "int     ".
template <int Width>
class FixedText {
 public:
  FixedText() : text_(Blanks()) {}
  FixedText(const QString& text) : text_(text.leftJustified(Width, u' ', true)) {}

  [[nodiscard]] const QString& Padded() const { return text_; }

  [[nodiscard]] QString Trimmed() const { return WithoutTrailingBlanks(text_); }
  [[nodiscard]] bool StartsWith(QStringView beginning) const { return text_.startsWith(beginning); }

  friend bool operator==(const FixedText&, const FixedText&) = default;
  friend bool operator==(const FixedText& fixed, const QString& text) {
    return fixed.text_.leftJustified(text.size(), u' ') == text.leftJustified(Width, u' ');
  }

 private:
  // Shared by all that are empty: a table of thousands begins with nothing else.
  static const QString& Blanks() {
    static const QString blanks(Width, u' ');
    return blanks;
  }

  QString text_;
};

}  // namespace kalivor
