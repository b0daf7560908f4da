#include "QRMUtils/XML/DOMInterface/internal/NamespaceWriter.h"

#include <xercesc/util/XMLString.hpp>

#include "QRMCore/I18NString.h"
#include "QRMUtils/XML/DOMInterface/internal/Strings.h"

using namespace xercesc;

namespace qrm {

namespace {

/// Whether the name is "xmlns:" and the prefix. Any one unit in place of the colon will do, before or behind the
/// prefix: readers of the output rely on what is left out as it is.
bool declares(const XMLCh* name, const XMLCh* prefix, XMLSize_t prefixLength)
{
    constexpr XMLSize_t kXmlnsLength = 5;
    return XMLString::startsWith(name, u"xmlns")
           && XMLString::stringLen(name) == kXmlnsLength + 1 + prefixLength
           && (XMLString::equalsN(name + kXmlnsLength + 1, prefix, prefixLength)
               || XMLString::equalsN(name + kXmlnsLength, prefix, prefixLength));
}

} // namespace

void NamespaceWriter::writeAttributes(const DOMElement* element)
{
    const XMLCh* const prefix = element->getPrefix();
    if (needsDeclaration(element, prefix)) {
        writeDeclaration(element, prefix);
    }
    if (isEmpty(prefix)) {
        TreeWriter::writeAttributes(element);
        return;
    }
    // The element's own declaration stands already, here or on an element around it.
    const XMLSize_t prefixLength = XMLString::stringLen(prefix);
    forEachSpecified(element, [&](const DOMAttr* attribute) {
        if (!declares(implOf(attribute).fName, prefix, prefixLength)) {
            writeAttribute(attribute);
        }
        return true;
    });
}

bool NamespaceWriter::needsDeclaration(const DOMElement* element, const XMLCh* prefix) const
{
    const DOMNode* const parent = parentOf(element);
    if (parent == nullptr || parent->getNodeType() == DOMNode::DOCUMENT_NODE) {
        return true;
    }
    return !XMLString::equals(element->getNamespaceURI(), parent->getNamespaceURI())
           || !(isEmpty(prefix) || XMLString::equals(prefix, parent->getPrefix()));
}

/// Writes a declaration of the element's namespace. An attribute "xmlns" stands in its way, whatever the prefix: the
/// declaration of the prefix is lost then.
void NamespaceWriter::writeDeclaration(const DOMElement* element, const XMLCh* prefix)
{
    const XMLCh* const xmlns = m_xmlnsName().getExternalBuffer();
    const bool hasDefault = !forEachSpecified(element, [xmlns](const DOMAttr* attribute) {
        return !XMLString::equals(implOf(attribute).fName, xmlns);
    });
    if (hasDefault) {
        return;
    }
    if (isEmpty(prefix)) {
        literal(" xmlns=\"");
    } else {
        literal(" xmlns:");
        raw(prefix);
        literal("=\"");
    }
    content(element->getNamespaceURI());
    literal("\"");
}

} // namespace qrm
