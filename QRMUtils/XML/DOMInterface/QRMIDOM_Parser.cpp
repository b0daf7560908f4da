#include "QRMUtils/XML/DOMInterface/QRMIDOM_Parser.h"

#include <memory>
#include <optional>

#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/ErrorHandler.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/SecurityManager.hpp>
#include <xercesc/util/XMLExceptMsgs.hpp>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_XercesHelper.h"
#include "QRMUtils/XML/DOMInterface/QRMISAX_Parser.h"
#include "QRMUtils/XML/DOMInterface/WQSStreamInputSource.h"
#include "QRMUtils/XML/DOMInterface/internal/ErrorRecord.h"
#include "QRMUtils/XML/DOMInterface/internal/LimitedParser.h"
#include "QRMUtils/XML/DOMInterface/internal/LinkingParser.h"
#include "QRMUtils/XML/DOMInterface/internal/SchemasOnly.h"
#include "QRMUtils/XML/DOMInterface/internal/Sharing.h"
#include "WQSStreams/WQSFileInputStream.h"

using qrm::kParseError;
using qrm::narrowed;
using xercesc::InputSource;
using xercesc::SAXParseException;
using xercesc::XercesDOMParser;
using xercesc::XMLPlatformUtils;

namespace {

constexpr int kCacheGrammars = 1;

} // namespace

/// The Xerces parser, with what its settings need to live as long as it does.
class DOM_ParserImpl : public XercesDOMParser, private qrm::SchemasOnly
{
public:
    DOM_ParserImpl() : XercesDOMParser(nullptr, XMLPlatformUtils::fgMemoryManager, nullptr) {}
    ~DOM_ParserImpl() override = default;

    void takeSettings(const DOM_ParserImpl& other)
    {
        setValidationScheme(other.getValidationScheme());
        setLoadExternalDTD(other.getLoadExternalDTD());
        setDoSchema(other.getDoSchema());
        setExternalSchemaLocation(other.getExternalSchemaLocation());
        setExternalNoNamespaceSchemaLocation(other.getExternalNoNamespaceSchemaLocation());
        refuseExternal(other.getDisableDefaultEntityResolution());
        limitExpansions(other.m_expansionLimit);
    }

    void refuseExternal(bool refuse)
    {
        setDisableDefaultEntityResolution(refuse);
        setXMLEntityResolver(refuse ? this : nullptr);
    }

    void limitExpansions(unsigned int limit)
    {
        m_expansionLimit = limit;
        m_securityManager.setEntityExpansionLimit(limit);
        setSecurityManager(limit != 0 ? &m_securityManager : nullptr);
    }

    /// Set when Xerces ran out of memory in a parse. It then takes every later parse for a nested one.
    bool isSpent = false;

private:
    const XMLCh* namedSchemas() const override { return getExternalSchemaLocation(); }
    const XMLCh* namedNoNamespaceSchema() const override { return getExternalNoNamespaceSchemaLocation(); }

    xercesc::SecurityManager m_securityManager;
    unsigned int m_expansionLimit = 0;
};

/// Ends the parse at the first error by throwing it; QRMIDOM_Parser::parse() records it.
class ErrorHandlerImpl : public xercesc::ErrorHandler
{
public:
    void warning(const SAXParseException&) override {}
    [[noreturn]] void error(const SAXParseException& exception) override
    {
        throw SAXParseException(exception);
    }
    [[noreturn]] void fatalError(const SAXParseException& exception) override
    {
        throw SAXParseException(exception);
    }
    void resetErrors() override {}
};

namespace {

/// What every DOM_ParserImpl is.
using TreeParser = qrm::LimitedParser<qrm::LinkingParser<DOM_ParserImpl>>;

TreeParser& treeParser(DOM_ParserImpl& parser)
{
    return static_cast<TreeParser&>(parser);
}

std::unique_ptr<DOM_ParserImpl> makeParser(int grammarCaching, QRMFileLocation site)
{
    std::unique_ptr<DOM_ParserImpl> parser(qrm::allocated(site, [] { return new TreeParser; }));
    parser->setDoNamespaces(true);
    parser->setIncludeIgnorableWhitespace(true);
    if (grammarCaching == kCacheGrammars) {
        parser->cacheGrammarFromParse(true);
        parser->useCachedGrammarInParse(true);
    }
    return parser;
}

} // namespace

QRMIDOM_Parser::QRMIDOM_Parser(int grammarCaching) : m_grammarCaching(grammarCaching)
{
    auto parser = makeParser(grammarCaching, QRM_SITE(61));
    m_errorHandler = qrm::allocated(QRM_SITE(62), [] { return new (std::nothrow) ErrorHandlerImpl; });
    parser->setErrorHandler(m_errorHandler);
    m_parserImpl = parser.release();
}

QRMIDOM_Parser::~QRMIDOM_Parser()
{
    qrm::silently([this] {
        delete m_errorHandler;
        m_errorHandler = nullptr;
        delete m_parserImpl;
        m_parserImpl = nullptr;
    });
}

int QRMIDOM_Parser::parse(const char* fileName, QRMIDOM_Document& doc)
{
    if (fileName == nullptr) {
        return 0;
    }
    WQSFileInputStream file(fileName);
    return file.isOpen() ? parse(file, doc) : 0;
}

int QRMIDOM_Parser::parse(const char* buffer, int length, QRMIDOM_Document& doc)
{
    if (buffer == nullptr || length <= 0 || *buffer == 0) {
        return 0;
    }
    std::optional<xercesc::MemBufInputSource> source;
    qrm::translated(QRM_SITE_HERE, [&] {
        source.emplace(reinterpret_cast<const XMLByte*>(buffer), static_cast<XMLSize_t>(length), "", false,
                       XMLPlatformUtils::fgMemoryManager);
    });
    return parse(*source, doc);
}

int QRMIDOM_Parser::parse(std::istream& in, QRMIDOM_Document& doc)
{
    StreamInputSource source(in);
    return parse(source, doc);
}

int QRMIDOM_Parser::parse(WQSInputStream& in, QRMIDOM_Document& doc)
{
    WQSStreamInputSource source(in);
    return parse(source, doc);
}

int QRMIDOM_Parser::parse(InputSource& src, QRMIDOM_Document& doc)
{
    QRM_ASSERT_AT(194, m_parserImpl);
    replaceSpentParser();

    int result = 1;
    try {
        treeParser(*m_parserImpl).parseLimited(src);
    } catch (const xercesc::DOMException&) {
        result = recordFailure(kParseError);
    } catch (const SAXParseException& error) {
        m_columnNumber = narrowed(error.getColumnNumber());
        result = recordFailure(kParseError, narrowed(error.getLineNumber()), error.getMessage());
    } catch (const xercesc::XMLException& error) {
        result = recordFailure(error.getCode(), narrowed(error.getSrcLine()), error.getMessage());
        if (error.getCode() == xercesc::XMLExcepts::Gen_ParseInProgress) {
            // Called from within a parse of this very parser, which still needs the document that it is building.
            doc = QRMIDOM_Document();
            return result;
        }
    } catch (const xercesc::OutOfMemoryException&) {
        m_parserImpl->isSpent = true;
        qrm::raiseXercesOutOfMemory(QRM_SITE(223));
    } catch (...) {
        result = recordFailure(kParseError);
    }

    QRMIDOM_Document parsed;
    if (m_parserImpl->getDocument() != nullptr) {
        qrm::Sharing::adopt(
            parsed, [this] { return m_parserImpl->adoptDocument(); }, QRM_SITE_HERE);
    }
    doc = parsed;
    reset();
    return result;
}

int QRMIDOM_Parser::recordFailure(int code)
{
    m_errorCode = code;
    return 0;
}

int QRMIDOM_Parser::recordFailure(int code, int line, const XMLCh* text)
{
    m_lineNumber = line;
    QRMIDOM_XercesHelper::DOMStringToI18NString(text, m_errorText);
    return recordFailure(code);
}

/// Puts a new Xerces parser with the same settings in the place of one that ran out of memory.
void QRMIDOM_Parser::replaceSpentParser()
{
    if (m_parserImpl->isSpent) {
        auto fresh = makeParser(m_grammarCaching, QRM_SITE_HERE);
        fresh->setErrorHandler(m_errorHandler);
        fresh->takeSettings(*m_parserImpl);
        treeParser(*fresh).setLinks(treeParser(*m_parserImpl).links());
        treeParser(*fresh).limits = treeParser(*m_parserImpl).limits;
        delete m_parserImpl;
        m_parserImpl = fresh.release();
    }
}

int QRMIDOM_Parser::getDoValidation() const
{
    return m_parserImpl->getValidationScheme() == XercesDOMParser::Val_Always ? 1 : 0;
}

void QRMIDOM_Parser::setDoValidation(int flag)
{
    m_parserImpl->setValidationScheme(flag != 0 ? XercesDOMParser::Val_Always : XercesDOMParser::Val_Never);
}

void QRMIDOM_Parser::setLoadExternalDTD(int flag)
{
    m_parserImpl->setLoadExternalDTD(flag != 0);
}

int QRMIDOM_Parser::getDoSchema() const
{
    return m_parserImpl->getDoSchema() ? 1 : 0;
}

void QRMIDOM_Parser::setDoSchema(int flag)
{
    m_parserImpl->setDoSchema(flag != 0);
}

void QRMIDOM_Parser::setExternalSchemaLocation(const char* schemaLocation)
{
    m_parserImpl->setExternalSchemaLocation(schemaLocation);
}

void QRMIDOM_Parser::setExternalNoNamespaceSchemaLocation(const char* schemaLocation)
{
    m_parserImpl->setExternalNoNamespaceSchemaLocation(schemaLocation);
}

void QRMIDOM_Parser::setRefuseExternal(int flag)
{
    m_parserImpl->refuseExternal(flag != 0);
}

void QRMIDOM_Parser::setEntityExpansionLimit(unsigned int limit)
{
    m_parserImpl->limitExpansions(limit);
}

void QRMIDOM_Parser::setDepthLimit(unsigned int levels)
{
    treeParser(*m_parserImpl).limits.maxDepth = levels;
}

void QRMIDOM_Parser::setAmplificationLimit(unsigned int factor, unsigned long from)
{
    treeParser(*m_parserImpl).limits.maxAmplification = factor;
    treeParser(*m_parserImpl).limits.amplifiedFrom = from;
}

void QRMIDOM_Parser::setDirectLinking(int flag)
{
    treeParser(*m_parserImpl).setLinks(flag != 0);
}

void QRMIDOM_Parser::reset()
{
    if (m_grammarCaching != kCacheGrammars) {
        return;
    }
    QRM_ASSERT_AT(182, m_parserImpl);
    replaceSpentParser();
    m_parserImpl->resetCachedGrammarPool();
    m_parserImpl->resetEntities();
    m_parserImpl->resetDocumentPool();
    m_parserImpl->resetErrors();
    m_parserImpl->AbstractDOMParser::reset();
}
