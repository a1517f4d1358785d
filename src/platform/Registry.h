// Reading the system's registry, where there is one.
#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

namespace kalivor::platform {

class Registry {
 public:
  virtual ~Registry() = default;

  enum class Hive { LocalMachine, CurrentUser };
  enum class Type { String, Number32, Other };

  struct Value {
    Type type = Type::Other;
    QByteArray bytes;  ///< as stored: a string in windows-1252, a number with its lowest byte first
  };

  /// An open key; 0 is none.
  using Key = quintptr;

  /// Opens a key for reading; 0 on failure. Every open key has to be closed.
  [[nodiscard]] virtual Key OpenKey(Hive hive, const QString& path) = 0;

  /// The value `name` of an open key; empty when there is none or it is longer than `capacity_bytes`.
  [[nodiscard]] virtual std::optional<Value> QueryValue(Key key, const QString& name, int capacity_bytes) = 0;

  virtual void CloseKey(Key key) = 0;
};

}  // namespace kalivor::platform
