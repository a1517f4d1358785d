// What a program receives in an exchange, both of its ends, and what it is to take from it however the
// characters are cut into blocks on their way.
#pragma once

#include <string>
#include <vector>

#include "comm/COM_T.h"
#include "sim/SimulatedLine.h"
#include "unit/line/Rules.h"

namespace kalivor::test {

using namespace Qt::StringLiterals;

inline const QByteArray kEcho = "#0102R1F000F\r";
inline const QByteArray kGood = "10102R04D220\r";
inline const QString kValue = u"04D2"_s;

/// What the program receives, and what comes of it.
struct Row {
  std::string name;
  QByteArray received;
  QString result;
};

inline void PrintTo(const Row& row, std::ostream* out) {
  *out << row.name;
}

inline const Row kRows[] = {
    {"GoodReply", kGood, kValue},
    {"EchoAndReply", kEcho + kGood, kValue},
    {"EchoTwice", kEcho + kEcho + kGood, kValue},
    {"EchoThreeCharactersShort", kEcho.left(9) + '\r' + kGood, kValue},
    {"EchoSixCharactersShort", kEcho.left(6) + '\r' + kGood, kValue},
    {"EchoWithoutItsEnd", kEcho.chopped(1) + 'x' + kGood, kValue},
    {"EchoAloneWithAFragment", kEcho.chopped(1) + "xyz\x03" + kGood, kValue},
    {"OtherLineBehindTheReply", kGood + "10102R000187\r", kValue},
    {"EmptyPayloadInFrontOfAnotherLine", "10102R46\r" + kGood, u""_s},
    {"ShortLineInFront", "x\r" + kGood, u"ERROR: unvollständige Antwort: x\r"_s},
    {"ShortLineInFrontWhoseSumIsNothing", "yz\r" + kGood, u"ERROR: unvollständige Antwort: yz\r"_s},
    {"EndOfLineInFront", "\n" + kGood, u"ERROR: unvollständige Antwort: \n"_s},
    {"ZeroInFront", QByteArray(1, '\0') + kGood, u"ERROR: unvollständige Antwort: "_s + QChar(0)},
    {"LetterBecomesAControlCharacter", "10102R0\x01" + QByteArray("BC5C\r"),
     u"ERROR: unvollständige Antwort: 10102R0\u0001"_s},
    {"ShortLineBehindTheEcho", kEcho + "10102R\x03" + kGood,
     u"ERROR: unvollständige Antwort: 10102R\u0003"_s},
    {"RefusalInFrontOfAReply", "10102?0700\r" + kGood, u"ERROR:  Code 07 Falsche Datensatznummer"_s},
    {"DamagedSumInFrontOfAReply", "10102R04D221\r" + kGood, u"ERROR:  Checksumme Falsch"_s},
};

using Pieces = std::vector<QByteArray>;

/// A program that reads one word at one end of `line`.
class Reader {
 public:
  Reader(platform::SerialControl& line, platform::Clock& clock)
      : timers_(clock), host_(module_, line, timers_) {
    host_.Ports[kSlot] = {kFalse, 1, kControllerProtocol, 1, kSettings9600.toString()};
  }
  QString Read() { return transport_.Transact(kSlot, u"R1F00"_s, true); }

 private:
  Module1 module_;
  TH timers_;
  COM_T_frm host_;
  COM_T transport_{host_};
};

/// A controller that answers everything with the same characters.
class Station {
 public:
  explicit Station(const sim::LineOptions& options = {}) : model(controller_, faults_, options) {
    model.OnResponse = [this](const QByteArray&, sim::Response& response) {
      response = {};
      for (const QByteArray& piece : pieces)
        response.chunks.push_back({1, piece});
    };
  }
  Pieces pieces;

 private:
  sim::Memory memory_;
  sim::Controller controller_{memory_, 1, u"WR"_s, "AB1-04D2"};
  sim::Faults faults_;

 public:
  sim::LineModel model;
};

}  // namespace kalivor::test
