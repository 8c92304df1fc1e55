/// \file
/// The node map's lock, for hosts that need several calls to be atomic.
#ifndef GENAPI_SYNCH_H
#define GENAPI_SYNCH_H

#include <GenICam/GCLinkage.h>

#include <mutex>

namespace GenApi_3_0 {

/// A recursive lock. The node map locks it around every operation; a host may
/// hold it across several calls (AutoLock) from one thread.
class GENAPI_DECL CLock {
public:
    CLock() = default;
    CLock(const CLock &) = delete;
    CLock &operator=(const CLock &) = delete;
    bool TryLock() { return m_mutex.try_lock(); }
    void Lock() { m_mutex.lock(); }
    void Unlock() { m_mutex.unlock(); }

private:
    std::recursive_mutex m_mutex;
};

class AutoLock {
public:
    explicit AutoLock(CLock &lock)
        : m_lock(lock)
    {
        m_lock.Lock();
    }
    ~AutoLock() { m_lock.Unlock(); }
    AutoLock(const AutoLock &) = delete;
    AutoLock &operator=(const AutoLock &) = delete;

private:
    CLock &m_lock;
};

} // namespace GenApi_3_0

#endif
