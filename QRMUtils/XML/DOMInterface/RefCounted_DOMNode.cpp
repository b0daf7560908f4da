#include "QRMUtils/XML/DOMInterface/RefCounted_DOMNode.h"

#include "QRMUtils/XML/DOMInterface/internal/Trees.h"

void RefCounted_DOMNode::cleanup()
{
    if (m_node != nullptr) {
        qrm::releaseTree(m_node);
        m_node = nullptr;
    }
}
