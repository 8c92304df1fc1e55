/// \file
/// CNodeMapRef: loads a GenICam description and gives access to its node map.
///
/// Copies share one node map; it is destroyed with the last copy (or by
/// _Destroy()). Loading throws RuntimeException for malformed XML (with the
/// line), PropertyException for a malformed property or a missing referenced
/// node, and LogicalErrorException when the reference already holds a node
/// map. Small schema violations that real cameras ship (an empty or unknown
/// value of a Yes/No or enumerated property) load with the property's default
/// and a warning (_GetLoadWarnings) unless strict loading is asked for.
///
/// The loader accepts plain and zipped descriptions, schema 1.0 and 1.1,
/// with or without a byte-order mark, and skips a stray text line that some
/// tools write before the XML.
#ifndef GENAPI_NODEMAPREF_H
#define GENAPI_NODEMAPREF_H

#include <GenApi/Interfaces.h>

#include <cstddef>
#include <memory>

namespace GenApi_3_0 {

class GENAPI_DECL CNodeMapRef {
public:
    explicit CNodeMapRef(const gcstring &DeviceName = "Device");
    CNodeMapRef(const CNodeMapRef &other);
    CNodeMapRef &operator=(const CNodeMapRef &other);
    virtual ~CNodeMapRef();

    /// Releases this reference's share of the node map.
    void _Destroy();

    void _LoadXMLFromFile(const gcstring &FileName);
    void _LoadXMLFromString(const gcstring &XMLData);
    /// The same, taking the text over instead of copying it (a temporary, or
    /// a string the caller moves in): a description of megabytes is then
    /// held once, not twice, while it loads. Our own addition.
    void _LoadXMLFromString(gcstring &&XMLData);
    /// Loads the description inside a zip archive; __MACOSX resource entries
    /// and other decoys are skipped.
    void _LoadXMLFromZIPFile(const gcstring &ZipFileName);
    void _LoadXMLFromZIPData(const void *zipData, size_t zipSize);

    /// Strict loading refuses a description with any schema violation, as a
    /// validator would; by default (false) the recoverable ones are warnings.
    /// Takes effect for the next load.
    void _SetStrictLoading(bool strict) { m_strict = strict; }
    /// One line per recoverable violation the load met ("line 12: node 'Gain':
    /// <Streamable> '' is not Yes or No; the default No is used"), in document
    /// order; empty before loading.
    gcstring_vector _GetLoadWarnings() const;

    gcstring _GetDeviceName() const;
    /// VendorName and ModelName of the description's root element.
    gcstring _GetVendorName() const;
    gcstring _GetModelName() const;
    void _Poll(int64_t ElapsedTime);
    void _GetNodes(NodeList_t &Nodes) const;
    /// nullptr when there is no such node; throws LogicalErrorException when
    /// nothing has been loaded.
    INode *_GetNode(const gcstring &Name) const;
    bool _Connect(IPort *pPort, const gcstring &PortName) const;
    bool _Connect(IPort *pPort) const;
    void _InvalidateNodes() const;
    bool _ParseSwissKnife(const gcstring &Expression) const;

    operator INodeMap *() const;

    /// The node map, or nullptr before loading.
    INodeMap *_Ptr = nullptr;

private:
    void Adopt(std::shared_ptr<INodeMap> map);
    INodeMap &Checked() const;

    std::shared_ptr<INodeMap> m_map;
    gcstring m_deviceName;
    bool m_strict = false;
};

} // namespace GenApi_3_0

#endif
