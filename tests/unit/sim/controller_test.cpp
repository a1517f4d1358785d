// Requests and replies of the simulated controller.
#include "sim/Controller.h"

#include <gtest/gtest.h>

#include "fakes/QtPrinters.h"
#include "sim/Telegram.h"

using namespace Qt::StringLiterals;

namespace kalivor::sim {
namespace {

class ControllerTest : public ::testing::Test {
 protected:
  Memory memory;
  Controller controller{memory, 1, FixedText<2>(u"WR"_s), "HZL-0078"};

  /// The reply to a request with this body at station 1; "" for silence.
  QByteArray ReplyTo(const QByteArray& body) { return controller.Reply(Sealed("#0102" + body)).value_or(""); }
};

TEST(Telegram, WritesHexadecimalCutAndPadded) {
  EXPECT_EQ(Hex(0x1F, 4), "001F");
  EXPECT_EQ(Hex(65540, 4), "0004");
  EXPECT_EQ(Hex(255, 2), "FF");
}

TEST(Telegram, SumsAllBytesModulo256) {
  EXPECT_EQ(Checksum("#0102v00"), "BC");  // 35+48+49+48+50+118+48+48 = 444
  EXPECT_EQ(Sealed("#0102v00"), "#0102v00BC\r");
  EXPECT_EQ(Checksum("\xFF\x02"), "01");
}

TEST_F(ControllerTest, AnswersTheVersionQuery) {
  EXPECT_EQ(ReplyTo("v00"), Sealed("10102vHZL-0078"));
}

TEST_F(ControllerTest, ReadsAWord) {
  memory.SetWord(0x1F00, 0x0ABC);
  EXPECT_EQ(ReplyTo("R1F00"), Sealed("10102R0ABC"));
  EXPECT_EQ(ReplyTo("R1f01"), Sealed("10102R0ABC"));
}

TEST_F(ControllerTest, WritesAWordAndAnswersWithoutPayload) {
  EXPECT_EQ(ReplyTo("W1F00BEEF"), Sealed("10102W"));
  EXPECT_EQ(memory.Word(0x1F00), 0xBEEF);
}

TEST_F(ControllerTest, ForgetsWhatTheRequestBeforeHasWritten) {
  memory.SetWord(0x1F00, 0x1234);
  EXPECT_EQ(ReplyTo("W1F00BEEF"), Sealed("10102W"));
  controller.ForgetWrite();
  EXPECT_EQ(memory.Word(0x1F00), 0x1234);
  EXPECT_EQ(ReplyTo("W1F00BEEF"), Sealed("10102W"));
  EXPECT_EQ(ReplyTo("R1F00"), Sealed("10102RBEEF"));
  controller.ForgetWrite();
  EXPECT_EQ(memory.Word(0x1F00), 0xBEEF);
}

TEST(NextVersionPayload, HasTheNextNumberOfThoseThatThereAre) {
  EXPECT_EQ(NextVersionPayload("HZL-0078"), "HZL-0079");
  EXPECT_EQ(NextVersionPayload("ABCD04FF"), "ABCD0500");
  EXPECT_EQ(NextVersionPayload("HZL-270F"), "HZL-0000");
}

TEST_F(ControllerTest, AnswersForItsOwnStationOnly) {
  Controller other(memory, 0xA7, FixedText<2>(u"WR"_s), "HZL-0078");
  EXPECT_FALSE(other.Reply(Sealed("#0102v00")));
  EXPECT_EQ(other.Reply(Sealed("#A702v00")), Sealed("1A702vHZL-0078"));
}

TEST_F(ControllerTest, IsSilentToDamagedRequests) {
  EXPECT_FALSE(controller.Reply(Sealed("$0102v00")));
  EXPECT_FALSE(controller.Reply("#0102v00BD\r"));
  EXPECT_FALSE(controller.Reply("#0102v00BC"));
  EXPECT_FALSE(controller.Reply("#01\r"));
  EXPECT_FALSE(controller.Reply("\r"));
  EXPECT_FALSE(controller.Reply(""));
}

TEST_F(ControllerTest, RefusesAnotherMode) {
  EXPECT_EQ(controller.Reply(Sealed("#0103R1F00")), Sealed("10102?02"));
}

TEST_F(ControllerTest, RefusesAnUnknownLetter) {
  EXPECT_EQ(ReplyTo("X1F00"), Sealed("10102?04"));
  EXPECT_EQ(ReplyTo("r1F00"), Sealed("10102?04"));
  EXPECT_EQ(ReplyTo(""), Sealed("10102?04"));
}

TEST_F(ControllerTest, RefusesAWrongNumberOfOperands) {
  EXPECT_EQ(ReplyTo("R1F0"), Sealed("10102?05"));
  EXPECT_EQ(ReplyTo("R1F000"), Sealed("10102?05"));
  EXPECT_EQ(ReplyTo("W1F00"), Sealed("10102?05"));
  EXPECT_EQ(ReplyTo("W1F00BEEF0"), Sealed("10102?05"));
  EXPECT_EQ(ReplyTo("v0"), Sealed("10102?05"));
  EXPECT_EQ(ReplyTo("v"), Sealed("10102?05"));
}

TEST_F(ControllerTest, RefusesCharactersThatAreNoDigits) {
  EXPECT_EQ(ReplyTo("R1G00"), Sealed("10102?06"));
  EXPECT_EQ(ReplyTo("W1F00BEE-"), Sealed("10102?06"));
  EXPECT_EQ(memory.Word(0x1F00), 0);
}

TEST_F(ControllerTest, RefusesAnotherRecordOfTheVersionQuery) {
  EXPECT_EQ(ReplyTo("v01"), Sealed("10102?07"));
}

TEST_F(ControllerTest, HasTheCommandLettersOfItsVersion) {
  Controller other(memory, 1, FixedText<2>(u"vL"_s), "HZL-0078");
  EXPECT_EQ(other.Reply(Sealed("#0102vAAAA1234")), Sealed("10102v"));
  EXPECT_EQ(other.Reply(Sealed("#0102LAAAA")), Sealed("10102L1234"));
  EXPECT_EQ(other.Reply(Sealed("#0102v00")), Sealed("10102vHZL-0078"));
  EXPECT_EQ(other.Reply(Sealed("#0102RAAAA")), Sealed("10102?04"));
}

TEST_F(ControllerTest, TellsReadingFromWritingByTheOperandsWhereTheLettersAreTheSame) {
  Controller other(memory, 1, FixedText<2>(u"SS"_s), "HZL-0078");
  EXPECT_EQ(other.Reply(Sealed("#0102S00101234")), Sealed("10102S"));
  EXPECT_EQ(other.Reply(Sealed("#0102S0010")), Sealed("10102S1234"));
}

TEST(VersionPayload, IsWhatThePcTurnsIntoTheVersion) {
  EXPECT_EQ(VersionPayload(u"HZL-012.0"_s), "HZL-0078");
  EXPECT_EQ(VersionPayload(u"ABCD-012.0"_s), "ABCD0078");
  EXPECT_EQ(VersionPayload(u"AB1-123.4"_s), "AB1-04D2");
  EXPECT_EQ(VersionPayload(u"AB1-999.9"_s), "AB1-270F");
  EXPECT_EQ(VersionPayload(u"A B-000.0"_s), "A B-0000");
  EXPECT_EQ(VersionPayload(u"AB---001.0"_s), std::nullopt);
  EXPECT_EQ(VersionPayload(u"AB--001.0"_s), "AB--000A");
}

TEST(VersionPayload, IsEmptyForATextThatNoPayloadMakes) {
  for (const QString& version :
       {u""_s, u"HZL"_s, u"HZL-12.0"_s, u"HZL-012,0"_s, u"HZL 012.0"_s, u"HL-012.0"_s, u"LANGE-012.0"_s,
        u"HZL-01A.0"_s, u"HZÖ-012.0"_s, u"ABC--012.0"_s, u"HZL-012.0 "_s, u"HZL-0120"_s}) {
    EXPECT_EQ(VersionPayload(version), std::nullopt) << version.toStdString();
  }
}

}  // namespace
}  // namespace kalivor::sim
