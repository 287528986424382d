#pragma once

#include <QString>

// The software's short name; the settings file is named after it.
extern const char g_chSoftwareName[];

// The INI file that holds every setting: in the application folder, so that a copied folder takes its settings along.
// Whoever needs a setting opens the file for as long as that takes, and never longer.
QString SettingsFilePath();

// What a page size (in pixels) or a resolution (in dots per inch) is where the file has none.
inline constexpr int kDefaultLength = 100;

// The keys of the settings file. All values are texts: numbers in decimal, flags as TRUE and FALSE.
namespace settingkey {
inline constexpr char kFormat[] = "/SettingInfo/Format";
inline constexpr char kBitCount[] = "/SettingInfo/BitCount";
inline constexpr char kCompressMethod[] = "/SettingInfo/CompressMethod";
inline constexpr char kFaxTiff[] = "/SettingInfo/FaxTiff";
inline constexpr char kResizePage[] = "/SettingInfo/ResizePage";
inline constexpr char kPageSizeX[] = "/SettingInfo/PageSizeX";
inline constexpr char kPageSizeY[] = "/SettingInfo/PageSizeY";
inline constexpr char kResizeResolution[] = "/SettingInfo/ResizeResolution";
inline constexpr char kResolutionX[] = "/SettingInfo/ResolutionX";
inline constexpr char kResolutionY[] = "/SettingInfo/ResolutionY";
inline constexpr char kOutputFolder[] = "/SettingInfo/OutputFolder";
inline constexpr char kInputFolder[] = "/SettingInfo/InputFolder";
} // namespace settingkey
