// A file that each running program of a user has for itself.
#pragma once

#include <QByteArray>
#include <QString>
#include <functional>
#include <set>

#include "platform/FileSystem.h"

namespace kalivor {

/// "Name.json", "Name-2.json"… up to kMostPrograms: a program takes one of them when it first needs it. An
/// empty file holds nothing.
class OwnFile {
 public:
  static constexpr int kMostPrograms = 9;

  /// Makes `path` this program's until its end, and the folder if it is missing; false where another program
  /// has it.
  using Taking = std::function<bool(const QString& path)>;

  /// What the user is told where a file cannot be read, or is damaged; its path follows.
  struct Texts {
    QString unreadable;
    QString damaged;
  };

  /// `files` must outlive it. With an empty folder there are no files.
  OwnFile(platform::FileSystem& files, QString folder, QString name, Texts texts, Taking take);

  /// The one that was taken; 0 and "" where there is none yet.
  [[nodiscard]] int Number() const { return number_; }
  [[nodiscard]] QString Path() const { return number_ == 0 ? QString() : PathOf(number_); }

  /// Takes the first one with something in it that is nobody else's. What it holds is given to `use`, which
  /// returns false for what is damaged; that is set aside. Returns what the user is to be told, else "".
  [[nodiscard]] QString Load(const std::function<bool(const QByteArray& bytes)>& use);

  /// Takes the first one that holds nothing, unless one was taken. Returns "" or why there is none.
  [[nodiscard]] QString TakeEmpty();

  /// Returns to one that was taken before; 0: to none. What it holds stays.
  void Use(int number) { number_ = number; }

 private:
  [[nodiscard]] QString PathOf(int number) const;
  [[nodiscard]] platform::FileContent Read(int number) const;
  void Take(int number);

  platform::FileSystem& files_;
  QString folder_;
  QString name_;
  Texts texts_;
  Taking take_;
  int number_ = 0;
  std::set<int> taken_;
};

}  // namespace kalivor
