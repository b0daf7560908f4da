#ifndef QRMIDOM_INTERNAL_LIMITS_H
#define QRMIDOM_INTERNAL_LIMITS_H

#include <xercesc/sax/InputSource.hpp>
#include <xercesc/sax/Locator.hpp>
#include <xercesc/util/BinInputStream.hpp>

namespace qrm {

/// What a document may ask of its reader before the parse ends with an error. 0 is no limit.
class Limits
{
public:
    unsigned int maxDepth = 0;         // levels of elements
    unsigned int maxAmplification = 0; // units delivered for each byte read
    unsigned long amplifiedFrom = 0;   // units delivered before that counts

    bool any() const { return maxDepth != 0 || maxAmplification != 0; }

    void beginDocument()
    {
        m_depth = 0;
        m_delivered = 0;
        m_read = 0;
    }

    // Each throws SAXParseException with the place and the limit.

    void beginElement(const xercesc::Locator* locator)
    {
        if (++m_depth > maxDepth && maxDepth != 0) {
            failDepth(locator);
        }
    }
    void endElement() { --m_depth; }

    /// Counts text and values of attributes, in UTF-16 units.
    void deliver(XMLSize_t units, const xercesc::Locator* locator)
    {
        m_delivered += units;
        if (maxAmplification != 0 && m_delivered > amplifiedFrom && m_delivered / maxAmplification > m_read) {
            failAmplification(locator);
        }
    }
    void deliver(const XMLCh* text, const xercesc::Locator* locator);

    void read(XMLSize_t bytes) { m_read += bytes; }

private:
    [[noreturn]] void failDepth(const xercesc::Locator* locator) const;
    [[noreturn]] void failAmplification(const xercesc::Locator* locator) const;

    unsigned long m_depth = 0;
    unsigned long m_delivered = 0;
    unsigned long m_read = 0;
};

/// A source whose bytes are counted.
class CountedSource final : public xercesc::InputSource
{
public:
    /// Both outlive this.
    CountedSource(const xercesc::InputSource& source, Limits& limits);

    xercesc::BinInputStream* makeStream() const override;

private:
    const xercesc::InputSource& m_source;
    Limits& m_limits;
};

} // namespace qrm

#endif
