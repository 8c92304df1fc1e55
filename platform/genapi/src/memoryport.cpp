#include <GenApi/MemoryPort.h>

#include <algorithm>
#include <cstring>

namespace GenApi_3_0 {

CMemoryPort::CMemoryPort(int64_t size, EAccessMode accessMode)
    : m_size(size < 0 ? 0 : size)
    , m_accessMode(accessMode)
{
}

CMemoryPort::~CMemoryPort() = default;

EAccessMode CMemoryPort::GetAccessMode() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_accessMode;
}

void CMemoryPort::SetAccessMode(EAccessMode accessMode)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_accessMode = accessMode;
}

void CMemoryPort::CheckRange(int64_t Address, int64_t Length, const void *pBuffer) const
{
    if (!pBuffer && Length > 0)
        throw INVALID_ARGUMENT_EXCEPTION("CMemoryPort: the buffer is NULL");
    if (Address < 0 || Length < 0 || Address > m_size || Length > m_size - Address)
        throw OUT_OF_RANGE_EXCEPTION("CMemoryPort: %lld bytes at 0x%llX lie outside the port's "
                                     "%lld bytes",
                                     static_cast<long long>(Length),
                                     static_cast<unsigned long long>(Address),
                                     static_cast<long long>(m_size));
}

void CMemoryPort::Read(void *pBuffer, int64_t Address, int64_t Length)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_accessMode != RO && m_accessMode != RW)
        throw ACCESS_EXCEPTION("CMemoryPort: the port is not readable");
    CheckRange(Address, Length, pBuffer);
    ++m_reads;
    auto *out = static_cast<uint8_t *>(pBuffer);
    int64_t done = 0;
    while (done < Length) {
        const int64_t at = Address + done;
        const int64_t page = at / PageSize;
        const int64_t offset = at % PageSize;
        const int64_t chunk = std::min(Length - done, PageSize - offset);
        auto it = m_pages.find(page);
        if (it == m_pages.end())
            std::memset(out + done, 0, static_cast<size_t>(chunk));
        else
            std::memcpy(out + done, it->second.data() + offset, static_cast<size_t>(chunk));
        done += chunk;
    }
}

void CMemoryPort::Write(const void *pBuffer, int64_t Address, int64_t Length)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_accessMode != WO && m_accessMode != RW)
        throw ACCESS_EXCEPTION("CMemoryPort: the port is not writable");
    CheckRange(Address, Length, pBuffer);
    ++m_writes;
    const auto *in = static_cast<const uint8_t *>(pBuffer);
    int64_t done = 0;
    while (done < Length) {
        const int64_t at = Address + done;
        const int64_t page = at / PageSize;
        const int64_t offset = at % PageSize;
        const int64_t chunk = std::min(Length - done, PageSize - offset);
        std::vector<uint8_t> &bytes = m_pages[page];
        if (bytes.empty())
            bytes.assign(static_cast<size_t>(PageSize), 0);
        std::memcpy(bytes.data() + offset, in + done, static_cast<size_t>(chunk));
        done += chunk;
    }
}

void CMemoryPort::Clear()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_pages.clear();
}

uint64_t CMemoryPort::ReadCount() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_reads;
}

uint64_t CMemoryPort::WriteCount() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_writes;
}

std::vector<std::unique_ptr<CMemoryPort>> ConnectMemoryPorts(INodeMap *nodeMap)
{
    std::vector<std::unique_ptr<CMemoryPort>> ports;
    if (!nodeMap)
        return ports;
    NodeList_t nodes;
    nodeMap->GetNodes(nodes);
    for (INode *node : nodes) {
        if (node->GetPrincipalInterfaceType() != intfIPort)
            continue;
        auto port = std::make_unique<CMemoryPort>();
        if (nodeMap->Connect(port.get(), node->GetName()))
            ports.push_back(std::move(port));
    }
    return ports;
}

} // namespace GenApi_3_0
