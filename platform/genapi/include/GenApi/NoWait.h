/// \file
/// Calls that must not wait: an extension beyond the standard GenApi
/// interface, for GUI threads.
///
/// A feature read may wait: for a camera on the network, or for the node
/// map's lock while another thread's access waits for one. A thread that
/// must stay responsive (a GUI thread) opens a NoWaitScope around its calls;
/// inside it, a call that would wait throws WouldWaitException at once
/// instead, and the thread leaves the access to another one. What the node
/// map holds in its cache is read as usual, so a cached value costs no wait.
///
/// Who would wait decides: the node map when its lock is held by another
/// thread; a port (IPort::Read or Write) that answers over a network or USB
/// when NoWaitScope::IsActive() is true on the calling thread. A port that
/// answers from memory ignores the scope. Ports written before this
/// extension never throw it, and simply wait as before.
#ifndef GENAPI_NOWAIT_H
#define GENAPI_NOWAIT_H

#include <GenICam/GCException.h>
#include <GenICam/GCLinkage.h>

namespace GenApi_3_0 {

/// Thrown inside a NoWaitScope by a call that would have to wait. Nothing
/// was read or written; the same call on a thread without the scope waits
/// and does it.
class GENAPI_DECL WouldWaitException : public GenICam_3_0::TimeoutException {
public:
    WouldWaitException(const char *description, const char *sourceFileName, unsigned int sourceLine)
        : TimeoutException(description, sourceFileName, sourceLine, "WouldWaitException")
    {
    }
    WouldWaitException(const char *description, const char *sourceFileName, unsigned int sourceLine,
                       const char *exceptionType)
        : TimeoutException(description, sourceFileName, sourceLine, exceptionType)
    {
    }
};

/// Marks the calls of the current thread, for the scope's lifetime, as ones
/// that must not wait. Scopes nest; `active` false makes a scope that changes
/// nothing (for code that decides at run time). Not to be moved between
/// threads.
class GENAPI_DECL NoWaitScope {
public:
    explicit NoWaitScope(bool active = true);
    ~NoWaitScope();
    NoWaitScope(const NoWaitScope &) = delete;
    NoWaitScope &operator=(const NoWaitScope &) = delete;

    /// True on a thread inside an active scope. Any thread.
    static bool IsActive();

private:
    bool m_active;
};

} // namespace GenApi_3_0

/// `throw WOULD_WAIT_EXCEPTION("camera %s answers over the network", name)`
#define WOULD_WAIT_EXCEPTION                                                                       \
    GenICam_3_0::ExceptionReporter<GenApi_3_0::WouldWaitException>(__FILE__, __LINE__,             \
                                                                   "WouldWaitException")           \
        .Report

#endif
