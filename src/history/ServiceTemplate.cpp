#include "history/ServiceTemplate.h"

#include <QStringDecoder>
#include <algorithm>
#include <optional>

#include "core/ListTable.h"

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

constexpr QStringView kOpening = u"{{";
constexpr QStringView kClosing = u"}}";
constexpr qsizetype kLongestMark = 64;

// Line breaks of a text are line breaks on the page.
QString PageText(const QString& text) {
  QString html = HtmlText(text);
  html.replace(u"\r\n"_s, u"\n"_s).replace(u'\r', u'\n');
  return html.replace(u'\n', u"<br>"_s);
}

template <class Range, class Name>
std::optional<qsizetype> NumberOf(const Range& range, QStringView wanted, Name name) {
  const auto found = std::ranges::find(range, wanted, name);
  if (found == range.end()) return std::nullopt;
  return found - range.begin();
}

}  // namespace

class ServiceTemplate::Parser {
 public:
  Parser(QStringView text, const TemplateScope& scope) : text_(text), scopes_{&scope} {}

  /// Returns "" or what is wrong, with its line.
  [[nodiscard]] QString Parse(std::vector<Part>& parts) {
    parts_ = &parts;
    qsizetype from = 0;
    while (fault_.isEmpty()) {
      const qsizetype opening = text_.indexOf(kOpening, from);
      AddHtml(text_.sliced(from, (opening < 0 ? text_.size() : opening) - from));
      if (opening < 0) break;
      line_ += static_cast<int>(text_.sliced(from, opening - from).count(u'\n'));
      const qsizetype begin = opening + kOpening.size();
      const qsizetype length =
          text_.sliced(begin).first(std::min(kLongestMark, text_.size() - begin)).indexOf(kClosing);
      if (length < 0) return At(line_, u"Zu {{ fehlt }}."_s);
      AddMark(text_.sliced(begin, length));
      line_ += static_cast<int>(text_.sliced(begin, length).count(u'\n'));
      from = begin + length + kClosing.size();
    }
    if (fault_.isEmpty() && !open_.empty())
      return At(open_.back().line,
                u"%1 wird nicht geschlossen: Es fehlt {{/%2}}."_s.arg(open_.back().mark, open_.back().name));
    return fault_;
  }

 private:
  struct Open {
    QString mark;
    QString name;
    int line = 0;
    std::size_t part = 0;
  };

  [[nodiscard]] static QString At(int line, const QString& what) {
    return u"Zeile %1: %2"_s.arg(line).arg(what);
  }
  void Fail(const QString& what) { fault_ = At(line_, what); }

  void AddHtml(QStringView html) {
    if (!html.isEmpty()) parts_->push_back({What::Html, html.toString()});
  }

  void AddMark(QStringView inner) {
    const QString mark = u"{{%1}}"_s.arg(inner);
    inner = inner.trimmed();
    const QChar sign = inner.isEmpty() ? QChar() : inner.front();
    if (sign == u'/') {
      Close(mark, inner.sliced(1).trimmed().toString());
    } else if (sign == u'#') {
      OpenSection(What::Each, mark, inner.sliced(1).trimmed());
    } else if (sign == u'?') {
      OpenSection(What::Any, mark, inner.sliced(1).trimmed());
    } else if (sign == u'^') {
      OpenSection(What::None, mark, inner.sliced(1).trimmed());
    } else {
      const std::optional<Part> part = Find(What::Text, mark, inner);
      if (!part) return;
      if (part->list)
        return Fail(u"%1 ist eine Liste, kein Text: {{#%2}}…{{/%2}} wiederholt, was dazwischen steht."_s.arg(
            mark, inner.toString()));
      parts_->push_back(*part);
    }
  }

  // A text or list of the innermost scope that has one of that name.
  [[nodiscard]] std::optional<Part> Find(What what, const QString& mark, QStringView name) {
    for (std::size_t outwards = 0; outwards < scopes_.size(); ++outwards) {
      const TemplateScope& scope = *scopes_[scopes_.size() - 1 - outwards];
      if (const auto text = NumberOf(scope.texts, name, [](QStringView each) { return each; }))
        return Part{what, {}, false, outwards, *text};
      if (const auto list = NumberOf(scope.lists, name, &TemplateList::name))
        return Part{what, {}, true, outwards, *list};
    }
    Fail(u"%1 gibt es hier nicht."_s.arg(mark));
    return std::nullopt;
  }

  void OpenSection(What what, const QString& mark, QStringView name) {
    const std::optional<Part> part = Find(what, mark, name);
    if (!part) return;
    if (static_cast<int>(open_.size()) >= kDeepest)
      return Fail(u"Mehr als %1 Abschnitte ineinander."_s.arg(kDeepest));
    if (what == What::Each && !part->list)
      return Fail(
          u"%1 ist ein Text, keine Liste: {{?%2}}…{{/%2}} zeigt, was dazwischen steht, wenn er nicht leer ist."_s
              .arg(mark, name.toString()));
    if (what == What::Each && part->outwards > 0)
      return Fail(
          u"%1 kann hier nicht wiederholt werden: Die Liste gehört nicht zu dieser Zeile."_s.arg(mark));
    // Its row is a scope of its own.
    if (what == What::Each)
      scopes_.push_back(&scopes_.back()->lists[static_cast<std::size_t>(part->number)].row);
    open_.push_back({mark, name.toString(), line_, parts_->size()});
    parts_->push_back(*part);
  }

  void Close(const QString& mark, const QString& name) {
    if (open_.empty()) return Fail(u"%1 schließt nichts."_s.arg(mark));
    const Open& open = open_.back();
    if (open.name != name)
      return Fail(u"%1 passt nicht: Offen ist %2 aus Zeile %3."_s.arg(mark, open.mark).arg(open.line));
    Part& section = (*parts_)[open.part];
    section.end = parts_->size();
    if (section.what == What::Each) scopes_.pop_back();
    open_.pop_back();
  }

  QStringView text_;
  std::vector<const TemplateScope*> scopes_;  // the innermost last
  std::vector<Part>* parts_ = nullptr;
  std::vector<Open> open_;
  QString fault_;
  int line_ = 1;
};

class ServiceTemplate::Renderer {
 public:
  Renderer(const std::vector<Part>& parts, const TemplateRow& values) : parts_(parts), rows_{&values} {}

  [[nodiscard]] Page Render() {
    Fill(0, parts_.size());
    if (page_.size() <= kLongestPage) return {std::move(page_), {}};
    return {{}, u"Das Protokoll wird zu lang. Bitte weniger Einträge wählen."_s};
  }

 private:
  void Fill(std::size_t from, std::size_t end) {
    for (std::size_t at = from; at < end && page_.size() <= kLongestPage; ++at) {
      const Part& part = parts_[at];
      if (part.what == What::Html) {
        page_ += part.html;
      } else if (part.what == What::Text) {
        page_ += PageText(Text(part));
      } else {
        FillSection(part, at + 1);
        at = part.end - 1;
      }
    }
  }

  void FillSection(const Part& part, std::size_t from) {
    if (part.what != What::Each) {
      const bool empty = part.list ? List(part).empty() : Text(part).isEmpty();
      if (empty == (part.what == What::None)) Fill(from, part.end);
      return;
    }
    for (const TemplateRow& row : List(part)) {
      rows_.push_back(&row);
      Fill(from, part.end);
      rows_.pop_back();
    }
  }

  [[nodiscard]] const TemplateRow& Row(const Part& part) const {
    return *rows_[rows_.size() - 1 - part.outwards];
  }
  [[nodiscard]] QString Text(const Part& part) const { return Row(part).texts.value(part.number); }
  [[nodiscard]] const std::vector<TemplateRow>& List(const Part& part) const {
    static const std::vector<TemplateRow> none;
    const auto& lists = Row(part).lists;
    const auto number = static_cast<std::size_t>(part.number);
    return number < lists.size() ? lists[number] : none;
  }

  const std::vector<Part>& parts_;
  std::vector<const TemplateRow*> rows_;  // the innermost last
  QString page_;
};

ServiceTemplate::Parsed ServiceTemplate::Parse(const QByteArray& html, const TemplateScope& scope) {
  if (html.size() > kLargest_bytes)
    return {{}, u"Die Vorlage ist größer als %1 KB."_s.arg(kLargest_bytes / 1024)};
  QString text;
  int line = 1;
  // Line by line, to say where what is no UTF-8 stands.
  for (const QByteArray& bytes : html.split('\n')) {
    if (line > 1) text += u'\n';
    // The mark of UTF-8 stands at the beginning of the file only.
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless |
                                                     (line > 1 ? QStringDecoder::Flag::ConvertInitialBom
                                                               : QStringDecoder::Flag::Default));
    const QString decoded = decoder(bytes);
    text += decoded;
    if (decoder.hasError()) return {{}, u"Zeile %1: Das ist kein Text in UTF-8."_s.arg(line)};
    ++line;
  }
  Parsed parsed;
  parsed.error = Parser(text, scope).Parse(parsed.page.parts_);
  if (!parsed.error.isEmpty()) parsed.page.parts_.clear();
  return parsed;
}

ServiceTemplate::Page ServiceTemplate::Render(const TemplateRow& values) const {
  return Renderer(parts_, values).Render();
}

}  // namespace kalivor::history
