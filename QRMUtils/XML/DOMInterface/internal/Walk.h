#ifndef QRMIDOM_INTERNAL_WALK_H
#define QRMIDOM_INTERNAL_WALK_H

#include <array>
#include <cstddef>
#include <memory_resource>
#include <vector>

#include <xercesc/dom/DOM.hpp>

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
                if (m_ancestors.empty()) {
                    return nullptr;
                }
                node = m_ancestors.back()->getNextSibling();
                m_ancestors.pop_back();
            }
            if (node->getNodeType() == xercesc::DOMNode::ELEMENT_NODE) {
                m_next = node->getFirstChild();
                m_ancestors.push_back(node);
                return static_cast<xercesc::DOMElement*>(node);
            }
            node = node->getNextSibling();
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
    std::pmr::vector<xercesc::DOMNode*> m_ancestors{&m_memory};
    xercesc::DOMNode* m_next;
};

} // namespace qrm

#endif
