// What every operation of the core works with.
#pragma once

#include "base/Module1.h"
#include "comm/COM_A.h"
#include "core/Deed.h"
#include "core/Forms.h"
#include "platform/Clock.h"
#include "platform/Events.h"
#include "platform/FileSystem.h"
#include "platform/MessageBox.h"

namespace kalivor {

/// What a program gives the core to work with: its forms, boxes, files and events.
struct Surroundings {
  MainForm& main;
  ReportForm& report;
  ChoiceForm& choice;
  EditorForms& editors;
  platform::MessageBox& box;
  platform::FileSystem& files;
  platform::Events& events;
};

/// State and collaborators, wired together once by the program (or a test) and handed to the operations.
/// Owns nothing; everything must outlive it.
struct Core : Surroundings {
  Module1& module;
  COM_A& controller;
  const platform::Clock& clock;

  /// Told once at the end of whatever is done with a controller's values, also where an exception ends it.
  /// Must not throw.
  Observer<const Deed&> OnDeed{};
};

}  // namespace kalivor
