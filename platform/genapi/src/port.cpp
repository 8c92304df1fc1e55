// Port: the node through which registers reach the device.
#include "nodes.h"

#include "nodemap.h"
#include "text.h"

namespace GenApi_3_0 {
namespace impl {

// ---------------------------------------------------------------------------
// Port

bool Port::applyProperty(const Property &p)
{
    const std::string_view n = p.name;
    if (n == "ChunkID" || n == "SwapEndianess" || n == "CacheChunkData")
        return true;
    return Node::applyProperty(p);
}

EAccessMode Port::doAccess()
{
    return m_port ? m_port->GetAccessMode() : NA;
}

void Port::Read(void *pBuffer, int64_t Address, int64_t Length)
{
    NodeMap::Guard guard(m_map);
    if (!m_port)
        throwAccess("no port is connected");
    m_port->Read(pBuffer, Address, Length);
}

void Port::Write(const void *pBuffer, int64_t Address, int64_t Length)
{
    NodeMap::Guard guard(m_map);
    if (!m_port)
        throwAccess("no port is connected");
    m_port->Write(pBuffer, Address, Length);
}

} // namespace impl
} // namespace GenApi_3_0
