/// \file
/// CMemoryPort: a port over simulated register memory, for simulations and
/// tests. Memory is allocated on first write in pages, so the whole 64-bit
/// address space of a description can be served; unwritten memory reads as
/// zero. Thread-safe. Accesses outside [0, Size()) throw OutOfRangeException.
#ifndef GENAPI_MEMORYPORT_H
#define GENAPI_MEMORYPORT_H

#include <GenApi/Interfaces.h>

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace GenApi_3_0 {

class GENAPI_DECL CMemoryPort : public IPort {
public:
    /// size: the addressable bytes; the default spans every non-negative address.
    explicit CMemoryPort(int64_t size = INT64_MAX, EAccessMode accessMode = RW);
    ~CMemoryPort() override;
    CMemoryPort(const CMemoryPort &) = delete;
    CMemoryPort &operator=(const CMemoryPort &) = delete;

    EAccessMode GetAccessMode() const override;
    void Read(void *pBuffer, int64_t Address, int64_t Length) override;
    void Write(const void *pBuffer, int64_t Address, int64_t Length) override;

    int64_t Size() const { return m_size; }
    void SetAccessMode(EAccessMode accessMode);
    /// Clears every byte back to zero.
    void Clear();
    /// Counts of Read and Write calls, for tests of caching.
    uint64_t ReadCount() const;
    uint64_t WriteCount() const;

private:
    void CheckRange(int64_t Address, int64_t Length, const void *pBuffer) const;

    static constexpr int64_t PageSize = 4096;
    mutable std::mutex m_mutex;
    std::map<int64_t, std::vector<uint8_t>> m_pages;
    int64_t m_size;
    EAccessMode m_accessMode;
    uint64_t m_reads = 0;
    uint64_t m_writes = 0;
};

/// Connects a fresh zero-filled CMemoryPort to every port node of `nodeMap`
/// (device, transport-layer and chunk ports alike), so that a description
/// can be explored without a camera. The caller owns the returned ports and
/// keeps them alive while the node map is used. Never throws for a port that
/// will not connect; it is simply left out. nodeMap may be null (no ports).
GENAPI_DECL std::vector<std::unique_ptr<CMemoryPort>> ConnectMemoryPorts(INodeMap *nodeMap);

} // namespace GenApi_3_0

#endif
