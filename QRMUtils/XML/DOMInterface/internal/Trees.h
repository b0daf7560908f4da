#ifndef QRMIDOM_INTERNAL_TREES_H
#define QRMIDOM_INTERNAL_TREES_H

#include <xercesc/dom/DOM.hpp>

namespace qrm {

// What Xerces does with whole trees by calling itself for each level, so that a deep tree overflows the stack, done
// here with links alone: trees may be as deep as memory allows. Results are those of Xerces, which still makes, changes
// and releases each single node. Handlers of user data are called for each node as it is made, parents before their
// children.

/// What DOMNode::cloneNode(deep) gives.
xercesc::DOMNode* clone(const xercesc::DOMNode* node, bool deep);

/// What DOMDocument::importNode(node, deep) gives.
xercesc::DOMNode* import(xercesc::DOMDocument* document, const xercesc::DOMNode* node, bool deep);

/// Does what DOMNode::normalize() does.
void normalizeTree(xercesc::DOMNode* node);

/// Does what DOMDocument::normalizeDocument() does where its configuration keeps neither comments nor CDATA sections
/// and leaves namespaces alone; in time that grows with the document, where Xerces moves a text that is cut by comments
/// once for each of them.
void normalizeWholeDocument(xercesc::DOMDocument* document);

/// Does what DOMNode::release() does.
/// @throws xercesc::DOMException 15 when the node has a parent; nothing is then released
void releaseTree(xercesc::DOMNode* node);

/// What DOMDocument::createEntityReference(name) gives.
xercesc::DOMNode* makeEntityReference(xercesc::DOMDocument* document, const XMLCh* name);

/// Makes a node read-only with everything below that is not in an entity reference of its own, as Xerces does when an
/// entity reference is complete.
void makeReadOnly(xercesc::DOMNode* node);

/// Does what is left to do for a document type when its document is complete: its entities get the content that their
/// first references have, and all of it becomes read-only.
void completeDoctype(xercesc::DOMDocumentType* doctype);

/// The node itself, null or not. An entity gets its content, which Xerces puts off until it is asked for.
xercesc::DOMNode* expanded(xercesc::DOMNode* node);

} // namespace qrm

#endif
