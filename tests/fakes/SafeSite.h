// What the safe commands keep their journal and their backups with.
#pragma once

#include "commands/SafeCommands.h"
#include "fakes/Installation.h"
#include "fakes/NullForms.h"

namespace kalivor::test {

/// An installation that sends safely; no other program is at the controller.
class SafeSite : public Installation {
 public:
  PlainProgress progress;
  SafeStore store{files, World()};
  SafeContext context{core, progress, store};

 private:
  static SafeWorld World() {
    SafeWorld world;
    world.stateFolder = u"/zustand"_s;
    world.take = [](const QString&) { return true; };
    return world;
  }
};

}  // namespace kalivor::test
