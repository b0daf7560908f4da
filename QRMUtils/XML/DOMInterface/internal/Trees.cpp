#include "QRMUtils/XML/DOMInterface/internal/Trees.h"

#include <utility>

#include <xercesc/dom/impl/DOMDocumentTypeImpl.hpp>
#include <xercesc/dom/impl/DOMEntityImpl.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>

#include "QRMUtils/XML/DOMInterface/internal/Links.h"

using xercesc::DOMNode;

namespace qrm {

namespace {

bool isReadOnly(const DOMNode* node)
{
    switch (node->getNodeType()) {
    case DOMNode::ELEMENT_NODE: return static_cast<const xercesc::DOMElementImpl*>(node)->fNode.isReadOnly();
    case DOMNode::DOCUMENT_FRAGMENT_NODE: return false;
    default: return xercesc::castToNodeImpl(node)->isReadOnly();
    }
}

/// Of the node without its children.
void makeReadOnlyAlone(DOMNode* node)
{
    switch (node->getNodeType()) {
    case DOMNode::ELEMENT_NODE: {
        auto* const element = static_cast<xercesc::DOMElementImpl*>(node);
        element->fNode.setReadOnly(true, false);
        element->fAttributes->setReadOnly(true, true);
        return;
    }
    case DOMNode::TEXT_NODE: static_cast<xercesc::DOMTextImpl*>(node)->fNode.setReadOnly(true, false); return;
    default: xercesc::castToNodeImpl(node)->setReadOnly(true, false);
    }
}

/// Whether the children of such a node belong to its copy.
bool hasCopiedChildren(const DOMNode* node)
{
    switch (node->getNodeType()) {
    case DOMNode::ELEMENT_NODE:
    case DOMNode::DOCUMENT_FRAGMENT_NODE:
    case DOMNode::ENTITY_REFERENCE_NODE:
    case DOMNode::ENTITY_NODE: return true;
    default: return false; // an attribute is copied with its value
    }
}

/// Puts a new node behind the last child of one that is new as well.
void appendNew(DOMNode* parent, DOMNode* child)
{
    if (isReadOnly(parent)) {
        makeReadOnlyAlone(child);
    }
    if (parent->getNodeType() == DOMNode::ELEMENT_NODE) {
        xercesc::DOMParentNode& children = static_cast<xercesc::DOMElementImpl*>(parent)->fParent;
        switch (child->getNodeType()) {
        case DOMNode::ELEMENT_NODE:
            appendLast(children, *static_cast<xercesc::DOMElementImpl*>(child));
            return;
        case DOMNode::TEXT_NODE: appendLast(children, *static_cast<xercesc::DOMTextImpl*>(child)); return;
        default: break;
        }
    }
    xercesc::castToParentImpl(parent)->appendChildFast(child);
}

/// Copies what is below one node to below another one.
/// @param copyAlone makes the copy of a node without its children
/// @param hasChildren tells whether the children of a node are copied too
template <class CopyAlone, class HasChildren>
void copyChildren(const DOMNode* from, DOMNode* to, CopyAlone&& copyAlone, HasChildren&& hasChildren)
{
    DOMNode* parent = to; // of the copies to come
    const DOMNode* node = from->getFirstChild();
    while (node != nullptr) {
        DOMNode* const copy = copyAlone(node);
        appendNew(parent, copy);
        if (const DOMNode* const first = hasChildren(node) ? node->getFirstChild() : nullptr) {
            parent = copy;
            node = first;
            continue;
        }
        const DOMNode* next = nextSiblingOf(node, node->getNodeType());
        while (next == nullptr && parent != to) {
            node = parentOf(node);
            parent = parentOf(parent);
            next = nextSiblingOf(node, node->getNodeType());
        }
        node = next;
    }
}

DOMNode* copyAlone(const DOMNode* node)
{
    return node->cloneNode(false);
}

/// The clone of an entity, which has the content of its first reference even where it is not deep. Xerces makes that by
/// calling itself for each level, so here the entity seems to be without a reference to it.
DOMNode* cloneEntity(const DOMNode* node, bool deep)
{
    auto* const entity = static_cast<xercesc::DOMEntityImpl*>(const_cast<DOMNode*>(node));
    xercesc::DOMEntityReference* const reference = entity->getEntityRef();
    entity->setEntityRef(nullptr);
    DOMNode* result = nullptr;
    try {
        result = copyAlone(entity);
    } catch (...) {
        entity->setEntityRef(reference);
        throw;
    }
    entity->setEntityRef(reference);
    static_cast<xercesc::DOMEntityImpl*>(result)->setEntityRef(reference);
    if (reference != nullptr) {
        copyChildren(reference, result, copyAlone, hasCopiedChildren);
    } else if (deep) {
        copyChildren(node, result, copyAlone, hasCopiedChildren);
    }
    return result;
}

/// Makes copies of the nodes of other documents.
class Importer
{
public:
    /// @param clonesDocument whether the copy of a whole document is made: its doctype and its defaulted attributes
    ///        count then too
    Importer(xercesc::DOMDocument* document, bool clonesDocument)
        : m_document(static_cast<xercesc::DOMDocumentImpl*>(document)), m_clonesDocument(clonesDocument)
    {
    }

    /// What stands below a document, its doctype too.
    DOMNode* documentChild(const DOMNode* node) const
    {
        return node->getNodeType() == DOMNode::DOCUMENT_TYPE_NODE
                   ? doctype(static_cast<const xercesc::DOMDocumentType*>(node))
                   : tree(node);
    }

    DOMNode* tree(const DOMNode* node) const
    {
        DOMNode* const result = alone(node);
        if (hasChildren(node)) {
            copyChildren(
                node, result, [this](const DOMNode* source) { return alone(source); }, hasChildren);
        }
        return result;
    }

    /// A node without its children, an element with its attributes.
    DOMNode* alone(const DOMNode* node) const
    {
        if (node->getNodeType() == DOMNode::ENTITY_REFERENCE_NODE) {
            return told(node, makeEntityReference(m_document, node->getNodeName()));
        }
        return (m_document->*OpenedDocument::import())(node, false, m_clonesDocument);
    }

private:
    using Document = xercesc::DOMDocumentImpl;
    using Doctype = xercesc::DOMDocumentTypeImpl;

    // What Xerces keeps to classes of its own.
    struct OpenedDocument : Document
    {
        using Import = DOMNode* (Document::*)(const DOMNode*, bool, bool);
        static Import import() { return static_cast<Import>(&OpenedDocument::importNode); }
    };
    struct OpenedDoctype : Doctype
    {
        using SetText = void (Doctype::*)(const XMLCh*);
        static SetText setSubset() { return &OpenedDoctype::setInternalSubset; }
    };

    /// Documents may have defined an entity differently: a reference has what stands in the new one.
    static bool hasChildren(const DOMNode* node)
    {
        return hasCopiedChildren(node) && node->getNodeType() != DOMNode::ENTITY_REFERENCE_NODE;
    }

    DOMNode* doctype(const xercesc::DOMDocumentType* source) const
    {
        auto* const copy = static_cast<Doctype*>(m_document->createDocumentType(
            source->getNodeName(), source->getPublicId(), source->getSystemId()));
        copyMap(source->getEntities(), copy->getEntities());
        copyMap(source->getNotations(), copy->getNotations());
        copyMap(static_cast<const Doctype*>(source)->getElements(), copy->getElements());
        if (source->getInternalSubset() != nullptr) {
            (copy->*OpenedDoctype::setSubset())(source->getInternalSubset());
        }
        return told(source, copy);
    }

    void copyMap(const xercesc::DOMNamedNodeMap* from, xercesc::DOMNamedNodeMap* to) const
    {
        for (XMLSize_t i = 0; i < from->getLength(); ++i) {
            to->setNamedItem(tree(expanded(from->item(i))));
        }
    }

    /// The copy, after handlers of user data were told of it.
    DOMNode* told(const DOMNode* source, DOMNode* copy) const
    {
        if (m_clonesDocument) {
            xercesc::castToNodeImpl(source)->callUserDataHandlers(xercesc::DOMUserDataHandler::NODE_CLONED,
                                                                  source, copy);
        } else {
            m_document->fNode.callUserDataHandlers(xercesc::DOMUserDataHandler::NODE_IMPORTED, source, copy);
        }
        return copy;
    }

    Document* m_document;
    bool m_clonesDocument;
};

DOMNode* cloneDocument(const DOMNode* node)
{
    auto* const document = static_cast<xercesc::DOMDocument*>(node->cloneNode(false));
    const Importer importer(document, true);
    try {
        for (const DOMNode* child = node->getFirstChild(); child != nullptr;
             child = child->getNextSibling()) {
            document->appendChild(importer.documentChild(child));
        }
    } catch (...) {
        document->release();
        throw;
    }
    return document;
}

bool isText(const DOMNode* node)
{
    return node != nullptr && node->getNodeType() == DOMNode::TEXT_NODE;
}

/// Puts the text of the next node at the end and takes that node out of the tree.
void takeInNext(DOMNode* parent, DOMNode* text, DOMNode* next)
{
    static_cast<xercesc::DOMText*>(text)->appendData(static_cast<xercesc::DOMText*>(next)->getData());
    parent->removeChild(next);
}

/// Puts the text before the one behind it and takes its node out of the tree.
void mergeIntoNext(DOMNode* parent, xercesc::DOMText* text, xercesc::DOMText* next)
{
    // The longer one is mostly the first. It is the second that stays, so they change their buffers.
    text->appendData(next->getData());
    std::swap(static_cast<xercesc::DOMTextImpl*>(text)->fCharacterData.fDataBuf,
              static_cast<xercesc::DOMTextImpl*>(next)->fCharacterData.fDataBuf);
    parent->removeChild(text);
}

/// Brings one node, without what is below, into normal form.
/// @return the node to look at next, null for the one that was behind it
DOMNode* normalizeAlone(xercesc::DOMDocument* document, DOMNode* parent, DOMNode* node, DOMNode* next)
{
    switch (node->getNodeType()) {
    case DOMNode::ELEMENT_NODE: {
        const xercesc::DOMNamedNodeMap* const attributes = node->getAttributes();
        for (XMLSize_t i = 0; i < attributes->getLength(); ++i) {
            attributes->item(i)->normalize();
        }
        return nullptr;
    }
    case DOMNode::COMMENT_NODE: {
        DOMNode* const previous = node->getPreviousSibling();
        parent->removeChild(node);
        if (isText(previous) && isText(next)) {
            mergeIntoNext(parent, static_cast<xercesc::DOMText*>(previous),
                          static_cast<xercesc::DOMText*>(next));
            return next;
        }
        return nullptr;
    }
    case DOMNode::CDATA_SECTION_NODE: {
        DOMNode* const previous = node->getPreviousSibling();
        xercesc::DOMText* const text = document->createTextNode(node->getNodeValue());
        parent->replaceChild(text, node);
        if (isText(previous)) {
            mergeIntoNext(parent, static_cast<xercesc::DOMText*>(previous), text);
        }
        return text;
    }
    case DOMNode::TEXT_NODE:
        if (isText(next)) {
            takeInNext(parent, node, next);
            return node;
        }
        if (*dataOf(static_cast<xercesc::DOMText*>(node)) == 0) {
            parent->removeChild(node);
        }
        return nullptr;
    default: return nullptr;
    }
}

/// Visits the children of the root and of all elements below, parents before children.
/// @param visit gets the parent, the child and its next sibling, changes what is before the child or next to it, and
///        gives the child to visit next; null for the sibling that it got
template <class Visit>
void forEachChild(DOMNode* root, Visit&& visit)
{
    DOMNode* parent = root;
    DOMNode* node = root->getFirstChild();
    while (true) {
        while (node == nullptr) {
            if (parent == root) {
                return;
            }
            node = nextSiblingOf(parent, DOMNode::ELEMENT_NODE);
            parent = parentOf(parent);
        }
        DOMNode* const next = nextSiblingOf(node, node->getNodeType());
        const bool isElement = node->getNodeType() == DOMNode::ELEMENT_NODE;
        DOMNode* const again = visit(parent, node, next);
        if (isElement) {
            parent = node;
            node = node->getFirstChild();
        } else {
            node = again != nullptr ? again : next;
        }
    }
}

/// Releases a node. Xerces may lack the memory for noting that its place is free; the place is the document's all the
/// same, and only does not serve again.
void releaseAlone(DOMNode* node)
{
    try {
        node->release();
    } catch (const xercesc::OutOfMemoryException&) { // NOLINT(bugprone-empty-catch): nothing is lost
    }
}

/// The first child in the fields of the node; null where it has no such field.
DOMNode** firstChildField(DOMNode* node)
{
    switch (node->getNodeType()) {
    case DOMNode::ELEMENT_NODE: return &static_cast<xercesc::DOMElementImpl*>(node)->fParent.fFirstChild;
    case DOMNode::DOCUMENT_FRAGMENT_NODE:
    case DOMNode::ENTITY_REFERENCE_NODE: return &xercesc::castToParentImpl(node)->fFirstChild;
    default: return nullptr;
    }
}

} // namespace

DOMNode* clone(const DOMNode* node, bool deep)
{
    switch (node->getNodeType()) {
    case DOMNode::DOCUMENT_NODE: return deep ? cloneDocument(node) : copyAlone(node);
    case DOMNode::DOCUMENT_TYPE_NODE: return node->cloneNode(deep);
    case DOMNode::ENTITY_NODE: return cloneEntity(node, deep);
    default: {
        DOMNode* const result = copyAlone(node);
        if (deep && hasCopiedChildren(node)) {
            copyChildren(node, result, copyAlone, hasCopiedChildren);
        }
        return result;
    }
    }
}

DOMNode* import(xercesc::DOMDocument* document, const DOMNode* node, bool deep)
{
    const Importer importer(document, false);
    return deep ? importer.tree(node) : importer.alone(node);
}

DOMNode* makeEntityReference(xercesc::DOMDocument* document, const XMLCh* name)
{
    DOMNode* const reference =
        static_cast<xercesc::DOMDocumentImpl*>(document)->createEntityReferenceByParser(name);
    const xercesc::DOMDocumentType* const doctype = document->getDoctype();
    const auto* const entity = static_cast<const xercesc::DOMEntityImpl*>(
        doctype != nullptr ? doctype->getEntities()->getNamedItem(name) : nullptr);
    if (entity != nullptr && entity->getEntityRef() != nullptr) {
        copyChildren(entity->getEntityRef(), reference, copyAlone, hasCopiedChildren);
    }
    return reference;
}

void normalizeTree(DOMNode* node)
{
    forEachChild(node, [](DOMNode* parent, DOMNode* child, DOMNode* next) -> DOMNode* {
        if (!isText(child) || !isText(next)) {
            return nullptr;
        }
        takeInNext(parent, child, next);
        return child;
    });
}

void normalizeWholeDocument(xercesc::DOMDocument* document)
{
    forEachChild(document, [document](DOMNode* parent, DOMNode* child, DOMNode* next) {
        return normalizeAlone(document, parent, child, next);
    });
}

void releaseTree(DOMNode* node)
{
    DOMNode** const firstChild = firstChildField(node);
    if (firstChild == nullptr || parentOf(node) != nullptr) {
        releaseAlone(node);
        return;
    }
    // The siblings of what is to be released are chained: a node puts its children in front and goes.
    DOMNode* waiting = nullptr;
    while (true) {
        if (DOMNode** const children = firstChildField(node); children != nullptr && *children != nullptr) {
            DOMNode* const first = *children;
            DOMNode* const last = siblingsOf(first, first->getNodeType()).previousSibling;
            siblingsOf(last, last->getNodeType()).nextSibling = waiting;
            waiting = first;
            *children = nullptr;
        }
        releaseAlone(node);
        if (waiting == nullptr) {
            return;
        }
        node = waiting;
        waiting = nextSiblingOf(node, node->getNodeType());
        xercesc::castToNodeImpl(node)->isToBeReleased(true);
    }
}

void makeReadOnly(DOMNode* node)
{
    makeReadOnlyAlone(node);
    forEachChild(node, [](DOMNode* /*parent*/, DOMNode* child, DOMNode* /*next*/) -> DOMNode* {
        if (child->getNodeType() != DOMNode::ENTITY_REFERENCE_NODE) {
            makeReadOnlyAlone(child);
        }
        return nullptr;
    });
}

void completeDoctype(xercesc::DOMDocumentType* doctype)
{
    xercesc::castToNodeImpl(doctype)->setReadOnly(true, true);
    const xercesc::DOMNamedNodeMap* const notations = doctype->getNotations();
    for (XMLSize_t i = 0; i < notations->getLength(); ++i) {
        makeReadOnlyAlone(notations->item(i));
    }
    const xercesc::DOMNamedNodeMap* const entities = doctype->getEntities();
    for (XMLSize_t i = 0; i < entities->getLength(); ++i) {
        makeReadOnly(expanded(entities->item(i)));
    }
}

DOMNode* expanded(DOMNode* node)
{
    if (node != nullptr && node->getNodeType() == DOMNode::ENTITY_NODE
        && xercesc::castToParentImpl(node)->fFirstChild == nullptr) {
        const DOMNode* const reference = static_cast<const xercesc::DOMEntityImpl*>(node)->getEntityRef();
        if (reference != nullptr) {
            copyChildren(reference, node, copyAlone, hasCopiedChildren);
        }
    }
    return node;
}

} // namespace qrm
