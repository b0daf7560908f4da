#ifndef REFCOUNTED_DOMNODE_H
#define REFCOUNTED_DOMNODE_H

#include <xercesc/dom/DOMNode.hpp>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Api.h"

/// Owns one Xerces node, a document or an unattached clone, for as many handles as share it.
///
/// Counts are plain integers: handles that share a holder belong to one thread at a time. A new holder counts 0;
/// whoever makes it adds the first reference at once.
class QRMIDOM_API RefCounted_DOMNode
{
public:
    RefCounted_DOMNode() = default;
    RefCounted_DOMNode(const RefCounted_DOMNode&) = delete;
    RefCounted_DOMNode& operator=(const RefCounted_DOMNode&) = delete;

    /// Takes one more reference.
    void addReference() { ++m_count; }

    /// Gives up one reference and releases the node when it was the last one. The holder itself stays: the handle
    /// that sees 0 deletes it.
    /// @return the references left
    /// @throws xercesc::DOMException 15 when the node still has a parent; the holder then counts 0 and keeps the node
    int removeReference()
    {
        if (--m_count == 0) {
            cleanup();
        }
        return static_cast<int>(m_count);
    }

    /// Releases the node and forgets it; does nothing where there is none.
    /// @throws xercesc::DOMException 15 when the node still has a parent; it is then kept
    void cleanup();

    /// The references taken and not given up.
    unsigned int getCount() const { return m_count; }

    /// The owned node, null after its release.
    xercesc::DOMNode* getNode() const { return m_node; }

    /// Takes over the node; null gives it up without releasing it.
    void setNode(xercesc::DOMNode* node) { m_node = node; }

private:
    unsigned int m_count = 0;
    xercesc::DOMNode* m_node = nullptr;
};

#endif
