#ifndef QRMIDOM_DOCUMENT_H
#define QRMIDOM_DOCUMENT_H

#include <xercesc/dom/DOMDocument.hpp>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Api.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_DocumentTraversal.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_TypedNode.h"

class QRMIDOM_Attr;
class QRMIDOM_CDATASection;
class QRMIDOM_Comment;
class QRMIDOM_DOMImplementation;
class QRMIDOM_DocumentFragment;
class QRMIDOM_DocumentType;
class QRMIDOM_Element;
class QRMIDOM_EntityReference;
class QRMIDOM_NodeList;
class QRMIDOM_ProcessingInstruction;
class QRMIDOM_Text;

/// Handle on a document: the owner of a tree, the factory of its nodes and the entry to traversal. Everything obtained
/// through it keeps the document alive.
///
/// The factories make nodes without a parent, which belong to the document. They throw QRMIDOM_DOMException 5 for a
/// name that is empty or not an XML name, and 14 for a name and namespace that do not fit together. The content of
/// comments and CDATA sections is not checked.
class QRMIDOM_API QRMIDOM_Document : public QRMIDOM_TypedNode<QRMIDOM_Document, xercesc::DOMDocument>,
                                     public QRMIDOM_DocumentTraversal
{
public:
    using TypedNode::TypedNode;
    using TypedNode::operator=;

    /// The null handle.
    QRMIDOM_Document() = default;

    /// Adopts the document: the last handle that shares it releases it, so adopt a document once and copy the handle
    /// after that. Null gives the null handle.
    /// @throws QRMOutOfMemoryError 0
    QRMIDOM_Document(xercesc::DOMDocument* document);

    /// Makes this the null handle.
    /// @throws QRMAssertError "QRM_ASSERT(nodePrt == NULL);" unless the argument is null
    QRMIDOM_Document& operator=(const QRMIDOM_Node* nodePrt);

    /// The document type declaration; the null handle where there is none.
    QRMIDOM_DocumentType getDoctype() const;

    /// The implementation that makes documents like this one.
    QRMIDOM_DOMImplementation getDOMImplementation() const;

    /// The root element; the null handle where there is none.
    QRMIDOM_Element getDocumentElement() const;

    // Factories without namespaces: the nodes have neither namespace, prefix nor local name.

    /// An element without a namespace.
    QRMIDOM_Element createElement(const I18NString& tagName);
    /// An empty fragment.
    QRMIDOM_DocumentFragment createDocumentFragment();
    /// A text; it may be empty.
    QRMIDOM_Text createTextNode(const I18NString& data);
    /// A comment; it may be empty.
    QRMIDOM_Comment createComment(const I18NString& data);
    /// A CDATA section; it may be empty.
    QRMIDOM_CDATASection createCDATASection(const I18NString& data);
    /// A processing instruction; the data may be empty.
    QRMIDOM_ProcessingInstruction createProcessingInstruction(const I18NString& target,
                                                              const I18NString& data);
    /// An attribute without a namespace, with an empty value.
    QRMIDOM_Attr createAttribute(const I18NString& name);
    /// A reference, with the content of the entity where the document type has one of that name.
    QRMIDOM_EntityReference createEntityReference(const I18NString& name);

    // Factories with namespaces. An empty namespace URI stands for no namespace.

    /// An element in a namespace, or in none for an empty URI.
    QRMIDOM_Element createElementNS(const I18NString& namespaceURI, const I18NString& qualifiedName);
    /// An attribute in a namespace, or in none for an empty URI, with an empty value.
    QRMIDOM_Attr createAttributeNS(const I18NString& namespaceURI, const I18NString& qualifiedName);

    /// The elements of that qualified name in document order, "*" for all, as a live list.
    QRMIDOM_NodeList getElementsByTagName(const I18NString& tagName) const;
    /// "*" stands for any namespace or any local name.
    QRMIDOM_NodeList getElementsByTagNameNS(const I18NString& namespaceURI,
                                            const I18NString& localName) const;

    /// The element whose ID attribute, declared so by the DTD, has that value; the null handle where there is none.
    QRMIDOM_Element getElementById(const I18NString& elementId) const;

    /// A copy of a node of any document that belongs to this one, without a parent; with its subtree where deep is
    /// not 0.
    /// @throws QRMAssertError "QRM_ASSERT(importedNode != NULL);" for the null handle
    /// @throws QRMIDOM_DOMException 9 for a document or document type
    QRMIDOM_Node importNode(QRMIDOM_Node& importedNode, int deep);

    /// An iterator over the root's subtree, the root included.
    /// @param whatToShow the node types shown, as the mask of xercesc::DOMNodeFilter::ShowType
    /// @param filter decides on the nodes shown, null for all; the caller's, and to be kept while the iterator is used.
    ///        It is asked about the first nodes at once.
    /// @param entityReferenceExpansion not 0 to go into entity references
    /// @throws QRMIDOM_DOMException 9 when the root is the null handle
    QRMIDOM_NodeIterator createNodeIterator(QRMIDOM_Node root, unsigned long whatToShow,
                                            QRMIDOM_NodeFilter* filter,
                                            int entityReferenceExpansion) override;

    /// A walker through the root's subtree; the arguments are those of createNodeIterator. Each walker takes about 50
    /// bytes of the document until that goes.
    QRMIDOM_TreeWalker createTreeWalker(QRMIDOM_Node root, unsigned long whatToShow,
                                        QRMIDOM_NodeFilter* filter, int entityReferenceExpansion) override;

    /// Gives an element or attribute another name.
    /// @return the argument. Where a node made without namespaces is renamed into one, Xerces puts a new node into
    ///         its place, and the argument is left outside the tree.
    /// @throws QRMIDOM_DOMException 4 for a node of another document, 8 for the null handle, 9 for a node of another
    ///         type, 14 for a name and namespace that do not fit together
    QRMIDOM_Node renameNode(QRMIDOM_Node& n, const I18NString& namespaceURI, const I18NString& qualifiedName);

    /// Brings the document into its plain form: comments go, CDATA sections become text joined with its neighbours,
    /// entity references stay.
    void normalizeDocument();
};

#endif
