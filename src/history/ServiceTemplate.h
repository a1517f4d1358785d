// Pages of HTML with places for texts and rows, which a company may lay out itself.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <cstddef>
#include <span>
#include <vector>

namespace kalivor::history {

struct TemplateList;

/// What a template may name: texts, and lists whose rows have texts and lists of their own.
struct TemplateScope {
  std::span<const QStringView> texts;
  std::span<const TemplateList> lists = {};
};

struct TemplateList {
  QStringView name;
  TemplateScope row;
};

/// What stands in the places: of a scope's texts and lists those with the same number. What is missing at
/// the end is empty.
struct TemplateRow {
  QStringList texts;
  std::vector<std::vector<TemplateRow>> lists = {};
};

/// A page of HTML with marks in it:
///
///     {{name}}                the text, never taken as HTML; its line breaks are line breaks
///     {{#list}}…{{/list}}     for each row of the list
///     {{?name}}…{{/name}}     once, where the text or the list is not empty
///     {{^name}}…{{/name}}     once, where it is empty
///
/// In a row its own names count before those around it; a list is repeated only in the scope that has it, so
/// that a page grows with the number of rows and no faster.
class ServiceTemplate {
 public:
  static constexpr qsizetype kLargest_bytes = qsizetype{256} * 1024;
  static constexpr qsizetype kLongestPage = qsizetype{4} * 1024 * 1024;  ///< characters
  static constexpr int kDeepest = 8;                                     ///< sections in each other

  struct Parsed;

  /// `html` is UTF-8. `scope` is that of the whole page and must outlive the template.
  [[nodiscard]] static Parsed Parse(const QByteArray& html, const TemplateScope& scope);

  /// What came of filling in.
  struct Page {
    QString html;
    QString error;  ///< German: it is too long; "" where it is not
  };

  [[nodiscard]] Page Render(const TemplateRow& values) const;

 private:
  enum class What { Html, Text, Each, Any, None };

  // Html: `html`. Text: a text of the scope `outwards` scopes further out. The others: a section, which ends
  // before part `end`, about the text or list `number` there.
  struct Part {
    What what = What::Html;
    QString html = {};
    bool list = false;
    std::size_t outwards = 0;
    qsizetype number = 0;
    std::size_t end = 0;
  };

  class Parser;
  class Renderer;

  std::vector<Part> parts_;
};

struct ServiceTemplate::Parsed {
  ServiceTemplate page;  ///< empty after an error
  QString error;         ///< German, with the line; "" where there is none
};

}  // namespace kalivor::history
