// The demo's gallery of value widgets, bound to a camera's features the way
// a host application should bind them.
#ifndef ORBCAM_DEMO_GALLERY_H
#define ORBCAM_DEMO_GALLERY_H

#include <GenApi/GenApi.h>

#include <QWidget>

#include <memory>

// A window with one of each value widget; those with a feature of their own
// in `map` follow it and write what the user commits (Enter, a released
// slider), never a half-typed number. `map` may be null: the widgets then
// run on their own. The widgets carry object names ("exposure", "blackLevel",
// "width", "height", "offsetX", "status") for tests.
std::unique_ptr<QWidget> makeValueWidgets(GenApi::INodeMap *map);

#endif
