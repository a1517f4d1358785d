// Values as words: coding both ways, whose bits they are, and what cannot be coded.
#include "core/ControllerImage.h"

#include <gtest/gtest.h>

#include <QStringList>
#include <limits>

#include "base/Windows1252.h"
#include "core/ParameterTypes.h"
#include "fakes/QtPrinters.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

ParameterRecord Record(const QString& type, const QString& address, qint32 min = 0, qint32 max = 0) {
  ParameterRecord record;
  record.Typ = type;
  record.VarAdresse = address;
  record.Min = min;
  record.Max = max;
  return record;
}

ParameterValue Number(qint32 number) {
  return {number, {}};
}

ParameterValue Text(const QString& text) {
  return {0, text};
}

/// "1F06:00FF=0022" for each word.
QString Shown(const std::vector<CodedWord>& words) {
  QStringList shown;
  const auto hex = [](quint16 word) { return QString::number(word, 16).toUpper().rightJustified(4, u'0'); };
  for (const CodedWord& word : words)
    shown.append(hex(word.address) + u':' + hex(word.mask) + u'=' + hex(word.bits));
  return shown.join(u' ');
}

QString CodedWords(const ParameterRecord& record, const ParameterValue& value) {
  const CodedValue coded = Coded(record, value);
  EXPECT_TRUE(coded.fault.isEmpty()) << coded.fault.toStdString();
  return Shown(coded.words);
}

/// Puts the words into an image whose other bits are those of `around`.
ControllerImage ImageOf(const std::vector<CodedWord>& words, quint16 around) {
  ControllerImage image;
  for (const CodedWord& word : words)
    image[word.address] = static_cast<quint16>((around & ~word.mask) | word.bits);
  return image;
}

/// Coded, `value` comes back whatever lies around it.
void ExpectComesBack(const ParameterRecord& record, const ParameterValue& value,
                     const ParameterValue& expected) {
  const CodedValue coded = Coded(record, value);
  ASSERT_EQ(coded.fault, QString()) << value.number << ' ' << value.text.toStdString();
  ASSERT_FALSE(coded.words.empty());
  for (const quint16 around : std::initializer_list<quint16>{0x0000, 0xFFFF, 0x55AA}) {
    const ControllerImage image = ImageOf(coded.words, around);
    ASSERT_EQ(Decoded(record, image), expected) << value.number << ' ' << value.text.toStdString();
    ASSERT_TRUE(Holds(image, coded.words));
  }
}

void ExpectComesBack(const ParameterRecord& record, const ParameterValue& value) {
  ExpectComesBack(record, value, value);
}

/// The mask is that of the places, and no bit lies outside it.
void ExpectAtItsPlaces(const ParameterRecord& record, const ParameterValue& value) {
  const CodedValue coded = Coded(record, value);
  const CodedValue places = PlacesOf(record);
  ASSERT_EQ(coded.words.size(), places.words.size());
  for (std::size_t i = 0; i < coded.words.size(); ++i) {
    EXPECT_EQ(coded.words[i].address, places.words[i].address);
    EXPECT_EQ(coded.words[i].mask, places.words[i].mask);
    EXPECT_EQ(coded.words[i].bits & ~coded.words[i].mask, 0);
    EXPECT_EQ(places.words[i].bits, 0);
  }
}

// --- numbers ---

TEST(ControllerImage, AnIntIsOneWord) {
  EXPECT_EQ(CodedWords(Record(u"int"_s, u"1F00"_s), Number(1234)), u"1F00:FFFF=04D2"_s);
  EXPECT_EQ(CodedWords(Record(u"int"_s, u"1F00"_s), Number(-1)), u"1F00:FFFF=FFFF"_s);
  EXPECT_EQ(CodedWords(Record(u"int"_s, u"FFFE"_s), Number(-32768)), u"FFFE:FFFF=8000"_s);
}

TEST(ControllerImage, ALongIsTwoWordsWithItsSign) {
  const ParameterRecord record = Record(u"long"_s, u"1F02"_s);
  EXPECT_EQ(CodedWords(record, Number(-1)), u"1F02:FFFF=FFFF 1F04:FFFF=FFFF"_s);
  EXPECT_EQ(CodedWords(record, Number(65536)), u"1F02:FFFF=0001 1F04:FFFF=0000"_s);
  EXPECT_EQ(CodedWords(record, Number(0x12345678)), u"1F02:FFFF=1234 1F04:FFFF=5678"_s);
}

TEST(ControllerImage, AByteIsTheHighOneAtAnEvenAddress) {
  EXPECT_EQ(CodedWords(Record(u"char"_s, u"1F06"_s), Number(0x22)), u"1F06:FF00=2200"_s);
  EXPECT_EQ(CodedWords(Record(u"char"_s, u"1F07"_s), Number(0x22)), u"1F06:00FF=0022"_s);
  EXPECT_EQ(CodedWords(Record(u"char"_s, u"FFFF"_s), Number(0x22)), u"FFFE:00FF=0022"_s);
}

TEST(ControllerImage, EveryIntComesBack) {
  const ParameterRecord record = Record(u"int"_s, u"1F00"_s);
  for (qint32 number = -32768; number <= 32767; ++number)
    ExpectComesBack(record, Number(number));
}

TEST(ControllerImage, EveryWordIsAnInt) {
  const ParameterRecord record = Record(u"int"_s, u"1F00"_s);
  for (int word = 0; word <= 0xFFFF; ++word) {
    const auto decoded = Decoded(record, {{0x1F00, static_cast<quint16>(word)}});
    ASSERT_EQ(decoded, Number(static_cast<qint16>(word)));
    ASSERT_EQ(Coded(record, *decoded).words.at(0).bits, word);
  }
}

TEST(ControllerImage, LongsComeBack) {
  const ParameterRecord record = Record(u"long"_s, u"1F02"_s);
  const std::initializer_list<qint64> borders{-0x80000000LL, -65536, -32768, 0, 32768, 65536, 0x7FFFFFFF};
  for (const qint64 border : borders) {
    for (qint64 number = border - 300; number <= border + 300; ++number) {
      if (number < std::numeric_limits<qint32>::min() || number > std::numeric_limits<qint32>::max())
        continue;
      ExpectComesBack(record, Number(static_cast<qint32>(number)));
    }
  }
}

struct Limits {
  qint32 min;
  qint32 max;
  bool atEven;  // whether bytes from 128 on are negative
  bool atOdd;
};

constexpr Limits kLimits[] = {
    {0, 0, true, false},        {0, 127, true, false},   {0, 128, false, false},  {0, 255, false, false},
    {1, 200, false, false},     {-1, 0, true, true},     {-128, 127, true, true}, {-1, 128, true, false},
    {-128, 255, true, false},   {-1, 127, true, true},   {5, 1, true, false},     {-5, -7, true, true},
    {0, 1000000, false, false}, {-70000, 0, true, true},
};

TEST(ControllerImage, LimitsSayWhetherAByteIsSignedAndElseTheAddress) {
  for (const Limits& limits : kLimits) {
    for (const bool odd : {false, true}) {
      const ParameterRecord record = Record(u"char"_s, odd ? u"1F07"_s : u"1F06"_s, limits.min, limits.max);
      const bool isSigned = odd ? limits.atOdd : limits.atEven;
      for (int byte = 0; byte <= 255; ++byte) {
        const auto word = static_cast<quint16>(odd ? 0xA500 | byte : byte << 8 | 0xA5);
        const qint32 expected = isSigned && byte >= 128 ? byte - 256 : byte;
        const auto decoded = Decoded(record, {{0x1F06, word}});
        ASSERT_EQ(decoded, Number(expected)) << limits.min << ".." << limits.max << ' ' << byte;
        ASSERT_EQ(Coded(record, *decoded).words.at(0).bits, odd ? byte : byte << 8);
      }
    }
  }
}

TEST(ControllerImage, EveryByteThatIsTakenComesBack) {
  for (const Limits& limits : kLimits) {
    for (const bool odd : {false, true}) {
      const ParameterRecord record = Record(u"char"_s, odd ? u"1F07"_s : u"1F06"_s, limits.min, limits.max);
      int taken = 0;
      for (qint32 number = -400; number <= 400; ++number) {
        const CodedValue coded = Coded(record, Number(number));
        if (!coded.fault.isEmpty()) {
          EXPECT_EQ(coded.fault, u"Zahl passt nicht in den Typ"_s);
          continue;
        }
        ++taken;
        ExpectComesBack(record, Number(number));
      }
      EXPECT_EQ(taken, 256) << limits.min << ".." << limits.max << ' ' << odd;
    }
  }
}

TEST(ControllerImage, ANumberThatTheTypeCannotHoldIsAFault) {
  const auto fault = [](const QString& type, qint32 number) {
    const CodedValue coded = Coded(Record(type, u"1F00"_s, 0, 255), Number(number));
    EXPECT_EQ(coded.words.empty(), !coded.fault.isEmpty());
    return coded.fault;
  };
  const QString misfit = u"Zahl passt nicht in den Typ"_s;
  EXPECT_EQ(fault(u"int"_s, 32768), misfit);
  EXPECT_EQ(fault(u"int"_s, -32769), misfit);
  EXPECT_EQ(fault(u"int"_s, 32767), QString());
  EXPECT_EQ(fault(u"int"_s, -32768), QString());
  EXPECT_EQ(fault(u"char"_s, 256), misfit);
  EXPECT_EQ(fault(u"char"_s, -1), misfit);
  EXPECT_EQ(fault(u"char"_s, 255), QString());
  EXPECT_EQ(fault(u"long"_s, std::numeric_limits<qint32>::min()), QString());
  EXPECT_EQ(fault(u"long"_s, std::numeric_limits<qint32>::max()), QString());
}

// --- texts ---

TEST(ControllerImage, TextsLieByteByByteAndArePadded) {
  EXPECT_EQ(CodedWords(Record(u"string4"_s, u"1F08"_s), Text(u"WXYZ"_s)), u"1F08:FFFF=5758 1F0A:FFFF=595A"_s);
  EXPECT_EQ(CodedWords(Record(u"string4"_s, u"1F08"_s), Text(u"W"_s)), u"1F08:FFFF=5720 1F0A:FFFF=2020"_s);
  EXPECT_EQ(CodedWords(Record(u"string4"_s, u"1F08"_s), Text({})), u"1F08:FFFF=2020 1F0A:FFFF=2020"_s);
}

TEST(ControllerImage, ATextOfOddLengthOwnsHalfOfItsLastWord) {
  EXPECT_EQ(CodedWords(Record(u"string3"_s, u"1F08"_s), Text(u"ab"_s)), u"1F08:FFFF=6162 1F0A:FF00=2000"_s);
  EXPECT_EQ(CodedWords(Record(u"string1"_s, u"1F08"_s), Text(u"a"_s)), u"1F08:FF00=6100"_s);
  EXPECT_EQ(Decoded(Record(u"string3"_s, u"1F08"_s), {{0x1F08, 0x6162}, {0x1F0A, 0x6364}}), Text(u"abc"_s));
}

TEST(ControllerImage, EveryCharacterOfTheCodePageComesBackInEveryPlace) {
  const ParameterRecord record = Record(u"string3"_s, u"1F08"_s);
  for (int byte = 0; byte <= 255; ++byte) {
    const QChar character = CharacterFromByte(static_cast<quint8>(byte));
    for (int at = 0; at < 3; ++at) {
      QString text = u"abc"_s;
      text[at] = character;
      ExpectComesBack(record, Text(text));
    }
  }
}

TEST(ControllerImage, AnErasedWordIsNoBlank) {
  EXPECT_EQ(Decoded(Record(u"string2"_s, u"1F08"_s), {{0x1F08, 0xFFFF}}), Text(u"ÿÿ"_s));
}

TEST(ControllerImage, OnlyBlanksAtTheEndOfATextAreTheSameAsNone) {
  const ParameterRecord record = Record(u"string4"_s, u"1F08"_s);
  ExpectComesBack(record, Text(u" a"_s), Text(u" a  "_s));
  ExpectComesBack(record, Text(u"abcd      "_s), Text(u"abcd"_s));
  ExpectComesBack(record, Text(u"abc   "_s), Text(u"abc "_s));
  ExpectComesBack(record, Text(u"abcd "_s), Text(u"abcd"_s));
  ExpectComesBack(record, Text(u"        "_s), Text(u"    "_s));
  ExpectComesBack(record, Text(u"ab\t"_s), Text(u"ab\t "_s));
}

TEST(ControllerImage, ATextThatIsTooLongIsAFault) {
  const ParameterRecord record = Record(u"string4"_s, u"1F08"_s);
  EXPECT_EQ(Coded(record, Text(u"abcde"_s)).fault, u"Text zu lang"_s);
  EXPECT_EQ(Coded(record, Text(u"abcd  e"_s)).fault, u"Text zu lang"_s);
  EXPECT_EQ(Coded(record, Text(u"abcd\t"_s)).fault, u"Text zu lang"_s);
  EXPECT_TRUE(Coded(record, Text(u"abcde"_s)).words.empty());
}

TEST(ControllerImage, ACharacterThatTheControllerDoesNotKnowIsAFault) {
  const ParameterRecord record = Record(u"string4"_s, u"1F08"_s);
  const QString unknown = u"Zeichen, das der Regler nicht kennt"_s;
  EXPECT_EQ(Coded(record, Text(u"aΩ"_s)).fault, unknown);
  EXPECT_EQ(Coded(record, Text(u"a\u2009b"_s)).fault, unknown);
  EXPECT_EQ(Coded(record, Text(QString::fromUcs4(U"\U0001F600"))).fault, unknown);
  EXPECT_TRUE(Coded(record, Text(u"aΩ"_s)).words.empty());
  EXPECT_EQ(Coded(record, Text(u"a?"_s)).fault, QString()) << "a question mark is one";
}

// --- places ---

TEST(ControllerImage, WithoutAPlaceThereAreNoWords) {
  const auto fault = [](const QString& type, const QString& address) {
    const ParameterRecord record = Record(type, address, -128, 127);
    const CodedValue places = PlacesOf(record);
    EXPECT_EQ(places.words.empty(), !places.fault.isEmpty()) << type.toStdString() << address.toStdString();
    EXPECT_EQ(Coded(record, {}).fault, places.fault);
    ControllerImage all;
    for (int at = 0; at <= 0xFFFE; at += 2)
      all[static_cast<quint16>(at)] = 0;
    EXPECT_EQ(Decoded(record, all).has_value(), places.fault.isEmpty());
    return places.fault;
  };
  EXPECT_EQ(fault(u"int"_s, {}), u"keine Adresse"_s);
  EXPECT_EQ(fault(u"byte"_s, u"1F00"_s), u"unbekannter Typ"_s);
  EXPECT_EQ(fault({}, {}), u"unbekannter Typ"_s);
  EXPECT_EQ(fault(u"int"_s, u"xyz"_s), u"ungültige Adresse"_s);
  EXPECT_EQ(fault(u"int"_s, u"1F 0"_s), u"ungültige Adresse"_s);
  EXPECT_EQ(fault(u"int"_s, u"1F0G"_s), u"ungültige Adresse"_s);
  EXPECT_EQ(fault(u"int"_s, u"1F0g"_s), u"ungültige Adresse"_s);
  EXPECT_EQ(fault(u"int"_s, u"1F0@"_s), u"ungültige Adresse"_s);
  EXPECT_EQ(fault(u"int"_s, u"1F0/"_s), u"ungültige Adresse"_s);
  EXPECT_EQ(fault(u"int"_s, u"1F0:"_s), u"ungültige Adresse"_s);
  EXPECT_EQ(fault(u"int"_s, u"1F0`"_s), u"ungültige Adresse"_s);
  EXPECT_EQ(fault(u"int"_s, u"1F01"_s), u"ungerade Adresse"_s);
  EXPECT_EQ(fault(u"long"_s, u"1F03"_s), u"ungerade Adresse"_s);
  EXPECT_EQ(fault(u"string4"_s, u"1F09"_s), u"ungerade Adresse"_s);
  EXPECT_EQ(fault(u"string"_s, u"1F08"_s), u"Text ohne Länge"_s);
  EXPECT_EQ(fault(u"string0"_s, u"1F08"_s), u"Text ohne Länge"_s);
  EXPECT_EQ(fault(u"long"_s, u"FFFE"_s), u"Adresse zu groß"_s);
  EXPECT_EQ(fault(u"int"_s, u"FFFF"_s), u"Adresse zu groß"_s);
  EXPECT_EQ(fault(u"string3"_s, u"FFFE"_s), u"Adresse zu groß"_s);
  EXPECT_EQ(fault(u"string2"_s, u"FFFE"_s), QString());
  EXPECT_EQ(fault(u"long"_s, u"FFFC"_s), QString());
  EXPECT_EQ(fault(u"char"_s, u"1F07"_s), QString());
  EXPECT_EQ(fault(u"int"_s, u"0"_s), QString());
}

TEST(ControllerImage, TheLastFourDigitsOfAnAddressCountInEitherCase) {
  EXPECT_EQ(Shown(PlacesOf(Record(u"int"_s, u"00001f0a"_s)).words), u"1F0A:FFFF=0000"_s);
  EXPECT_EQ(Shown(PlacesOf(Record(u"int"_s, u"x91F0A"_s)).words), u"1F0A:FFFF=0000"_s);
  EXPECT_EQ(Shown(PlacesOf(Record(u"int"_s, u"9AFaf0"_s)).words), u"FAF0:FFFF=0000"_s);
}

TEST(ControllerImage, ValuesStayAtTheirPlaces) {
  for (const QString& type : {u"int"_s, u"long"_s, u"char"_s, u"string5"_s, u"string99"_s})
    ExpectAtItsPlaces(Record(type, u"1F08"_s, -128, 127), {-1, u"ÿÿÿÿÿ"_s});
  ExpectAtItsPlaces(Record(u"char"_s, u"1F09"_s, -128, 127), Number(-1));
}

TEST(ControllerImage, AValueNeedsAllOfItsWords) {
  const ParameterRecord record = Record(u"long"_s, u"1F02"_s);
  EXPECT_EQ(Decoded(record, {{0x1F02, 1}}), std::nullopt);
  EXPECT_EQ(Decoded(record, {{0x1F04, 1}}), std::nullopt);
  EXPECT_EQ(Decoded(record, {{0x1F02, 1}, {0x1F04, 2}}), Number(65538));
  EXPECT_FALSE(Holds({{0x1F02, 0}}, PlacesOf(record).words));
  EXPECT_TRUE(Holds({{0x1F02, 0}, {0x1F04, 0}}, PlacesOf(record).words));
}

TEST(ControllerImage, HoldsLooksAtTheBitsOfTheValueAlone) {
  const std::vector<CodedWord> words{{0x1F06, 0x00FF, 0x0022}};
  EXPECT_TRUE(Holds({{0x1F06, 0x0022}}, words));
  EXPECT_TRUE(Holds({{0x1F06, 0xAB22}}, words));
  EXPECT_FALSE(Holds({{0x1F06, 0x2200}}, words));
  EXPECT_FALSE(Holds({{0x1F06, 0x0023}}, words));
}

}  // namespace
}  // namespace kalivor
