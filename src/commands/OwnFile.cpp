#include "commands/OwnFile.h"

#include <utility>

#include "base/Paths.h"
#include "commands/DamagedFile.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

// A table takes some 300 KB.
constexpr qint64 kLargestFile_bytes = qint64{16} * 1024 * 1024;

bool IsEmpty(const platform::FileContent& file) {
  return file.missing || (file.Ok() && file.bytes.isEmpty());
}

}  // namespace

OwnFile::OwnFile(platform::FileSystem& files, QString folder, QString name, Texts texts, Taking take)
    : files_(files),
      folder_(std::move(folder)),
      name_(std::move(name)),
      texts_(std::move(texts)),
      take_(std::move(take)) {}

QString OwnFile::PathOf(int number) const {
  QString name = name_;
  if (number > 1) name.insert(name.lastIndexOf(u'.'), u"-%1"_s.arg(number));
  return WithSeparator(folder_) + name;
}

platform::FileContent OwnFile::Read(int number) const {
  return files_.Read(PathOf(number), kLargestFile_bytes);
}

void OwnFile::Take(int number) {
  if (!taken_.contains(number) && !take_(PathOf(number))) return;
  taken_.insert(number);
  number_ = number;
}

QString OwnFile::Load(const std::function<bool(const QByteArray& bytes)>& use) {
  number_ = 0;
  for (int number = 1; !folder_.isEmpty() && number_ == 0 && number <= kMostPrograms; ++number) {
    if (!IsEmpty(Read(number))) Take(number);
  }
  if (number_ == 0) return {};
  // Again, because its owner may have written it until a moment ago.
  const QString path = Path();
  const platform::FileContent file = Read(number_);
  if (!file.Ok()) {
    number_ = 0;
    return texts_.unreadable + u"\r\n"_s + path + u"\r\n"_s + file.error;
  }
  if (file.bytes.isEmpty() || use(file.bytes)) return {};
  QString error = SetAside(files_, path, file.bytes);
  if (error.isEmpty()) error = files_.Replace(path, {});
  // What cannot be set aside stays where it is.
  if (!error.isEmpty()) number_ = 0;
  return texts_.damaged + u"\r\n"_s + (error.isEmpty() ? DamagedName(path) : path + u"\r\n"_s + error);
}

QString OwnFile::TakeEmpty() {
  for (int number = 1; !folder_.isEmpty() && number_ == 0 && number <= kMostPrograms; ++number) {
    if (IsEmpty(Read(number))) Take(number);
  }
  return number_ == 0 ? folder_ : QString();
}

}  // namespace kalivor
