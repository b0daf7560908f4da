#ifndef QRMIDOM_NODEFILTER_H
#define QRMIDOM_NODEFILTER_H

#include <xercesc/dom/DOMNodeFilter.hpp>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Api.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Node.h"

/// What callers derive from to choose the nodes of an iterator or walker. Keep the filter while one made with it is
/// used: Xerces holds a bare pointer to the filter's adapter.
class QRMIDOM_API QRMIDOM_NodeFilter
{
public:
    /// What Xerces calls for a filter: hands each node that Xerces asks about to the filter it belongs to.
    class QRMIDOM_API NodeFilterAdapter : public xercesc::DOMNodeFilter
    {
    public:
        /// Belongs to no filter yet.
        NodeFilterAdapter() = default;
        ~NodeFilterAdapter() override;

        /// What the filter decides.
        /// @throws QRMAssertError "QRM_ASSERT(m_filter);" where it belongs to no filter
        FilterAction acceptNode(const xercesc::DOMNode* node) const override;

        /// The filter it belongs to, null where there is none.
        QRMIDOM_NodeFilter* getNodeFilter() const { return m_filter; }

    private:
        friend class QRMIDOM_NodeFilter;

        QRMIDOM_NodeFilter* m_filter = nullptr;
    };

    /// @throws QRMOutOfMemoryError 0 when there is no memory for the adapter
    QRMIDOM_NodeFilter();
    QRMIDOM_NodeFilter(const QRMIDOM_NodeFilter&) = delete;
    QRMIDOM_NodeFilter& operator=(const QRMIDOM_NodeFilter&) = delete;
    virtual ~QRMIDOM_NodeFilter();

    /// Decides on a node: 1 accepts it, 2 rejects it (for a walker with its subtree), 3 skips it. Any other value goes
    /// to Xerces as it is. The handle shares no document; keep another one to keep the node.
    virtual short acceptNode(QRMIDOM_Node node) = 0;

    /// The adapter that Xerces calls, owned by this filter.
    xercesc::DOMNodeFilter* getNodeFilter() const;

private:
    NodeFilterAdapter* m_adapter;
};

#endif
