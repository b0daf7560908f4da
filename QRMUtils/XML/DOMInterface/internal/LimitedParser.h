#ifndef QRMIDOM_INTERNAL_LIMITEDPARSER_H
#define QRMIDOM_INTERNAL_LIMITEDPARSER_H

#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/framework/XMLElementDecl.hpp>
#include <xercesc/internal/XMLScanner.hpp>

#include "QRMUtils/XML/DOMInterface/internal/Limits.h"

namespace qrm {

/// A DOM parser that ends the parse where the document goes beyond the limits, if there are any.
/// @tparam Base derives from xercesc::AbstractDOMParser
template <class Base>
class LimitedParser : public Base
{
public:
    using Base::Base;

    Limits limits;

    void parseLimited(const xercesc::InputSource& source)
    {
        if (this->getParseInProgress()) {
            this->parse(source); // which refuses
            return;
        }
        m_isLimited = limits.any();
        if (m_isLimited) {
            limits.beginDocument();
            this->parse(CountedSource(source, limits));
        } else {
            this->parse(source);
        }
    }

    void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uriId, const XMLCh* prefix,
                      const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes, XMLSize_t attributeCount,
                      bool isEmpty, bool isRoot) override
    {
        if (m_isLimited) {
            limits.beginElement(locator());
            for (XMLSize_t i = 0; i < attributeCount; ++i) {
                limits.deliver(attributes.elementAt(i)->getValue(), locator());
            }
        }
        Base::startElement(declaration, uriId, prefix, attributes, attributeCount, isEmpty, isRoot);
    }

    void endElement(const xercesc::XMLElementDecl& declaration, unsigned int uriId, bool isRoot,
                    const XMLCh* prefix) override
    {
        if (m_isLimited) {
            limits.endElement();
        }
        Base::endElement(declaration, uriId, isRoot, prefix);
    }

    void docCharacters(const XMLCh* characters, XMLSize_t length, bool isCdata) override
    {
        if (m_isLimited) {
            limits.deliver(length, locator());
        }
        Base::docCharacters(characters, length, isCdata);
    }

private:
    const xercesc::Locator* locator() const { return this->getScanner()->getLocator(); }

    bool m_isLimited = false;
};

} // namespace qrm

#endif
