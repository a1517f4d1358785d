// The places of the added windows, their parts and the columns of their tables among the settings.
#pragma once

#include <QHeaderView>
#include <QSplitter>
#include <QWidget>

#include "platform/SettingsStore.h"

namespace kalivor::ui {

/// Moves and resizes `window` to where it was when its place was last stored under `key` ("BefundePlatz"),
/// onto a screen that is there now. One that was never stored, or cannot be read, leaves the window as it is.
void LoadPlace(QWidget& window, const platform::SettingsStore& settings, const QString& key);

/// Stores the window's position with its frame and size without it: "left top width height" in twips. That of
/// a window that is minimized or fills the screen is not stored: the one before counts.
void SavePlace(const QWidget& window, platform::SettingsStore& settings, const QString& key);

/// Gives the columns the order, widths, hiding and sorting that were stored under `key` ("BefundeSpalten").
/// What was never stored, cannot be read or has other columns leaves the header as it is. Sort indicators
/// that are not shown are neither loaded nor stored.
void LoadColumns(QHeaderView& header, const platform::SettingsStore& settings, const QString& key);

/// Stores the columns: in the order in which they stand "number:width" in twips, or "number:0" for one that
/// is hidden; at the end ">number" or "<number" for the one that the table is sorted by, upwards or
/// downwards.
void SaveColumns(const QHeaderView& header, platform::SettingsStore& settings, const QString& key);

/// Gives the parts of a splitter the sizes that were stored under `key` ("VerlaufBreiten"), in the proportion
/// that the room allows. What was never stored, cannot be read or has other parts leaves them as they are.
void LoadParts(QSplitter& splitter, const platform::SettingsStore& settings, const QString& key);

/// Stores the sizes of the parts, in their order, in twips.
void SaveParts(const QSplitter& splitter, platform::SettingsStore& settings, const QString& key);

}  // namespace kalivor::ui
