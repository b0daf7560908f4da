#ifndef QRMIDOM_INTERNAL_SHARING_H
#define QRMIDOM_INTERNAL_SHARING_H

#include "QRMUtils/XML/DOMInterface/RefCounted_DOMNode.h"
#include "QRMUtils/XML/DOMInterface/internal/Guards.h"

namespace qrm {

/// The one place where handles and collections get and give up their share of a document.
struct Sharing
{
    /// Gives up the share in the slot, if any, and empties the slot, also when the release of the node throws.
    static void giveUp(RefCounted_DOMNode*& slot)
    {
        RefCounted_DOMNode* const holder = slot;
        slot = nullptr;
        if (holder != nullptr && holder->removeReference() == 0) {
            delete holder;
        }
    }

    /// Puts a share of the holder, or nothing where it is null, into the slot, whose old share is not given up.
    static void take(RefCounted_DOMNode*& slot, RefCounted_DOMNode* holder)
    {
        slot = holder;
        if (holder != nullptr) {
            holder->addReference();
        }
    }

    /// Puts the first share of a new holder that owns the node into an empty slot.
    static void own(RefCounted_DOMNode*& slot, xercesc::DOMNode* node, QRMFileLocation site)
    {
        take(slot, allocated(site, [] { return new (std::nothrow) RefCounted_DOMNode; }));
        slot->setNode(node);
    }

    /// Puts a node that is yet to be made into a null handle, which then owns it. The holder is made first, so that
    /// running out of memory leaves no node without an owner.
    template <class Handle, class Make>
    static void adopt(Handle& handle, Make&& make, QRMFileLocation site)
    {
        own(handle.m_refCountedNodeImpl, nullptr, site);
        handle.m_nodeImpl = make();
        handle.m_refCountedNodeImpl->setNode(handle.m_nodeImpl);
    }

    /// Makes the handle share what the other one shares, in place of what it shared before.
    template <class Handle, class Other>
    static void shareInstead(Handle& handle, const Other& other)
    {
        giveUp(handle.m_refCountedNodeImpl);
        take(handle.m_refCountedNodeImpl, other.m_refCountedNodeImpl);
    }

    /// A handle or collection on something of Xerces, null or not, that shares the holder where there is one. Results
    /// are made so and not by the constructors from a pointer, which would adopt a document a second time.
    template <class Handle, class Wrapped>
    static Handle make(RefCounted_DOMNode* holder, Wrapped* wrapped)
    {
        Handle handle;
        handle.m_nodeImpl = wrapped;
        take(handle.m_refCountedNodeImpl, holder);
        return handle;
    }

    /// The assignment of the collections and traversal handles: give up, copy, take, in this order. Assigning one to
    /// itself drops its share; callers have come to rely on the order.
    template <class Collection>
    static void assign(Collection& target, const Collection& source)
    {
        giveUp(target.m_refCountedNodeImpl);
        target.m_nodeImpl = source.m_nodeImpl;
        take(target.m_refCountedNodeImpl, source.m_refCountedNodeImpl);
    }
};

template <class Handle, class Wrapped>
Handle sharing(RefCounted_DOMNode* holder, Wrapped* wrapped)
{
    return Sharing::make<Handle>(holder, wrapped);
}

} // namespace qrm

#endif
