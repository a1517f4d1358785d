// Files in memory for a program that is killed in the middle of an operation on one.
#pragma once

#include <functional>

#include "campaign/Random.h"
#include "fakes/NullForms.h"

namespace kalivor::campaign {

/// Thrown where a program ends in the middle of its work; nobody catches it but the campaign.
struct Killed {};

/// What a program has done to its files when it is killed stays. A file that is replaced is the old or the
/// new one, of what is appended any beginning is there.
class MortalFiles final : public platform::FileSystem {
 public:
  explicit MortalFiles(Random& random) : random_(random) {}

  test::MemoryFiles memory;
  int killAt = -1;    ///< operations that change something until the program is killed; never, when negative
  bool dead = false;  ///< it was, and changes nothing any more

  [[nodiscard]] platform::FileContent Read(const QString& path, qint64 largest_bytes) override {
    return memory.Read(path, largest_bytes);
  }
  [[nodiscard]] QString Overwrite(const QString& path, const QByteArray& beginning) override {
    return Whole([&] { return memory.Overwrite(path, beginning); });
  }
  [[nodiscard]] QString Replace(const QString& path, const QByteArray& content) override {
    return Whole([&] { return memory.Replace(path, content); });
  }
  [[nodiscard]] platform::FolderContent List(const QString& folder) override { return memory.List(folder); }
  [[nodiscard]] QString Remove(const QString& path) override {
    return Whole([&] { return memory.Remove(path); });
  }
  [[nodiscard]] platform::OpenedLog OpenLog(const QString& path) override {
    platform::OpenedLog opened = memory.OpenLog(path);
    if (!opened.log) return opened;
    return {std::make_unique<Log>(*this, std::move(opened.log)), {}};
  }

 private:
  class Log final : public platform::LogFile {
   public:
    Log(MortalFiles& files, std::unique_ptr<platform::LogFile> log) : files_(files), log_(std::move(log)) {}
    [[nodiscard]] QString Append(const QByteArray& bytes) override {
      const auto beginning = [&] {
        return log_->Append(bytes.left(files_.random_.Below(static_cast<int>(bytes.size()) + 1)));
      };
      return files_.Do([&] { return log_->Append(bytes); }, beginning);
    }

   private:
    MortalFiles& files_;
    std::unique_ptr<platform::LogFile> log_;
  };

  QString Whole(const std::function<QString()>& change) {
    return Do(change, [&] { return random_.Chance(0.5) ? change() : QString(); });
  }

  QString Do(const std::function<QString()>& change, const std::function<QString()>& half) {
    if (dead) return QStringLiteral("killed");
    if (killAt < 0 || --killAt >= 0) return change();
    dead = true;
    (void)half();
    throw Killed{};
  }

  Random& random_;
};

}  // namespace kalivor::campaign
