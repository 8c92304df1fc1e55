/// \file
/// CPointer: a checked interface pointer. Construction and assignment cast
/// with dynamic_cast, so a CIntegerPtr made from a non-integer node is empty.
/// Dereferencing an empty pointer throws LogicalErrorException
/// "NULL pointer dereferenced". The pointer does not own the node.
#ifndef GENAPI_POINTER_H
#define GENAPI_POINTER_H

#include <GenApi/Interfaces.h>

namespace GenApi_3_0 {

template <class T, class B = IBase> class CPointer {
public:
    CPointer() = default;
    CPointer(B *pB)
        : m_pT(dynamic_cast<T *>(pB))
    {
    }
    CPointer(const CPointer &) = default;
    CPointer &operator=(const CPointer &) = default;
    template <class T2, class B2>
    CPointer(const CPointer<T2, B2> &other)
        : m_pT(dynamic_cast<T *>(other.Get()))
    {
    }
    virtual ~CPointer() = default;

    void operator=(B *pB) { m_pT = dynamic_cast<T *>(pB); }

    operator T *() const { return Checked(); }
    T &operator*() const { return *Checked(); }
    T &operator()() const { return *Checked(); }
    T *operator->() const { return Checked(); }

    bool IsValid() const { return m_pT != nullptr; }
    operator bool() const { return m_pT != nullptr; }
    bool operator==(T *pT) const { return m_pT == pT; }
    bool operator==(const CPointer &other) const { return m_pT == other.m_pT; }
    bool operator!=(T *pT) const { return m_pT != pT; }
    bool operator!=(const CPointer &other) const { return m_pT != other.m_pT; }
    /// Our own addition: the raw pointer, nullptr when empty, never throwing.
    T *Get() const { return m_pT; }

protected:
    T *Checked() const
    {
        if (!m_pT)
            throw LOGICAL_ERROR_EXCEPTION("NULL pointer dereferenced");
        return m_pT;
    }
    T *m_pT = nullptr;
};

typedef CPointer<IBase> CBasePtr;
typedef CPointer<INode> CNodePtr;
typedef CPointer<IValue> CValuePtr;
typedef CPointer<ICategory> CCategoryPtr;
typedef CPointer<IInteger> CIntegerPtr;
typedef CPointer<IFloat> CFloatPtr;
typedef CPointer<IBoolean> CBooleanPtr;
typedef CPointer<ICommand> CCommandPtr;
typedef CPointer<IString> CStringPtr;
typedef CPointer<IEnumeration> CEnumerationPtr;
typedef CPointer<IEnumEntry> CEnumEntryPtr;
typedef CPointer<ISelector> CSelectorPtr;
typedef CPointer<IRegister> CRegisterPtr;
typedef CPointer<IPort> CPortPtr;
typedef CPointer<INodeMap, INodeMap> CNodeMapPtr;

inline bool IsReadable(EAccessMode AccessMode)
{
    return AccessMode == RO || AccessMode == RW;
}
inline bool IsWritable(EAccessMode AccessMode)
{
    return AccessMode == WO || AccessMode == RW;
}
inline bool IsImplemented(EAccessMode AccessMode)
{
    return AccessMode != NI;
}
inline bool IsAvailable(EAccessMode AccessMode)
{
    return AccessMode != NI && AccessMode != NA;
}

inline bool IsReadable(const IBase *p)
{
    return p && IsReadable(p->GetAccessMode());
}
inline bool IsWritable(const IBase *p)
{
    return p && IsWritable(p->GetAccessMode());
}
inline bool IsImplemented(const IBase *p)
{
    return p && IsImplemented(p->GetAccessMode());
}
inline bool IsAvailable(const IBase *p)
{
    return p && IsAvailable(p->GetAccessMode());
}

template <class T, class B> bool IsReadable(const CPointer<T, B> &p)
{
    return p.IsValid() && IsReadable(p->GetAccessMode());
}
template <class T, class B> bool IsWritable(const CPointer<T, B> &p)
{
    return p.IsValid() && IsWritable(p->GetAccessMode());
}
template <class T, class B> bool IsImplemented(const CPointer<T, B> &p)
{
    return p.IsValid() && IsImplemented(p->GetAccessMode());
}
template <class T, class B> bool IsAvailable(const CPointer<T, B> &p)
{
    return p.IsValid() && IsAvailable(p->GetAccessMode());
}

/// Combines two access modes the way a node combines its own with an imposed one.
inline EAccessMode Combine(EAccessMode a, EAccessMode b)
{
    if (a == NI || b == NI)
        return NI;
    if (a == NA || b == NA)
        return NA;
    if (a == RW)
        return b;
    if (b == RW || a == b)
        return a;
    return NA; // RO against WO: neither way is possible
}

} // namespace GenApi_3_0

#endif
