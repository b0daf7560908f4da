#ifndef QRM_BENCH_PEERS_H
#define QRM_BENCH_PEERS_H

#include <memory>
#include <string>

#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufFormatTarget.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>

/// The same work on raw Xerces.
namespace peers {

struct Release
{
    template <class Object>
    void operator()(Object* object) const
    {
        object->release();
    }
};
using Document = std::unique_ptr<xercesc::DOMDocument, Release>;

/// A parser with the settings of QRMIDOM_Parser.
class Parser
{
public:
    Parser()
    {
        m_parser.setErrorHandler(&m_handler);
        m_parser.setDoNamespaces(true);
        m_parser.setIncludeIgnorableWhitespace(true);
    }

    Document parse(const std::string& text)
    {
        const xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(text.data()), text.size(),
                                                "");
        m_parser.parse(source);
        return Document(m_parser.adoptDocument());
    }

private:
    xercesc::HandlerBase m_handler;
    xercesc::XercesDOMParser m_parser;
};

class Serializer
{
public:
    Serializer()
        : m_serializer(xercesc::DOMImplementation::getImplementation()->createLSSerializer()),
          m_output(xercesc::DOMImplementation::getImplementation()->createLSOutput())
    {
        m_output->setEncoding(u"UTF-8");
    }

    void setEncoding(const XMLCh* encoding) { m_output->setEncoding(encoding); }

    XMLSize_t write(const xercesc::DOMNode* node)
    {
        m_target.reset();
        m_output->setByteStream(&m_target);
        m_serializer->write(node, m_output.get());
        return m_target.getLen();
    }

private:
    std::unique_ptr<xercesc::DOMLSSerializer, Release> m_serializer;
    std::unique_ptr<xercesc::DOMLSOutput, Release> m_output;
    xercesc::MemBufFormatTarget m_target;
};

} // namespace peers

#endif
