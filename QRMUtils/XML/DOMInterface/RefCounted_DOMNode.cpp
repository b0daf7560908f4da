#include "QRMUtils/XML/DOMInterface/RefCounted_DOMNode.h"

void RefCounted_DOMNode::cleanup()
{
    if (m_node != nullptr) {
        m_node->release();
        m_node = nullptr;
    }
}
