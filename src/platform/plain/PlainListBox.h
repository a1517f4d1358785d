// A drop-down list without a window, for the command line and for tests.
#pragma once

#include <QStringList>

#include "platform/ListBox.h"

namespace kalivor::platform {

class PlainListBox final : public ListBox {
 public:
  void Clear() override;
  void Add(const QString& text) override;
  [[nodiscard]] int Count() const override;
  [[nodiscard]] QString Text(int position) const override;
  [[nodiscard]] int Position() const override;
  void Select(int position) override;

 private:
  QStringList entries_;
  int position_ = -1;
};

}  // namespace kalivor::platform
