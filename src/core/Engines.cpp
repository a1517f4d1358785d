#include "core/Engines.h"

#include "core/ControllerValue.h"

namespace kalivor {
namespace {

using Outcome = ParameterResult::Outcome;
using Handle = ParameterResult (*)(Core& core, int index, const ParameterType& type);

ParameterResult ReceiveOne(Core& core, int index, const ParameterType& type) {
  const ReadValue read = ReadController(core.controller, core.module.Par[index], type);
  if (type.kind == ValueKind::Text) {
    // What could be read replaces the text, also after a failure.
    core.module.SetText(index, read.value.text, ValueSource::Received);
  } else if (read.moved.complete) {
    core.module.SetNumber(index, read.value.number, ValueSource::Received);
  }
  return {index, read.moved.complete ? Outcome::Received : Outcome::NotRead, read.moved.failedWord};
}

ParameterResult SendOne(Core& core, int index, const ParameterType& type) {
  const Moved moved = WriteController(core.controller, core.module.Par[index], type);
  return {index, moved.complete ? Outcome::Sent : Outcome::NotSent, moved.failedWord};
}

ParameterResult CompareOne(Core& core, int index, const ParameterType& type) {
  const ParameterRecord& record = core.module.Par[index];
  const ReadValue read = ReadController(core.controller, record, type);
  if (!read.moved.complete) return {index, Outcome::NotRead, read.moved.failedWord};
  const bool equal = type.kind == ValueKind::Text
                         ? read.value.text == record.WertText.left(StringLength(record))
                         : read.value.number == record.Wert;
  if (equal) return {index, Outcome::Equal};
  return {index, Outcome::Differs, {}, {record.Wert, record.WertText}, read.value};
}

ParameterResult HandleOne(Core& core, int index, Handle handle) {
  const ParameterRecord& record = core.module.Par[index];
  if (record.VarAdresse.isEmpty()) return {index, Outcome::NoAddress};
  const ParameterType& type = TypeOf(record.Typ);
  if (type.kind == ValueKind::Unknown) return {index, Outcome::PassedOver};
  return handle(core, index, type);
}

void Walk(Core& core, WalkResult& walk, Handle handle) {
  const Module1& module = core.module;
  walk.results.reserve(walk.results.size() + static_cast<std::size_t>(module.ParCount));
  for (int i = 1; i < module.ParCount; ++i) {
    if (module.ParNode[i] != kFalse) {
      ParameterResult result = HandleOne(core, i, handle);
      ReportProgress(core, result);
      walk.results.push_back(std::move(result));
    }
    if (module.Abbruch != kFalse) break;
  }
}

}  // namespace

void Receive(Core& core, WalkResult& walk) {
  Walk(core, walk, ReceiveOne);
}

void Send(Core& core, WalkResult& walk) {
  Walk(core, walk, SendOne);
}

void Compare(Core& core, WalkResult& walk) {
  Walk(core, walk, CompareOne);
}

qint16 ReadPlantNumber(Core& core) {
  const ParameterRecord& plantType = core.module.Par[0];
  if (plantType.VarAdresse.isEmpty()) return 0;
  qint16 number = 0;
  if (core.controller.ReadInt(kSlot, number, plantType.VarAdresse)) return number;
  ReportResult(core, {0, Outcome::NotRead, 0});
  return -1;
}

}  // namespace kalivor
