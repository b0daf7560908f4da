#include "QRMUtils/XML/DOMInterface/internal/Iterators.h"

#include <new>

#include <xercesc/dom/impl/DOMDocumentImpl.hpp>

using namespace xercesc;

namespace qrm {

namespace {

/// Does what mask and filter do together, once it has let an iterator that shows all types stand on its root. It lies
/// in the document's memory like the iterator and goes with it, without a destructor being called.
class StandingFilter final : public DOMNodeFilter
{
public:
    StandingFilter(unsigned long whatToShow, const DOMNodeFilter* filter)
        : m_whatToShow(whatToShow), m_filter(filter)
    {
    }

    FilterAction acceptNode(const DOMNode* node) const override
    {
        if (m_letting) {
            return FILTER_ACCEPT;
        }
        if ((m_whatToShow & (1UL << (node->getNodeType() - 1))) == 0) {
            return FILTER_SKIP;
        }
        return m_filter != nullptr ? m_filter->acceptNode(node) : FILTER_ACCEPT;
    }

    void startFiltering() { m_letting = false; }
    unsigned long whatToShow() const { return m_whatToShow; }

private:
    unsigned long m_whatToShow;
    const DOMNodeFilter* m_filter;
    bool m_letting = true;
};

/// Whether there was a node to stand on.
bool standBeforeFirst(DOMNodeIterator* iterator)
{
    if (iterator->nextNode() == nullptr) {
        return false;
    }
    iterator->previousNode();
    return true;
}

} // namespace

DOMNodeIterator* makeIterator(DOMDocument* document, DOMNode* root, unsigned long whatToShow,
                              DOMNodeFilter* filter, bool expandEntityReferences)
{
    auto* iterator = document->createNodeIterator(root, whatToShow, filter, expandEntityReferences);
    if (!standBeforeFirst(iterator)) {
        iterator->release();
        auto* const memory = static_cast<DOMDocumentImpl*>(document)->allocate(sizeof(StandingFilter));
        auto* const standing = new (memory) StandingFilter(whatToShow, filter);
        iterator =
            document->createNodeIterator(root, DOMNodeFilter::SHOW_ALL, standing, expandEntityReferences);
        standBeforeFirst(iterator);
        standing->startFiltering();
    }
    return iterator;
}

unsigned long shownTypes(DOMNodeIterator* iterator)
{
    const auto* const standing = dynamic_cast<const StandingFilter*>(iterator->getFilter());
    return standing != nullptr ? standing->whatToShow() : iterator->getWhatToShow();
}

} // namespace qrm
