#ifndef ORBGENAPI_LOADER_H
#define ORBGENAPI_LOADER_H

#include <cstddef>
#include <memory>
#include <string>

namespace GenApi_3_0 {
namespace impl {

class NodeMap;

// Builds a node map from a description's text. Throws RuntimeException for
// malformed XML and PropertyException for malformed content, both with the
// line number.
std::shared_ptr<NodeMap> loadDescription(std::string xml, const std::string &deviceName);

// The description inside a zip archive, skipping resource-fork decoys.
std::string extractDescriptionFromZip(const void *data, size_t size);

bool looksLikeZip(const std::string &bytes);

} // namespace impl
} // namespace GenApi_3_0

#endif
