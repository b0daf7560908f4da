#ifndef QRMIDOM_DOCUMENTTRAVERSAL_H
#define QRMIDOM_DOCUMENTTRAVERSAL_H

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Node.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_NodeFilter.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_NodeIterator.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_TreeWalker.h"

/// The traversal factories of DOM Level 2, implemented by QRMIDOM_Document.
class QRMIDOM_DocumentTraversal
{
public:
    /// See QRMIDOM_Document::createNodeIterator().
    virtual QRMIDOM_NodeIterator createNodeIterator(QRMIDOM_Node root, unsigned long whatToShow,
                                                    QRMIDOM_NodeFilter* filter,
                                                    int expandEntityReferences) = 0;
    /// See QRMIDOM_Document::createTreeWalker().
    virtual QRMIDOM_TreeWalker createTreeWalker(QRMIDOM_Node root, unsigned long whatToShow,
                                                QRMIDOM_NodeFilter* filter, int expandEntityReferences) = 0;

protected:
    QRMIDOM_DocumentTraversal() = default;
    /// @overload
    QRMIDOM_DocumentTraversal(const QRMIDOM_DocumentTraversal&) = default;
    /// Does nothing: there is nothing to copy.
    QRMIDOM_DocumentTraversal& operator=(const QRMIDOM_DocumentTraversal&) = default;
    ~QRMIDOM_DocumentTraversal() = default;
};

#endif
