#ifndef QRMIDOM_INTERNAL_ITERATORS_H
#define QRMIDOM_INTERNAL_ITERATORS_H

#include <xercesc/dom/DOM.hpp>

namespace qrm {

/// An iterator of the document that stands before its first node.
///
/// Xerces crashes when a node is removed while an iterator has not yet stood on any node: before its first step, and
/// for good where nothing is accepted. The iterators made here have stood on one.
xercesc::DOMNodeIterator* makeIterator(xercesc::DOMDocument* document, xercesc::DOMNode* root,
                                       unsigned long whatToShow, xercesc::DOMNodeFilter* filter,
                                       bool expandEntityReferences);

/// The mask that the iterator was made with.
unsigned long shownTypes(xercesc::DOMNodeIterator* iterator);

} // namespace qrm

#endif
