// The fuzz targets: each takes any bytes and checks what the program makes of them.
#pragma once

#include <QByteArrayView>
#include <stdexcept>

namespace kalivor::fuzz {

/// The program has not kept a promise.
class Defect : public std::logic_error {
 public:
  using std::logic_error::logic_error;
};

/// Throws Defect unless `kept`.
inline void Require(bool kept, const char* promise) {
  if (!kept) throw Defect(promise);
}

/// True for about one of `share` inputs, always for the same ones; in the replay of the corpus for all. For
/// checks that cost more than the rest of their target. Each program defines it (LibFuzzer.cpp,
/// replay_test.cpp).
bool InSample(QByteArrayView input, unsigned share);

// Every target leaves nothing behind that the next input could see. Throws Defect; any other exception, and
// whatever the sanitizers find, is a defect as well.
void AddressList(QByteArrayView input);
void BackupText(QByteArrayView input);
void ComPortServer(QByteArrayView input);
void CommandLine(QByteArrayView input);
void ControllerReply(QByteArrayView input);
void DefinitionCheck(QByteArrayView input);
void DefinitionFile(QByteArrayView input);
void HistoryRow(QByteArrayView input);
void Journal(QByteArrayView input);
void NetworkAddressText(QByteArrayView input);
void Numbers(QByteArrayView input);
void Pages(QByteArrayView input);
void RecoveryFile(QByteArrayView input);
void SelectionsFile(QByteArrayView input);
void ServiceTemplatePage(QByteArrayView input);
void Settings(QByteArrayView input);
void ValueFile(QByteArrayView input);
void VersionTable(QByteArrayView input);

struct Target {
  const char* name;  ///< also that of its folder in fuzz/corpus
  void (*run)(QByteArrayView input);
};

inline constexpr Target kTargets[] = {
    {"address_list", AddressList},
    {"backup_text", BackupText},
    {"com_port", ComPortServer},
    {"command_line", CommandLine},
    {"controller_reply", ControllerReply},
    {"definition_check", DefinitionCheck},
    {"definition_file", DefinitionFile},
    {"history_row", HistoryRow},
    {"journal", Journal},
    {"network_address", NetworkAddressText},
    {"numbers", Numbers},
    {"pages", Pages},
    {"recovery_file", RecoveryFile},
    {"selections_file", SelectionsFile},
    {"service_template", ServiceTemplatePage},
    {"settings", Settings},
    {"value_file", ValueFile},
    {"version_table", VersionTable},
};

}  // namespace kalivor::fuzz
