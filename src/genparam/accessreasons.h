// The features a feature's access mode depends on: those behind its
// pIsAvailable and pIsLocked links, through the formulas in between.
// Internal.
#ifndef ORBGUI_ACCESSREASONS_H
#define ORBGUI_ACCESSREASONS_H

#include <GenApi/GenApi.h>

#include <vector>

namespace OrbGui {

// The first features on each path down the reading links from `start`,
// each once; `start` itself when it is a feature.
std::vector<GenApi::INode *> featuresBehind(GenApi::INode *start);

// The node a feature's access link ("pIsAvailable", "pIsLocked") refers
// to, or null.
GenApi::INode *accessLink(GenApi::INodeMap *map, GenApi::INode *node, const char *link);

} // namespace OrbGui

#endif
