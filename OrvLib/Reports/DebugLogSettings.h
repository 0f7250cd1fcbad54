// The settings dialog of the debug log.
#pragma once

class CWnd;

namespace OrvLib {

class DebugLog;

/// Ids of the dialog's controls beside its button; a destination's check box has kFirstDestination plus its place.
namespace settingsIds {
inline constexpr int kLevel = 1101;
inline constexpr int kTimeStamps = 1102;
inline constexpr int kFileName = 1103;
inline constexpr int kFirstDestination = 1110;
}  // namespace settingsIds

/// Lets the user change level, time stamps, destinations and file name; cancelled, nothing changes. Destinations that
/// the dialog does not offer stay as they are.
void editDebugLogSettings(DebugLog& log, CWnd* parent);

}  // namespace OrvLib
