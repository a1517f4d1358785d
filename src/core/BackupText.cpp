#include "core/BackupText.h"

#include <QHash>
#include <algorithm>
#include <array>
#include <limits>

namespace kalivor {
namespace {

constexpr QByteArrayView kBackupTitle = "KALIVOR-Sicherung 1";
constexpr QByteArrayView kSendingTitle = "KALIVOR-Sendung 1";

constexpr QByteArrayView kTime = "Zeit";
constexpr QByteArrayView kVersion = "Regler";
constexpr QByteArrayView kPlantType = "Anlageart";
constexpr QByteArrayView kPlant = "Anlagennummer";
constexpr QByteArrayView kAddress = "Adresse";
constexpr QByteArrayView kPort = "Schnittstelle";
constexpr QByteArrayView kProgram = "Programm";
constexpr QByteArrayView kBackup = "Sicherung";
constexpr QByteArrayView kValues = "Werte";
constexpr QByteArrayView kWords = "Wörter";
constexpr QByteArrayView kSum = "Prüfsumme";
constexpr QByteArrayView kBegun = "Begonnen";

constexpr int kWordDigits = 4;
constexpr int kSumDigits = 8;
constexpr int kMostWords = 65536;

// --- texts, numbers and sums ---

// The characters that would end a line or a column, and the letters that stand for them.
struct Escape {
  char character;
  char letter;
};
constexpr std::array<Escape, 4> kEscapes{{{'\\', '\\'}, {'\t', 't'}, {'\n', 'n'}, {'\r', 'r'}}};

QByteArray Escaped(const QString& text) {
  QByteArray escaped;
  for (const char c : text.toUtf8()) {
    const auto* found = std::ranges::find(kEscapes, c, &Escape::character);
    if (found != kEscapes.end()) escaped += '\\';
    escaped += found != kEscapes.end() ? found->letter : c;
  }
  return escaped;
}

// What Escaped() would not have written becomes any text: the caller compares.
QString Unescaped(QByteArrayView escaped) {
  if (!escaped.contains('\\')) return QString::fromUtf8(escaped);
  QByteArray bytes;
  for (qsizetype i = 0; i < escaped.size(); ++i) {
    const bool escape = escaped.at(i) == '\\' && i + 1 < escaped.size();
    const auto* found =
        escape ? std::ranges::find(kEscapes, escaped.at(i + 1), &Escape::letter) : kEscapes.end();
    bytes += found != kEscapes.end() ? found->character : escaped.at(i);
    if (found != kEscapes.end()) ++i;
  }
  return QString::fromUtf8(bytes);
}

QByteArray Hex(quint32 number, int digits) {
  return QByteArray::number(number, 16).toUpper().rightJustified(digits, '0');
}

std::optional<quint16> WordFrom(QByteArrayView digits) {
  if (digits.size() != kWordDigits) return {};
  quint32 number = 0;
  for (const char c : digits) {
    const int digit = c >= '0' && c <= '9' ? c - '0' : c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
    if (digit < 0) return {};
    number = number << 4 | static_cast<quint32>(digit);
  }
  return static_cast<quint16>(number);
}

constexpr std::array<quint32, 256> SumTable() {
  constexpr quint32 kPolynomial = 0xEDB88320;
  std::array<quint32, 256> table{};
  for (quint32 i = 0; i < table.size(); ++i) {
    quint32 remainder = i;
    for (int bit = 0; bit < 8; ++bit)
      remainder = remainder % 2 != 0 ? remainder >> 1 ^ kPolynomial : remainder >> 1;
    table[i] = remainder;
  }
  return table;
}

// CRC-32 as archives and networks use it.
quint32 SumOf(QByteArrayView bytes) {
  static constexpr std::array<quint32, 256> kTable = SumTable();
  quint32 sum = 0xFFFFFFFF;
  for (const char c : bytes)
    sum = sum >> 8 ^ kTable[(sum ^ static_cast<quint8>(c)) & 0xFFU];
  return ~sum;
}

// --- writing ---

class Writer {
 public:
  explicit Writer(QByteArrayView title) { (text_ += title) += '\n'; }

  void Field(QByteArrayView key, const QByteArray& value) { (((text_ += key) += ": ") += value) += '\n'; }
  void Field(QByteArrayView key, const QString& value) { Field(key, Escaped(value)); }
  void Field(QByteArrayView key, qsizetype number) { Field(key, QByteArray::number(number)); }
  void Row(const QByteArrayList& columns) { (text_ += columns.join('\t')) += '\n'; }

  void Head(const BackupHead& head) {
    Field(kTime, head.time.toOffsetFromUtc(head.time.offsetFromUtc()).toString(Qt::ISODate));
    Field(kVersion, head.version);
    Field(kPlantType, head.plantType);
    Field(kPlant, qsizetype{head.plant});
    Field(kAddress, qsizetype{head.address});
    Field(kPort, head.port);
    Field(kProgram, head.programVersion);
  }

  void Values(const std::vector<NamedWords>& values) {
    Field(kValues, static_cast<qsizetype>(values.size()));
    for (const NamedWords& value : values)
      Row({Escaped(value.Variable), Escaped(value.VarAdresse), Escaped(value.Typ)});
  }

  QByteArray WithSum() {
    Field(kSum, Hex(SumOf(text_), kSumDigits));
    return text_;
  }

 private:
  QByteArray text_;
};

// --- reading ---

// Takes lines from the beginning. What does not fit is kept in mind and gives nothing.
class Reader {
 public:
  explicit Reader(QByteArrayView bytes) : rest_(bytes) {}
  Reader(QByteArrayView bytes, QByteArrayView title) : Reader(bytes) { Require(Line() == title); }

  [[nodiscard]] bool Good() const { return good_; }
  [[nodiscard]] QByteArrayView Rest() const { return rest_; }

  QByteArrayView Field(QByteArrayView key) {
    const QByteArrayView line = Line();
    Require(line.startsWith(key) && line.sliced(key.size()).startsWith(": "));
    return good_ ? line.sliced(key.size() + 2) : QByteArrayView();
  }
  QString Text(QByteArrayView key) { return Unescaped(Field(key)); }
  int Number(QByteArrayView key, int lowest, int highest) {
    bool isNumber = false;
    const int number = Field(key).toInt(&isNumber);
    Require(isNumber && number >= lowest && number <= highest);
    return good_ ? number : 0;
  }

  template <std::size_t kColumns>
  std::array<QByteArrayView, kColumns> Row() {
    std::array<QByteArrayView, kColumns> columns;
    QByteArrayView line = Line();
    for (std::size_t i = 0; i + 1 < kColumns; ++i) {
      const qsizetype end = line.indexOf('\t');
      Require(end >= 0);
      if (!good_) return {};
      columns[i] = line.first(end);
      line = line.sliced(end + 1);
    }
    columns.back() = line;
    return columns;
  }

  BackupHead Head() {
    BackupHead head;
    const QByteArrayView time = Field(kTime);
    // Not asked of what is no text of this kind: it would cost more than all the rest.
    if (good_) head.time = QDateTime::fromString(QString::fromLatin1(time), Qt::ISODate);
    Require(head.time.isValid());
    head.version = Text(kVersion);
    head.plantType = Text(kPlantType);
    head.plant = Number(kPlant, std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
    head.address = Number(kAddress, 0, 255);
    head.port = Text(kPort);
    head.programVersion = Text(kProgram);
    return head;
  }

  std::vector<NamedWords> Values() {
    std::vector<NamedWords> values;
    for (int left = Number(kValues, 0, kLastParameter); left > 0 && good_; --left) {
      const auto [variable, address, type] = Row<3>();
      values.push_back({Unescaped(variable), Unescaped(address), Unescaped(type)});
    }
    return values;
  }

  /// The words of a row of `kColumns`, for each of them; the first one is its address.
  template <std::size_t kColumns, typename Take>
  void Words(Take take) {
    for (int left = Number(kWords, 0, kMostWords); left > 0 && good_; --left) {
      std::array<quint16, kColumns> words{};
      std::size_t i = 0;
      for (const QByteArrayView digits : Row<kColumns>()) {
        const std::optional<quint16> word = WordFrom(digits);
        Require(word.has_value());
        words[i++] = word.value_or(0);
      }
      Require(words.front() % 2 == 0);
      take(words);
    }
  }

  void Require(bool condition) { good_ = good_ && condition; }

 private:
  // Without its end, which has to be there.
  QByteArrayView Line() {
    const qsizetype end = good_ ? rest_.indexOf('\n') : -1;
    Require(end >= 0);
    if (!good_) return {};
    const QByteArrayView line = rest_.first(end);
    rest_ = rest_.sliced(end + 1);
    return line;
  }

  QByteArrayView rest_;
  bool good_ = true;
};

bool SameName(const ParameterRecord& record, const NamedWords& value) {
  return record.VarAdresse == value.VarAdresse && record.Typ.Trimmed() == value.Typ;
}

const CodedWord* WantedAt(const Sending& sending, quint16 address) {
  const auto found = std::ranges::lower_bound(sending.wanted, address, {}, &CodedWord::address);
  return found != sending.wanted.end() && found->address == address ? &*found : nullptr;
}

// Words that already were as they are wanted are never begun.
bool IsBegun(const ParameterRecord& record, const Sending& sending, const std::vector<quint16>& begun) {
  const CodedValue places = PlacesOf(record);
  bool any = false;
  for (const CodedWord& place : places.words) {
    const CodedWord* wanted = WantedAt(sending, place.address);
    if (wanted == nullptr || (wanted->mask & place.mask) != place.mask) return false;
    const auto before = sending.before.find(place.address);
    const bool same = before != sending.before.end() && ((before->second ^ wanted->bits) & place.mask) == 0;
    const bool written = std::ranges::binary_search(begun, place.address);
    if (!same && !written) return false;
    any = any || written;
  }
  return any;
}

}  // namespace

QByteArray ComposeBackup(const Backup& backup) {
  Writer writer(kBackupTitle);
  writer.Head(backup.head);
  writer.Values(backup.values);
  writer.Field(kWords, static_cast<qsizetype>(backup.words.size()));
  for (const auto& [address, word] : backup.words)
    writer.Row({Hex(address, kWordDigits), Hex(word, kWordDigits)});
  return writer.WithSum();
}

std::optional<Backup> ParseBackup(const QByteArray& bytes) {
  Reader reader(bytes, kBackupTitle);
  Backup backup;
  backup.head = reader.Head();
  backup.values = reader.Values();
  reader.Words<2>([&](const auto& words) { backup.words[words[0]] = words[1]; });
  // The sum, the order of the words, and whatever else may be written in two ways.
  const bool good = reader.Good() && ComposeBackup(backup) == bytes;
  return good ? std::optional(std::move(backup)) : std::nullopt;
}

QByteArray ComposeSending(const Sending& sending) {
  Writer writer(kSendingTitle);
  writer.Head(sending.head);
  writer.Field(kBackup, sending.backup);
  writer.Values(sending.values);
  writer.Field(kWords, static_cast<qsizetype>(sending.wanted.size()));
  for (const CodedWord& word : sending.wanted) {
    const auto before = sending.before.find(word.address);
    writer.Row({Hex(word.address, kWordDigits), Hex(word.mask, kWordDigits), Hex(word.bits, kWordDigits),
                Hex(before != sending.before.end() ? before->second : 0, kWordDigits)});
  }
  return writer.WithSum();
}

QByteArray ComposeBegun(quint16 address) {
  return kBegun.toByteArray() + ": " + Hex(address, kWordDigits) + '\n';
}

std::optional<Sending> ParseSending(const QByteArray& bytes) {
  Reader reader(bytes, kSendingTitle);
  Sending sending;
  sending.head = reader.Head();
  sending.backup = reader.Text(kBackup);
  sending.values = reader.Values();
  reader.Words<4>([&](const auto& words) {
    const CodedWord word{words[0], words[1], words[2]};
    reader.Require(sending.wanted.empty() || sending.wanted.back().address < word.address);
    reader.Require(word.mask != 0 && (word.bits & ~word.mask) == 0);
    sending.wanted.push_back(word);
    sending.before[word.address] = words[3];
  });
  (void)reader.Field(kSum);
  const QByteArrayView header = QByteArrayView(bytes).chopped(reader.Rest().size());
  if (!reader.Good() || ComposeSending(sending) != header) return {};

  const qsizetype whole = reader.Rest().lastIndexOf('\n') + 1;
  Reader lines(reader.Rest().first(whole));
  while (lines.Good() && !lines.Rest().isEmpty()) {
    const std::optional<quint16> address = WordFrom(lines.Field(kBegun));
    lines.Require(address && WantedAt(sending, *address) != nullptr && sending.begun.size() < kMostWords);
    sending.begun.push_back(address.value_or(0));
  }
  return lines.Good() ? std::optional(std::move(sending)) : std::nullopt;
}

int ValuesBegun(const ParameterTable& definitions, const Sending& sending) {
  QMultiHash<QString, int> parameters;
  for (int i = 1; i < definitions.ParCount; ++i)
    parameters.insert(definitions.Par[i].Variable, i);
  std::vector<quint16> begun = sending.begun;
  std::ranges::sort(begun);
  return static_cast<int>(std::ranges::count_if(sending.values, [&](const NamedWords& value) {
    const QList<int> candidates = parameters.values(value.Variable);
    return std::ranges::any_of(candidates, [&](int index) {
      const ParameterRecord& record = definitions.Par[index];
      return SameName(record, value) && IsBegun(record, sending, begun);
    });
  }));
}

}  // namespace kalivor
