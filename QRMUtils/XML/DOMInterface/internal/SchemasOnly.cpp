#include "QRMUtils/XML/DOMInterface/internal/SchemasOnly.h"

#include <xercesc/framework/LocalFileInputSource.hpp>
#include <xercesc/framework/URLInputSource.hpp>
#include <xercesc/util/XMLResourceIdentifier.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLStringTokenizer.hpp>
#include <xercesc/util/XMLURL.hpp>

using xercesc::InputSource;
using xercesc::XMLResourceIdentifier;
using xercesc::XMLString;

namespace qrm {

namespace {

InputSource* open(const XMLResourceIdentifier& resource)
{
    xercesc::XMLURL url;
    if (url.setURL(resource.getBaseURI(), resource.getSystemId(), url) && !url.isRelative()) {
        return new xercesc::URLInputSource(url);
    }
    return new xercesc::LocalFileInputSource(resource.getBaseURI(), resource.getSystemId());
}

} // namespace

InputSource* SchemasOnly::resolveEntity(XMLResourceIdentifier* resource)
{
    switch (resource->getResourceIdentifierType()) {
    case XMLResourceIdentifier::SchemaGrammar:
        return isNamed(resource->getSystemId()) ? open(*resource) : nullptr;
    case XMLResourceIdentifier::SchemaImport:
    case XMLResourceIdentifier::SchemaInclude:
    case XMLResourceIdentifier::SchemaRedefine: return open(*resource);
    default: return nullptr; // which refuses it
    }
}

bool SchemasOnly::isNamed(const XMLCh* location) const
{
    if (XMLString::equals(location, namedNoNamespaceSchema())) {
        return true;
    }
    if (namedSchemas() == nullptr) {
        return false;
    }
    xercesc::XMLStringTokenizer pairs(namedSchemas());
    while (pairs.nextToken() != nullptr) {
        if (XMLString::equals(location, pairs.nextToken())) {
            return true;
        }
    }
    return false;
}

} // namespace qrm
