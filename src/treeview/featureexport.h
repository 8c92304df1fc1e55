// The whole feature tree of a parameter model as text or JSON, for a trace of a
// camera's state: every feature under Root with its path, kind, access mode,
// value and unit, or the error reading it gave. Internal.
#ifndef ORBGUI_FEATUREEXPORT_H
#define ORBGUI_FEATUREEXPORT_H

#include <GenApi/GenApi.h>

#include <QAbstractItemModel>
#include <QByteArray>
#include <QString>

#include <vector>

namespace OrbGui {

struct FeatureRecord {
    QString path; // "Root/AcquisitionControl/ExposureTime"
    QString name;
    QString type; // "Integer", "Float", ..., "Category"
    QString access; // "RW", "RO", "WO", "NA", "NI"
    QString value; // as the feature gives it as text; empty for categories
    QString unit;
    QString error; // when the value or the access mode could not be read
    bool category = false;
};

// Every row of the parameter model (not its filter), depth first in the
// tree's order: a feature listed under two categories comes under each, as
// the tree shows it. Reads every value (through the node map's cache);
// never throws.
std::vector<FeatureRecord> collectFeatures(const QAbstractItemModel *model);

// One line per feature: "path = value unit  (type, access)", or
// "path: error: message  (type, access)"; categories "path  (Category)".
QString featuresAsText(const std::vector<FeatureRecord> &features);
// {"format": "orbgui-feature-tree", "version": 1, "features": [{"path",
// "name", "type", "access", "value", "unit"} or {..., "error"}]}.
QByteArray featuresAsJson(const std::vector<FeatureRecord> &features);

} // namespace OrbGui

#endif
