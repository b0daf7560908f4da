#ifndef QRMIDOM_INTERNAL_WALK_H
#define QRMIDOM_INTERNAL_WALK_H

#include <array>
#include <cstddef>
#include <memory_resource>
#include <vector>

#include "QRMUtils/XML/DOMInterface/internal/Links.h"

namespace qrm {

/// Goes through the elements below a node in document order. The node itself and what is inside entity references are
/// not among them.
///
/// Remembers the way back itself, since asking Xerces for a parent takes longer; nothing is left behind in the
/// document, and the depth of the tree costs no stack. The tree must not change in between.
class ElementWalk
{
public:
    explicit ElementWalk(const xercesc::DOMNode* root) : m_next(firstBelow(root)) {}
    ElementWalk(const ElementWalk&) = delete;
    ElementWalk& operator=(const ElementWalk&) = delete;

    /// The next element; null at the end.
    xercesc::DOMElement* next()
    {
        xercesc::DOMNode* node = m_next;
        for (;;) {
            while (node == nullptr) {
                if (m_behind.empty()) {
                    return nullptr;
                }
                node = m_behind.back();
                m_behind.pop_back();
            }
            const xercesc::DOMNode::NodeType type = node->getNodeType();
            prefetchBehind(node);
            xercesc::DOMNode* const behind = nextSiblingOf(node, type);
            if (type == xercesc::DOMNode::ELEMENT_NODE) {
                m_next = implOf(static_cast<xercesc::DOMElement*>(node)).fParent.fFirstChild;
                if (m_next == nullptr) {
                    m_next = behind;
                } else if (behind != nullptr) {
                    m_behind.push_back(behind);
                }
                return static_cast<xercesc::DOMElement*>(node);
            }
            node = behind;
        }
    }

private:
    static xercesc::DOMNode* firstBelow(const xercesc::DOMNode* root)
    {
        return root->getNodeType() == xercesc::DOMNode::ENTITY_REFERENCE_NODE ? nullptr
                                                                              : root->getFirstChild();
    }

    static constexpr std::size_t kUsualDepth = 64;

    // Searches are often short, and most trees are shallow: these take nothing from the heap.
    alignas(std::max_align_t) std::array<std::byte, kUsualDepth * sizeof(void*)> m_buffer;
    std::pmr::monotonic_buffer_resource m_memory{m_buffer.data(), m_buffer.size()};
    std::pmr::vector<xercesc::DOMNode*> m_behind{&m_memory}; // what follows the elements that were entered
    xercesc::DOMNode* m_next;
};

} // namespace qrm

#endif
