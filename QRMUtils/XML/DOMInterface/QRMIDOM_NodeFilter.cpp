#include "QRMUtils/XML/DOMInterface/QRMIDOM_NodeFilter.h"

#include "QRMUtils/XML/DOMInterface/internal/Guards.h"

namespace {

/// A handle for one call of a filter. Made from a document node it has a holder of its own, which would release the
/// document under the walk; the holder lets go of it first, also when the filter throws.
class PassingHandle
{
public:
    explicit PassingHandle(xercesc::DOMNode* node) : m_handle(node) {}
    PassingHandle(const PassingHandle&) = delete;
    PassingHandle& operator=(const PassingHandle&) = delete;
    ~PassingHandle()
    {
        if (RefCounted_DOMNode* const holder = m_handle.getRefCountedNodeImpl()) {
            holder->setNode(nullptr);
        }
    }

    const QRMIDOM_Node& get() const { return m_handle; }

private:
    QRMIDOM_Node m_handle;
};

} // namespace

QRMIDOM_NodeFilter::NodeFilterAdapter::~NodeFilterAdapter() = default;

xercesc::DOMNodeFilter::FilterAction QRMIDOM_NodeFilter::NodeFilterAdapter::acceptNode(
    const xercesc::DOMNode* node) const
{
    QRM_ASSERT_AT(28, m_filter);
    const PassingHandle handle(const_cast<xercesc::DOMNode*>(node));
    return static_cast<FilterAction>(m_filter->acceptNode(handle.get()));
}

QRMIDOM_NodeFilter::QRMIDOM_NodeFilter()
    : m_adapter(qrm::allocated(QRM_SITE(42), [] { return new (std::nothrow) NodeFilterAdapter; }))
{
    m_adapter->m_filter = this;
}

QRMIDOM_NodeFilter::~QRMIDOM_NodeFilter()
{
    delete m_adapter;
    m_adapter = nullptr;
}

xercesc::DOMNodeFilter* QRMIDOM_NodeFilter::getNodeFilter() const
{
    return m_adapter;
}
