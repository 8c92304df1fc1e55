/// \file
/// Node callbacks: GenApi::Register() attaches a function or a member function
/// to a node; it is called whenever the node or anything it depends on
/// changes (a write, an invalidation, a poll that found a new value). The
/// callback runs on the thread that caused the change, either inside the node
/// map's lock (cbPostInsideLock) or just after it was released
/// (cbPostOutsideLock). A callback may read and write the node map.
/// Deregister() guarantees that the callback is not called afterwards; it
/// waits for a call in progress on another thread.
#ifndef GENAPI_NODECALLBACK_H
#define GENAPI_NODECALLBACK_H

#include <GenApi/Interfaces.h>

#include <type_traits>

namespace GenApi_3_0 {

class GENAPI_DECL CNodeCallback {
public:
    CNodeCallback(INode *pNode, ECallbackType CallbackType)
        : m_pNode(pNode)
        , m_CallbackType(CallbackType)
    {
    }
    virtual ~CNodeCallback() = default;
    /// Calls the client when CallbackType is the type it was registered for.
    virtual void operator()(ECallbackType CallbackType) const = 0;
    /// Frees the callback object; the node calls it when deregistering.
    virtual void Destroy() = 0;
    INode *GetNode() { return m_pNode; }
    ECallbackType GetCallbackType() const { return m_CallbackType; }

protected:
    INode *m_pNode;
    ECallbackType m_CallbackType;
};

template <class Function> class Function_NodeCallback : public CNodeCallback {
public:
    Function_NodeCallback(INode *pNode, const Function &function, ECallbackType CallbackType)
        : CNodeCallback(pNode, CallbackType)
        , m_pFunction(function)
    {
    }
    void operator()(ECallbackType CallbackType) const override
    {
        if (CallbackType != m_CallbackType)
            return;
        if constexpr (std::is_pointer<Function>::value) {
            if (!m_pFunction)
                return;
        }
        m_pFunction(m_pNode);
    }
    void Destroy() override { delete this; }

private:
    const Function m_pFunction;
};

template <class Client, class Member> class Member_NodeCallback : public CNodeCallback {
public:
    Member_NodeCallback(INode *pNode, Client &client, Member member, ECallbackType CallbackType)
        : CNodeCallback(pNode, CallbackType)
        , m_Client(client)
        , m_pMemberFunc(member)
    {
    }
    void operator()(ECallbackType CallbackType) const override
    {
        if (m_pMemberFunc && CallbackType == m_CallbackType)
            (m_Client.*m_pMemberFunc)(m_pNode);
    }
    void Destroy() override { delete this; }

private:
    Client &m_Client;
    Member m_pMemberFunc;
};

template <class Function>
CNodeCallback *make_NodeCallback(INode *pNode, Function function, ECallbackType CallbackType)
{
    return new Function_NodeCallback<Function>(pNode, function, CallbackType);
}

template <class Client, class Member>
CNodeCallback *make_NodeCallback(INode *pNode, Client &client, Member member,
                                 ECallbackType CallbackType)
{
    return new Member_NodeCallback<Client, Member>(pNode, client, member, CallbackType);
}

/// Registers function(INode*) on pNode. Throws InvalidArgumentException when
/// pNode is null.
template <class Function>
CallbackHandleType Register(INode *pNode, Function f, ECallbackType CallbackType = cbPostInsideLock)
{
    if (!pNode)
        throw INVALID_ARGUMENT_EXCEPTION("Register: the node is NULL");
    return pNode->RegisterCallback(make_NodeCallback(pNode, f, CallbackType));
}

/// Registers (c.*m)(INode*) on pNode; c must outlive the registration.
template <class Client, class Member>
CallbackHandleType Register(INode *pNode, Client &c, Member m,
                            ECallbackType CallbackType = cbPostInsideLock)
{
    if (!pNode)
        throw INVALID_ARGUMENT_EXCEPTION("Register: the node is NULL");
    return pNode->RegisterCallback(make_NodeCallback(pNode, c, m, CallbackType));
}

/// Removes a callback registered with Register(). An unknown handle, one that
/// was already deregistered, or one whose node map is gone is ignored.
GENAPI_DECL void Deregister(CallbackHandleType hCallback);

} // namespace GenApi_3_0

#endif
