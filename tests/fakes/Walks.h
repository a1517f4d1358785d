// The engines, each with results of its own.
#pragma once

#include "core/Engines.h"

namespace kalivor::test {

inline WalkResult Receive(Core& core) {
  WalkResult walk;
  Receive(core, walk);
  return walk;
}

inline WalkResult Send(Core& core) {
  WalkResult walk;
  Send(core, walk);
  return walk;
}

inline WalkResult Compare(Core& core) {
  WalkResult walk;
  Compare(core, walk);
  return walk;
}

}  // namespace kalivor::test
