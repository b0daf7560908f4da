#ifndef QRMIDOM_INTERNAL_NAMESPACEWRITER_H
#define QRMIDOM_INTERNAL_NAMESPACEWRITER_H

#include "QRMUtils/XML/DOMInterface/internal/TreeWriter.h"

class I18NString;

namespace qrm {

/// Writes a node with its subtree and gives elements the declaration of their own namespace where their parent does
/// not have the same one.
class NamespaceWriter final : public TreeWriter
{
public:
    /// @param xmlnsName gives the name "xmlns"; asked for when the first element wants a declaration
    NamespaceWriter(DomWriter& writer, const I18NString& (*xmlnsName)())
        : TreeWriter(writer), m_xmlnsName(xmlnsName)
    {
    }

private:
    void writeAttributes(const xercesc::DOMElement* element) override;

    bool needsDeclaration(const xercesc::DOMElement* element, const XMLCh* prefix) const;
    void writeDeclaration(const xercesc::DOMElement* element, const XMLCh* prefix);

    const I18NString& (*m_xmlnsName)();
};

} // namespace qrm

#endif
