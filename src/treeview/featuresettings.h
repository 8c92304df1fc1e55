// A camera's settings as a text file: the values of its writable features,
// saved and loaded back in an order a camera accepts. Internal.
//
// The format (version 1), UTF-8 text, one item per line:
//
//   OrbGui settings 1
//   # comments and empty lines are ignored
//   @vendor = Orb Imaging
//   @model = OrbSim-C2000
//   ExposureTime = 5000
//   FrameSelector = FrameA       <- a selector: the lines after it are for
//   Width = 1280                    the feature it selects, FrameA's
//   FrameSelector = FrameB
//   Width = 640
//   FrameSelector = FrameA       <- back to the value it had
//
// A line is "Name = value", the value as the feature gives it as text, with
// "\\" and line breaks written as \\\\, \\n and \\r. @vendor and @model name
// the camera model (its DeviceVendorName and DeviceModelName) the values
// are for. Every value of a writable selector is visited, so saving sets
// each selector in turn and then back: the one write saving makes.
#ifndef ORBGUI_FEATURESETTINGS_H
#define ORBGUI_FEATURESETTINGS_H

#include <GenApi/GenApi.h>

#include <QString>

#include <vector>

namespace OrbGui {

// The settings file of the camera behind the node map. Never throws: a
// feature that cannot be read is left out.
QString saveSettings(GenApi::INodeMap *map);

struct SettingsProblem {
    QString feature;
    QString reason;
};

struct SettingsLoadResult {
    // The text is no settings file (or a newer version): nothing written.
    QString error;
    // The file is for another camera model: nothing written unless the
    // caller accepted that.
    bool otherModel = false;
    QString fileVendor, fileModel;
    int written = 0;
    // Each feature that could not be written, with the reason.
    std::vector<SettingsProblem> problems;
};

// Writes the file's values in its order; a value refused at first (locked
// or not available until another one is written) is tried again after the
// others, in its selector's context, as long as that helps.
SettingsLoadResult loadSettings(GenApi::INodeMap *map, const QString &text, bool acceptOtherModel);

} // namespace OrbGui

#endif
