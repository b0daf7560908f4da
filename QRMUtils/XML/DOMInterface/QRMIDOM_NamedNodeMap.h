#ifndef QRMIDOM_NAMEDNODEMAP_H
#define QRMIDOM_NAMEDNODEMAP_H

#include <xercesc/dom/DOMNamedNodeMap.hpp>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Api.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Node.h"

/// Value handle on a map of nodes by name: the attributes of an element, sorted by qualified name, or the entities or
/// notations of a document type. The map is live and keeps the document alive as a node handle does.
///
/// Every operation that needs the map throws QRMAssertError "QRM_ASSERT(m_nodeImpl != NULL);" where there is none, as on
/// the attributes of a text node. Looking up gives the null handle for an absent name.
class QRMIDOM_API QRMIDOM_NamedNodeMap
{
public:
    /// Holds nothing.
    QRMIDOM_NamedNodeMap() = default;

    /// Holds the Xerces object, without a share in its document.
    QRMIDOM_NamedNodeMap(xercesc::DOMNamedNodeMap* wrapped) : m_nodeImpl(wrapped) {}

    /// @overload
    QRMIDOM_NamedNodeMap(const QRMIDOM_NamedNodeMap& other);
    virtual ~QRMIDOM_NamedNodeMap();

    /// Gives up the share, then takes the other's object and a share of its holder. Assigned to itself it therefore
    /// ends without a share.
    QRMIDOM_NamedNodeMap& operator=(const QRMIDOM_NamedNodeMap& other);

    /// The wrapped Xerces object, null where there is none.
    operator xercesc::DOMNamedNodeMap*() const { return m_nodeImpl; }

    /// Whether nothing is held; for comparison with NULL only.
    /// @throws QRMAssertError "QRM_ASSERT(nullPtr == NULL);" unless the argument is null
    bool operator==(QRMIDOM_NamedNodeMap* nullPtr) const;
    /// Whether the handle holds a map; the argument has to be null.
    bool operator!=(QRMIDOM_NamedNodeMap* nullPtr) const;

    /// The holder this shares, null where it shares none.
    RefCounted_DOMNode* getRefCountedNodeImpl() const { return m_refCountedNodeImpl; }

    /// Takes a share of the holder. A share that was held before is not given up.
    /// @throws QRMAssertError "QRM_ASSERT(refCountedNodeImpl);" on null
    void setRefCountedNodeImpl(RefCounted_DOMNode* refCountedNodeImpl);

    /// The node of that qualified name, or the null handle.
    QRMIDOM_Node getNamedItem(const I18NString& name) const;

    /// Adds the node under its name.
    /// @return the node of that name that was replaced; the null handle where there was none
    /// @throws QRMIDOM_DOMException 3 for a node of another type, 4 of another document, 7 when the map is read-only,
    ///         8 for the null handle, 10 for an attribute that belongs to another element
    QRMIDOM_Node setNamedItem(QRMIDOM_Node node);

    /// Removes the node of that name.
    /// @return that node
    /// @throws QRMIDOM_DOMException 8 when there is none, 7 when the map is read-only
    QRMIDOM_Node removeNamedItem(const I18NString& name);

    /// The node at an index from 0; the null handle from the length on.
    QRMIDOM_Node item(unsigned long index) const;
    /// The number of nodes.
    unsigned long getLength() const;

    // The same by namespace. An empty namespace URI stands for no namespace.

    /// The node of that namespace, empty for none, and local name, or the null handle.
    QRMIDOM_Node getNamedItemNS(I18NString& namespaceURI, I18NString& localName) const;
    /// Puts a node in by its namespace and local name, and gives the one that it replaces, or the null handle.
    QRMIDOM_Node setNamedItemNS(QRMIDOM_Node node);
    /// Takes a node out and gives it.
    QRMIDOM_Node removeNamedItemNS(const I18NString& namespaceURI, const I18NString& localName);

private:
    friend struct qrm::Sharing;

    xercesc::DOMNamedNodeMap* m_nodeImpl = nullptr;
    RefCounted_DOMNode* m_refCountedNodeImpl = nullptr;
};

#endif
