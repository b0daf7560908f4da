#ifndef QRMIDOM_INTERNAL_SCHEMASONLY_H
#define QRMIDOM_INTERNAL_SCHEMASONLY_H

#include <xercesc/util/XMLEntityResolver.hpp>

namespace qrm {

/// Asked for external resources while these are refused: opens the schemas that the caller named, and what these
/// include, and nothing else.
class SchemasOnly : public xercesc::XMLEntityResolver
{
public:
    xercesc::InputSource* resolveEntity(xercesc::XMLResourceIdentifier* resource) override;

protected:
    /// Pairs of namespace URI and location; null for none.
    virtual const XMLCh* namedSchemas() const = 0;
    /// The location of the schema for elements without a namespace; null for none.
    virtual const XMLCh* namedNoNamespaceSchema() const = 0;

private:
    bool isNamed(const XMLCh* location) const;
};

} // namespace qrm

#endif
