// The one exception of the program: an operation that had to end because of its input.
#pragma once

#include <QString>
#include <exception>

namespace kalivor {

/// Thrown where an operation cannot go on (index outside its table, number too large, text that is no
/// number…). It unwinds to the event boundary, which shows Description() and goes on; scope guards restore
/// every state on the way. Expected failures (silent line, unreadable file) are results, not exceptions.
class RuntimeError : public std::exception {
 public:
  enum class Kind {
    Bounds,
    Overflow,
    TypeMismatch,
    InvalidArgument,
    DivisionByZero,
    InvalidSelection,
    MissingObject,
    FileError,
  };

  /// `description`: one German sentence for the user; empty selects the general one of the kind.
  explicit RuntimeError(Kind kind, const QString& description = QString())
      : kind_(kind), description_(description.isEmpty() ? GeneralDescription(kind) : description) {}

  [[nodiscard]] Kind GetKind() const { return kind_; }
  [[nodiscard]] const QString& Description() const { return description_; }
  [[nodiscard]] const char* what() const noexcept override { return "kalivor::RuntimeError"; }

 private:
  static QString GeneralDescription(Kind kind) {
    using namespace Qt::StringLiterals;
    switch (kind) {
      case Kind::Bounds:
        return u"Index außerhalb des zulässigen Bereichs."_s;
      case Kind::Overflow:
        return u"Zahl außerhalb des zulässigen Bereichs."_s;
      case Kind::TypeMismatch:
        return u"Der Text ist keine Zahl."_s;
      case Kind::InvalidArgument:
        return u"Ungültiges Argument."_s;
      case Kind::DivisionByZero:
        return u"Division durch null."_s;
      case Kind::InvalidSelection:
        return u"Die Auswahl liegt außerhalb der Liste."_s;
      case Kind::MissingObject:
        return u"Das benötigte Objekt ist nicht vorhanden."_s;
      case Kind::FileError:
        return u"Fehler beim Zugriff auf eine Datei."_s;
    }
    return u"Unbekannter Fehler."_s;
  }

  Kind kind_;
  QString description_;
};

}  // namespace kalivor
