#ifndef ORBGENAPI_LOADER_H
#define ORBGENAPI_LOADER_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace GenApi_3_0 {
namespace impl {

class NodeMap;

// Line numbers of offsets into a description's text, for messages. Built at
// the first lookup: a description that loads cleanly never needs one. Keeps
// one count per block of the text, not one entry per newline: a hostile file
// of nothing but newlines must not cost eight times its size. Lookups come
// mostly in document order, so one counts on from the last when it is near,
// else from its block's start.
class LineIndex {
public:
    // text must outlive the index; skippedLines come before it.
    LineIndex(const char *text, size_t size, uint32_t skippedLines);
    uint32_t lineAt(ptrdiff_t offset) const;
    // Where an element parsed in place from this text starts (its name):
    // what the parser's own offset lookup gives, without its search.
    uint32_t offsetOf(const char *name) const
    {
        const ptrdiff_t offset = name - m_text;
        return offset > 0 && static_cast<size_t>(offset) <= m_size ? uint32_t(offset) : 0;
    }

private:
    static constexpr size_t Block = 256;
    void build() const;

    const char *m_text;
    size_t m_size;
    uint32_t m_skippedLines;
    mutable std::vector<uint32_t> m_linesBefore;
    mutable size_t m_lastAt = 0;
    mutable uint32_t m_lastBefore = 0;
};

// Builds a node map from a description's text. Throws RuntimeException for
// malformed XML and PropertyException for malformed content, both with the
// line number.
//
// Cameras ship descriptions with small schema violations, and refusing the
// whole description leaves their owners with nothing. Unless `strict`, these
// load with the property's default and a warning in the map's loadWarnings
// ("line N: node 'X': <Property> 'text' is not ...; the default D is used"):
//   - a Yes/No property that is empty or neither Yes nor No (Streamable,
//     IsDeprecated, IsSelfClearing): No;
//   - an empty or unknown value of an enumerated property: AccessMode of a
//     register (RO), ImposedAccessMode (RW, no restriction), Visibility
//     (Beginner), Representation (none: the node's own default),
//     DisplayNotation (Automatic), Cachable (WriteThrough), Endianess
//     (LittleEndian), Sign (Unsigned), Slope (Automatic).
// Unknown elements are skipped without a warning, as before: vendors add
// their own and newer schemas add more. Attributes are not checked.
// Everything else still refuses the description in either mode: malformed
// XML, a root element other than RegisterDescription, a malformed number,
// formula or list, a reference to a node that does not exist, a node defined
// twice, groups nested too deep. Two things load on purpose: a description
// without a Root category (its nodes are still there by name; a tree of it
// is empty), and a cycle of references, which cannot always be seen before
// a value is read (a pIndex may close it): every access to a node on a
// cycle fails at once with an error that says so.
std::shared_ptr<NodeMap> loadDescription(std::string xml, const std::string &deviceName,
                                         bool strict = false);

// The description inside a zip archive, skipping resource-fork decoys.
std::string extractDescriptionFromZip(const void *data, size_t size);

bool looksLikeZip(const std::string &bytes);

} // namespace impl
} // namespace GenApi_3_0

#endif
