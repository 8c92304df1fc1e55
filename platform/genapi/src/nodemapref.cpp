#include <GenApi/NodeMapRef.h>

#include "loader.h"
#include "nodemap.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>

namespace GenApi_3_0 {

namespace {

std::string readFile(const gcstring &fileName)
{
    std::ifstream in(fileName.c_str(), std::ios::binary);
    if (!in)
        throw RUNTIME_EXCEPTION("cannot open '%s': %s", fileName.c_str(), std::strerror(errno));
    std::ostringstream content;
    content << in.rdbuf();
    if (in.bad())
        throw RUNTIME_EXCEPTION("cannot read '%s'", fileName.c_str());
    return content.str();
}

} // namespace

CNodeMapRef::CNodeMapRef(const gcstring &DeviceName)
    : m_deviceName(DeviceName)
{
}

CNodeMapRef::CNodeMapRef(const CNodeMapRef &other)
    : _Ptr(other._Ptr)
    , m_map(other.m_map)
    , m_deviceName(other.m_deviceName)
    , m_strict(other.m_strict)
{
}

CNodeMapRef &CNodeMapRef::operator=(const CNodeMapRef &other)
{
    m_map = other.m_map;
    _Ptr = other._Ptr;
    m_deviceName = other.m_deviceName;
    m_strict = other.m_strict;
    return *this;
}

CNodeMapRef::~CNodeMapRef() = default;

void CNodeMapRef::_Destroy()
{
    m_map.reset();
    _Ptr = nullptr;
}

void CNodeMapRef::Adopt(std::shared_ptr<INodeMap> map)
{
    m_map = std::move(map);
    _Ptr = m_map.get();
}

INodeMap &CNodeMapRef::Checked() const
{
    if (!_Ptr)
        throw LOGICAL_ERROR_EXCEPTION("CNodeMapRef: no description has been loaded");
    return *_Ptr;
}

void CNodeMapRef::_LoadXMLFromFile(const gcstring &FileName)
{
    if (_Ptr)
        throw LOGICAL_ERROR_EXCEPTION("CNodeMapRef: a description is already loaded");
    std::string content = readFile(FileName);
    if (impl::looksLikeZip(content))
        content = impl::extractDescriptionFromZip(content.data(), content.size());
    Adopt(impl::loadDescription(std::move(content), m_deviceName.str(), m_strict));
}

void CNodeMapRef::_LoadXMLFromString(const gcstring &XMLData)
{
    if (_Ptr)
        throw LOGICAL_ERROR_EXCEPTION("CNodeMapRef: a description is already loaded");
    Adopt(impl::loadDescription(XMLData.str(), m_deviceName.str(), m_strict));
}

void CNodeMapRef::_LoadXMLFromString(gcstring &&XMLData)
{
    if (_Ptr)
        throw LOGICAL_ERROR_EXCEPTION("CNodeMapRef: a description is already loaded");
    Adopt(impl::loadDescription(XMLData.take(), m_deviceName.str(), m_strict));
}

void CNodeMapRef::_LoadXMLFromZIPFile(const gcstring &ZipFileName)
{
    const std::string content = readFile(ZipFileName);
    _LoadXMLFromZIPData(content.data(), content.size());
}

void CNodeMapRef::_LoadXMLFromZIPData(const void *zipData, size_t zipSize)
{
    if (_Ptr)
        throw LOGICAL_ERROR_EXCEPTION("CNodeMapRef: a description is already loaded");
    Adopt(impl::loadDescription(impl::extractDescriptionFromZip(zipData, zipSize),
                                m_deviceName.str(), m_strict));
}

gcstring_vector CNodeMapRef::_GetLoadWarnings() const
{
    gcstring_vector warnings;
    if (const auto *map = dynamic_cast<const impl::NodeMap *>(_Ptr))
        for (const std::string &warning : map->loadWarnings)
            warnings.push_back(gcstring(warning));
    return warnings;
}

gcstring CNodeMapRef::_GetDeviceName() const
{
    return Checked().GetDeviceName();
}

gcstring CNodeMapRef::_GetVendorName() const
{
    return static_cast<impl::NodeMap &>(Checked()).vendorName;
}

gcstring CNodeMapRef::_GetModelName() const
{
    return static_cast<impl::NodeMap &>(Checked()).modelName;
}

void CNodeMapRef::_Poll(int64_t ElapsedTime)
{
    Checked().Poll(ElapsedTime);
}
void CNodeMapRef::_GetNodes(NodeList_t &Nodes) const
{
    Checked().GetNodes(Nodes);
}
INode *CNodeMapRef::_GetNode(const gcstring &Name) const
{
    return Checked().GetNode(Name);
}

bool CNodeMapRef::_Connect(IPort *pPort, const gcstring &PortName) const
{
    return Checked().Connect(pPort, PortName);
}

bool CNodeMapRef::_Connect(IPort *pPort) const
{
    return Checked().Connect(pPort);
}
void CNodeMapRef::_InvalidateNodes() const
{
    Checked().InvalidateNodes();
}

bool CNodeMapRef::_ParseSwissKnife(const gcstring &Expression) const
{
    return Checked().ParseSwissKnife(Expression);
}

CNodeMapRef::operator INodeMap *() const
{
    return _Ptr;
}

} // namespace GenApi_3_0
