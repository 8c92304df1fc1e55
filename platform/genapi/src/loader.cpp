#include "loader.h"

#include "nodemap.h"
#include "text.h"

#include <pugixml.hpp>
#include <zip.h>

#include <algorithm>
#include <cstring>

namespace GenApi_3_0 {
namespace impl {

namespace {

constexpr int MaxGroupNesting = 64;
constexpr zip_uint64_t MaxDescriptionSize = zip_uint64_t(512) << 20;

class Loader {
public:
    Loader(NodeMap &map, const LineIndex &lines)
        : m_map(map)
        , m_lines(lines)
    {
    }

    uint32_t lineOf(const pugi::xml_node &node) const
    {
        return m_lines.lineAt(node.offset_debug());
    }

    SourcePos posOf(const pugi::xml_node &element) const
    {
        return { m_lines.offsetOf(element.name()) };
    }

    void loadRoot(const pugi::xml_node &root)
    {
        m_map.vendorName = root.attribute("VendorName").value();
        m_map.modelName = root.attribute("ModelName").value();
        m_map.toolTip = root.attribute("ToolTip").value();
        m_map.standardNameSpace = root.attribute("StandardNameSpace").value();
        m_map.schemaVersion = std::string(root.attribute("SchemaMajorVersion").value()) + "."
            + root.attribute("SchemaMinorVersion").value();
        loadChildren(root, 0);
    }

private:
    void loadChildren(const pugi::xml_node &parent, int depth)
    {
        if (depth > MaxGroupNesting)
            throw PROPERTY_EXCEPTION("line %u: groups nest deeper than %d levels", lineOf(parent),
                                     MaxGroupNesting);
        for (pugi::xml_node child = parent.first_child(); child; child = child.next_sibling()) {
            if (child.type() != pugi::node_element)
                continue;
            const std::string_view type = child.name();
            if (type == "Group")
                loadChildren(child, depth + 1);
            else if (type == "StructReg")
                loadStructReg(child);
            else
                loadNode(child, type);
        }
    }

    std::unique_ptr<Node> create(std::string_view type, std::string_view name)
    {
        if (type == "Category")
            return std::make_unique<Category>(m_map, name);
        if (type == "Integer")
            return std::make_unique<Integer>(m_map, name);
        if (type == "IntReg")
            return std::make_unique<IntReg>(m_map, name, "IntReg", false);
        if (type == "MaskedIntReg")
            return std::make_unique<IntReg>(m_map, name, "MaskedIntReg", true);
        if (type == "IntKey")
            return std::make_unique<IntReg>(m_map, name, "IntKey", false);
        if (type == "AdvFeatureLock")
            return std::make_unique<IntReg>(m_map, name, "AdvFeatureLock", false);
        if (type == "Float")
            return std::make_unique<Float>(m_map, name);
        if (type == "FloatReg")
            return std::make_unique<FloatReg>(m_map, name);
        if (type == "Converter")
            return std::make_unique<Converter>(m_map, name);
        if (type == "IntConverter")
            return std::make_unique<IntConverter>(m_map, name);
        if (type == "SwissKnife")
            return std::make_unique<SwissKnife>(m_map, name);
        if (type == "IntSwissKnife")
            return std::make_unique<IntSwissKnife>(m_map, name);
        if (type == "Boolean")
            return std::make_unique<Boolean>(m_map, name);
        if (type == "Command")
            return std::make_unique<Command>(m_map, name);
        if (type == "Enumeration")
            return std::make_unique<Enumeration>(m_map, name);
        if (type == "String")
            return std::make_unique<String>(m_map, name, "String", false);
        if (type == "StringReg")
            return std::make_unique<StringReg>(m_map, name, "StringReg");
        if (type == "ConfRom")
            return std::make_unique<StringReg>(m_map, name, "ConfRom");
        if (type == "TextDesc")
            return std::make_unique<StringReg>(m_map, name, "TextDesc");
        if (type == "Register")
            return std::make_unique<Register>(m_map, name, "Register");
        if (type == "SmartFeature")
            return std::make_unique<Register>(m_map, name, "SmartFeature");
        if (type == "Port")
            return std::make_unique<Port>(m_map, name);
        return nullptr;
    }

    std::string_view nameOf(const pugi::xml_node &element)
    {
        const std::string_view name = trim(element.attribute("Name").value());
        if (name.empty())
            throw PROPERTY_EXCEPTION("line %u: <%s> has no Name attribute", lineOf(element),
                                     element.name());
        return name;
    }

    Node *addNamed(std::unique_ptr<Node> node, const pugi::xml_node &element)
    {
        node->setPos(posOf(element));
        if (equalsIgnoreCase(element.attribute("NameSpace").value(), "Standard"))
            node->setNameSpace(Standard);
        if (Node *added = m_map.add(node, true))
            return added;
        throw PROPERTY_EXCEPTION("line %u: node '%s' is defined twice (first at line %u)",
                                 lineOf(element), std::string(node->name()).c_str(),
                                 m_map.find(node->name())->line());
    }

    void applyProperties(Node &node, const pugi::xml_node &element)
    {
        for (pugi::xml_node p = element.first_child(); p; p = p.next_sibling()) {
            if (p.type() != pugi::node_element)
                continue;
            const std::string_view name = p.name();
            if (name == "EnumEntry") {
                if (Enumeration *e = node.asEnumeration()) {
                    loadEnumEntry(*e, p);
                    continue;
                }
            }
            if (name == "IntSwissKnife") {
                if (RegisterCore *core = node.registerCore()) {
                    loadInlineAddress(node, *core, p);
                    continue;
                }
            }
            apply(node, Property { name, textOf(p), p, &m_lines });
        }
    }

    static void apply(Node &node, const Property &property)
    {
        // Unknown elements are skipped: newer schema versions and vendor
        // additions must not make a camera unusable.
        if (!node.applyCommonProperty(property))
            node.applyProperty(property);
    }

    // The element's text. The parser keeps an element's first text in the
    // element itself (no node of its own: half a description's elements are
    // text); vendors comment out parts of a formula, which leaves more text
    // children after it. Either way the text lives as long as the map.
    std::string_view textOf(const pugi::xml_node &element)
    {
        const pugi::xml_node first = element.first_child();
        if (!first)
            return trim(element.value());
        m_text = element.value();
        for (pugi::xml_node c = first; c; c = c.next_sibling())
            if (c.type() == pugi::node_pcdata || c.type() == pugi::node_cdata)
                m_text += c.value();
        return m_map.keep(trim(m_text));
    }

    void loadNode(const pugi::xml_node &element, std::string_view type)
    {
        const std::string_view name = trim(element.attribute("Name").value());
        std::unique_ptr<Node> node = create(type, name);
        if (!node)
            return; // an element this interpreter does not know
        if (name.empty())
            nameOf(element); // throws the missing-name error
        Node *added = addNamed(std::move(node), element);
        applyProperties(*added, element);
    }

    void loadEnumEntry(Enumeration &parent, const pugi::xml_node &element)
    {
        const std::string_view symbolic = nameOf(element);
        m_text.assign("EnumEntry_").append(parent.name()).append("_").append(symbolic);
        auto entry = std::make_unique<EnumEntry>(m_map, m_map.keep(m_text), symbolic, &parent);
        auto *added = static_cast<EnumEntry *>(addNamed(std::move(entry), element));
        applyProperties(*added, element);
        parent.entries.push_back(added);
    }

    void loadInlineAddress(Node &owner, RegisterCore &core, const pugi::xml_node &element)
    {
        m_text.assign(owner.name()).append("#Address").append(std::to_string(++m_inlineCount));
        std::unique_ptr<Node> node = std::make_unique<IntSwissKnife>(m_map, m_map.keep(m_text));
        node->setPos(posOf(element));
        Node *added = m_map.add(node, false);
        applyProperties(*added, element);
        core.addAddressNode(added);
    }

    void loadStructReg(const pugi::xml_node &element)
    {
        for (pugi::xml_node entry = element.child("StructEntry"); entry;
             entry = entry.next_sibling("StructEntry")) {
            auto node = std::make_unique<IntReg>(m_map, nameOf(entry), "MaskedIntReg", true);
            Node *added = addNamed(std::move(node), entry);
            // The register's own properties first, then the entry's, which
            // may override them (AccessMode, Sign, Visibility ...).
            for (pugi::xml_node p = element.first_child(); p; p = p.next_sibling()) {
                if (p.type() != pugi::node_element)
                    continue;
                const std::string_view name = p.name();
                if (name == "StructEntry")
                    continue;
                if (name == "IntSwissKnife") {
                    loadInlineAddress(*added, static_cast<IntReg *>(added)->core(), p);
                    continue;
                }
                apply(*added, Property { name, textOf(p), p, &m_lines });
            }
            applyProperties(*added, entry);
        }
    }

    NodeMap &m_map;
    const LineIndex &m_lines;
    int m_inlineCount = 0;
    std::string m_text;
};

// Dump tools sometimes leave a line of their own before the XML; skip
// anything before the first line that starts with '<'.
size_t skipStrayLines(const std::string &xml, uint32_t &skippedLines)
{
    size_t pos = 0;
    skippedLines = 0;
    if (xml.compare(0, 3, "\xEF\xBB\xBF") == 0)
        pos = 3;
    for (;;) {
        size_t first = pos;
        while (first < xml.size()
               && (xml[first] == ' ' || xml[first] == '\t' || xml[first] == '\r'))
            ++first;
        if (first >= xml.size() || xml[first] == '<' || xml[first] == '\n') {
            if (first < xml.size() && xml[first] == '\n') {
                pos = first + 1;
                ++skippedLines;
                continue;
            }
            return pos;
        }
        const size_t end = xml.find('\n', first);
        if (end == std::string::npos)
            return pos; // no XML at all: let the parser report it
        pos = end + 1;
        ++skippedLines;
    }
}

} // namespace

LineIndex::LineIndex(const char *text, size_t size, uint32_t skippedLines)
    : m_text(text)
    , m_size(size)
    , m_skippedLines(skippedLines)
{
}

void LineIndex::build() const
{
    m_linesBefore.reserve(m_size / Block + 2);
    uint32_t lines = 0;
    for (size_t start = 0; start <= m_size; start += Block) {
        m_linesBefore.push_back(lines);
        const char *begin = m_text + start;
        lines += static_cast<uint32_t>(
            std::count(begin, begin + std::min(Block, m_size - start), '\n'));
    }
}

uint32_t LineIndex::lineAt(ptrdiff_t offset) const
{
    if (offset < 0 || static_cast<size_t>(offset) > m_size)
        return 0;
    if (m_linesBefore.empty())
        build();
    const size_t at = static_cast<size_t>(offset);
    size_t from = at - at % Block;
    uint32_t before = m_linesBefore[at / Block];
    if (at >= m_lastAt && m_lastAt > from) {
        from = m_lastAt;
        before = m_lastBefore;
    }
    before += static_cast<uint32_t>(std::count(m_text + from, m_text + at, '\n'));
    m_lastAt = at;
    m_lastBefore = before;
    return before + 1 + m_skippedLines;
}

SourcePos Property::pos() const
{
    return { lines ? lines->offsetOf(element.name()) : 0 };
}

uint32_t Property::line() const
{
    const SourcePos at = pos();
    return at.offset ? lines->lineAt(at.offset) : 0;
}

std::shared_ptr<NodeMap> loadDescription(std::string xml, const std::string &deviceName,
                                         bool strict)
{
    auto map = std::make_shared<NodeMap>(deviceName);
    map->strictLoading = strict;
    // The nodes view the text, so the map keeps it; the parser works in
    // place, with no copy of its own.
    std::string &source = map->source();
    source = std::move(xml);
    uint32_t skippedLines = 0;
    const size_t start = skipStrayLines(source, skippedLines);
    char *data = source.data() + start;
    const size_t size = source.size() - start;
    // Real descriptions spend a few hundred bytes per node.
    map->reserve(size / 256);
    const LineIndex lines(data, size, skippedLines);
    struct Indexed {
        NodeMap &map;
        ~Indexed() { map.lineIndex = nullptr; }
    } indexed { *map };
    map->lineIndex = &lines;

    {
        pugi::xml_document doc;
        const pugi::xml_parse_result result = doc.load_buffer_inplace(
            data, size,
            pugi::parse_default | pugi::parse_ws_pcdata_single | pugi::parse_embed_pcdata,
            pugi::encoding_auto);
        if (!result)
            throw RUNTIME_EXCEPTION("line %u: malformed XML: %s", lines.lineAt(result.offset),
                                    result.description());
        const pugi::xml_node root = doc.document_element();
        Loader loader(*map, lines);
        if (std::strcmp(root.name(), "RegisterDescription") != 0)
            throw RUNTIME_EXCEPTION("line %u: the root element is <%s>, not <RegisterDescription>",
                                    loader.lineOf(root), root.name());
        loader.loadRoot(root);
        // The parsed tree goes before the nodes link up: at the peak of a
        // load, it and the links are not both held.
    }
    map->finishLoad();
    return map;
}

bool looksLikeZip(const std::string &bytes)
{
    return bytes.compare(0, 4, "PK\x03\x04") == 0;
}

std::string extractDescriptionFromZip(const void *data, size_t size)
{
    if (!data || size == 0)
        throw INVALID_ARGUMENT_EXCEPTION("the zip data is empty");
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t *source = zip_source_buffer_create(data, size, 0, &error);
    if (!source) {
        const std::string why = zip_error_strerror(&error);
        zip_error_fini(&error);
        throw RUNTIME_EXCEPTION("cannot read the zip archive: %s", why.c_str());
    }
    zip_t *archive = zip_open_from_source(source, ZIP_RDONLY, &error);
    if (!archive) {
        zip_source_free(source);
        const std::string why = zip_error_strerror(&error);
        zip_error_fini(&error);
        throw RUNTIME_EXCEPTION("not a readable zip archive: %s", why.c_str());
    }
    zip_error_fini(&error);
    struct Closer {
        zip_t *archive;
        ~Closer() { zip_discard(archive); }
    } closer { archive };

    zip_int64_t chosen = -1;
    bool chosenIsXml = false;
    const zip_int64_t count = zip_get_num_entries(archive, 0);
    for (zip_int64_t i = 0; i < count; ++i) {
        const char *entryName = zip_get_name(archive, static_cast<zip_uint64_t>(i), 0);
        if (!entryName)
            continue;
        const std::string name = entryName;
        const size_t slash = name.rfind('/');
        const std::string base = slash == std::string::npos ? name : name.substr(slash + 1);
        if (base.empty() || name.rfind("__MACOSX/", 0) == 0 || base.rfind("._", 0) == 0)
            continue;
        const bool isXml
            = base.size() > 4 && equalsIgnoreCase(base.substr(base.size() - 4), ".xml");
        if (chosen < 0 || (isXml && !chosenIsXml)) {
            chosen = i;
            chosenIsXml = isXml;
        }
    }
    if (chosen < 0)
        throw RUNTIME_EXCEPTION("the zip archive holds no description");

    zip_stat_t stat;
    zip_stat_init(&stat);
    if (zip_stat_index(archive, static_cast<zip_uint64_t>(chosen), 0, &stat) != 0
        || !(stat.valid & ZIP_STAT_SIZE))
        throw RUNTIME_EXCEPTION("cannot read entry %lld of the zip archive",
                                static_cast<long long>(chosen));
    if (stat.size > MaxDescriptionSize)
        throw RUNTIME_EXCEPTION("the description in the zip archive is too large (%llu bytes)",
                                static_cast<unsigned long long>(stat.size));
    zip_file_t *file = zip_fopen_index(archive, static_cast<zip_uint64_t>(chosen), 0);
    if (!file)
        throw RUNTIME_EXCEPTION("cannot open '%s' in the zip archive: %s", stat.name,
                                zip_strerror(archive));
    std::string text(static_cast<size_t>(stat.size), '\0');
    const zip_int64_t got = zip_fread(file, text.data(), stat.size);
    const std::string why = got < 0 ? zip_file_strerror(file) : std::string();
    zip_fclose(file);
    if (got < 0 || static_cast<zip_uint64_t>(got) != stat.size)
        throw RUNTIME_EXCEPTION("cannot unpack '%s' from the zip archive%s%s", stat.name,
                                why.empty() ? "" : ": ", why.c_str());
    return text;
}

} // namespace impl
} // namespace GenApi_3_0
