#include "accessreasons.h"

#include <unordered_set>

using namespace GenApi;

namespace OrbGui {

std::vector<INode *> featuresBehind(INode *start)
{
    std::vector<INode *> found;
    std::vector<INode *> pending { start };
    std::unordered_set<INode *> seen { start };
    // A description may link thousands of nodes; the reasons are near.
    while (!pending.empty() && seen.size() < 1000) {
        INode *node = pending.back();
        pending.pop_back();
        if (node->IsFeature()) {
            found.push_back(node);
            continue;
        }
        NodeList_t children;
        node->GetChildren(children, ctReadingChildren);
        for (INode *child : children)
            if (seen.insert(child).second)
                pending.push_back(child);
    }
    return found;
}

INode *accessLink(INodeMap *map, INode *node, const char *link)
{
    GenICam::gcstring target, attribute;
    if (!map || !node->GetProperty(link, target, attribute))
        return nullptr;
    return map->GetNode(target);
}

} // namespace OrbGui
