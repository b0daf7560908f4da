#ifndef QRMIDOM_ELEMENT_H
#define QRMIDOM_ELEMENT_H

#include <xercesc/dom/DOMElement.hpp>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Api.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_TypedNode.h"

class QRMIDOM_Attr;
class QRMIDOM_NodeList;

/// Handle on an element. An attribute that is absent reads as an empty string; ask hasAttribute() where that matters.
///
/// Operations that change attributes throw QRMIDOM_DOMException 5 for an invalid name, 7 on a read-only element, and
/// 14 for a name and namespace that do not fit together.
class QRMIDOM_API QRMIDOM_Element : public QRMIDOM_TypedNode<QRMIDOM_Element, xercesc::DOMElement>
{
public:
    using TypedNode::TypedNode;
    using TypedNode::operator=;
    /// Makes this the null handle.
    /// @throws QRMAssertError "QRM_ASSERT(nodePrt == NULL);" unless the argument is null
    QRMIDOM_Element& operator=(const QRMIDOM_Node* nodePrt);

    /// The qualified name.
    I18NString getTagName() const;
    /// @overload
    void getTagName(I18NString& tagName) const;

    /// Whether the qualified name is this one, by code unit and without a copy.
    bool matchTagName(const I18NString& name) const;

    /// The value of an attribute; empty where it is absent.
    I18NString getAttribute(const I18NString& name) const;
    /// @overload
    void getAttribute(const I18NString& name, I18NString& value) const;

    /// Whether the attribute reads as this value, without a copy. True for the empty value where it is absent.
    bool matchAttribute(const I18NString& name, const I18NString& value) const;

    /// Adds the attribute or changes its value.
    void setAttribute(const I18NString& name, const I18NString& value);

    /// Removes the attribute, if there; a default of the DTD takes its place.
    void removeAttribute(const I18NString& name);

    /// Whether there is an attribute of that qualified name, a defaulted one included.
    bool hasAttribute(const I18NString& name) const;

    /// The attribute as a node; the null handle where it is absent.
    QRMIDOM_Attr getAttributeNode(const I18NString& name) const;

    /// Adds an attribute made by this element's document.
    /// @return the attribute of that name that was replaced; the null handle where there was none
    /// @throws QRMIDOM_DOMException 4 for an attribute of another document, 8 for the null handle, 10 for one that
    ///         belongs to another element
    QRMIDOM_Attr setAttributeNode(QRMIDOM_Attr newAttr);

    /// Removes the attribute node.
    /// @return that attribute
    /// @throws QRMIDOM_DOMException 8 when it is not this element's, or the null handle
    QRMIDOM_Attr removeAttributeNode(QRMIDOM_Attr oldAttr);

    /// The element descendants of that qualified name in document order, "*" for all, as a live list.
    QRMIDOM_NodeList getElementsByTagName(const I18NString& name) const;

    // The same by namespace. An empty namespace URI stands for no namespace.

    /// The value of the attribute; empty where it is absent.
    I18NString getAttributeNS(const I18NString& namespaceURI, const I18NString& localName) const;
    /// @overload
    void getAttributeNS(const I18NString& namespaceURI, const I18NString& localName, I18NString& value) const;
    /// Whether the attribute has just that value; an absent one has the empty value.
    bool matchAttributeNS(const I18NString& namespaceURI, const I18NString& localName,
                          const I18NString& value) const;
    /// Sets or makes the attribute of that namespace and local name, with the prefix of the qualified name.
    void setAttributeNS(const I18NString& namespaceURI, const I18NString& qualifiedName,
                        const I18NString& value);
    /// Takes the attribute out; one with a declared default comes back with it. An absent one is no error.
    void removeAttributeNS(const I18NString& namespaceURI, const I18NString& localName);
    /// Whether there is such an attribute, a defaulted one included.
    bool hasAttributeNS(const I18NString& namespaceURI, const I18NString& localName) const;
    /// The attribute, or the null handle.
    QRMIDOM_Attr getAttributeNodeNS(const I18NString& namespaceURI, const I18NString& localName) const;
    /// Puts the attribute in, and gives the one that it replaces, or the null handle.
    QRMIDOM_Attr setAttributeNodeNS(QRMIDOM_Attr newAttr);
    /// "*" stands for any namespace or any local name.
    QRMIDOM_NodeList getElementsByTagNameNS(const I18NString& namespaceURI,
                                            const I18NString& localName) const;
};

#endif
