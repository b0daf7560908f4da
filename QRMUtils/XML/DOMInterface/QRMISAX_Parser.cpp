#include "QRMUtils/XML/DOMInterface/QRMISAX_Parser.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <istream>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/framework/URLInputSource.hpp>
#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/framework/XMLElementDecl.hpp>
#include <xercesc/parsers/SAX2XMLReaderImpl.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/sax2/Attributes.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/SecurityManager.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLURL.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "QRMCore/internal/UnitLength.h"
#include "QRMUtils/XML/DOMInterface/WQSStreamInputSource.h"
#include "QRMUtils/XML/DOMInterface/XmlUrl.h"
#include "QRMUtils/XML/DOMInterface/internal/ErrorRecord.h"
#include "QRMUtils/XML/DOMInterface/internal/EventStrings.h"
#include "QRMUtils/XML/DOMInterface/internal/Guards.h"
#include "QRMUtils/XML/DOMInterface/internal/Limits.h"
#include "QRMUtils/XML/DOMInterface/internal/SchemasOnly.h"
#include "QRMUtils/XML/DOMInterface/internal/Strings.h"
#include "QRMUtils/XML/DOMInterface/internal/Utf8.h"
#include "WQSStreams/WQSFileInputStream.h"

using xercesc::InputSource;
using xercesc::SAXNotRecognizedException;
using xercesc::SAXNotSupportedException;
using xercesc::SAXParseException;
using xercesc::XMLPlatformUtils;
using xercesc::XMLString;
using xercesc::XMLUni;

BinStreamInputStream::BinStreamInputStream(std::istream& stream) : m_stream(&stream)
{
}

BinStreamInputStream::~BinStreamInputStream() = default;

XMLFilePos BinStreamInputStream::curPos() const
{
    return static_cast<unsigned int>(static_cast<std::streamoff>(m_stream->tellg()));
}

XMLSize_t BinStreamInputStream::readBytes(XMLByte* const toFill, const XMLSize_t maxToRead)
{
    if (m_stream->eof()) {
        return 0;
    }
    m_stream->read(reinterpret_cast<char*>(toFill), static_cast<std::streamsize>(maxToRead));
    return static_cast<XMLSize_t>(m_stream->gcount());
}

const XMLCh* BinStreamInputStream::getContentType() const
{
    return nullptr;
}

StreamInputSource::StreamInputSource(std::istream& stream)
    : InputSource(XMLPlatformUtils::fgMemoryManager), m_stream(stream)
{
}

StreamInputSource::~StreamInputSource() = default;

xercesc::BinInputStream* StreamInputSource::makeStream() const
{
    // Log readers know this place by the header's name.
    return qrm::allocated(QRMFileLocation{"QRMISAX_Parser.h", 74},
                          [this] { return new BinStreamInputStream(m_stream); });
}

namespace qrm {

/// The Xerces reader, with what its settings and its events need.
///
/// Where namespaces are processed as usual, elements and text go from Xerces' scanner straight to the callbacks: the
/// base class would copy the attributes that are no declarations into a list, and be asked for each of them again.
class EventReader final : public xercesc::SAX2XMLReaderImpl, private SchemasOnly
{
public:
    EventReader(QRMISAX_Parser& parser, DefaultHandlerImpl& handler)
        : SAX2XMLReaderImpl(XMLPlatformUtils::fgMemoryManager, nullptr), m_parser(parser), m_handler(handler)
    {
    }

    Limits limits;
    EventStrings strings;
    const xercesc::Locator* locator = nullptr; // of the parse that goes on
    XMLCh heldSurrogate = 0; // the first half of a character that the text of before ended with
    bool isSpent = false;    // Xerces ran out of memory in a parse: it takes every later one for a nested one

    bool isParsing() const { return m_isParsing; }
    bool isLimited() const { return m_isLimited; }

    void parseLimited(const InputSource& source)
    {
        if (m_isParsing) {
            parse(source); // which refuses
            return;
        }
        struct Parsing
        {
            explicit Parsing(bool& flag) : m_flag(flag) { m_flag = true; }
            ~Parsing() { m_flag = false; }
            bool& m_flag;
        } const parsing(m_isParsing);
        heldSurrogate = 0;
        m_isDirect =
            getFeature(XMLUni::fgSAX2CoreNameSpaces) && !getFeature(XMLUni::fgSAX2CoreNameSpacePrefixes);
        m_openElements = 0;
        m_prefixes.clear();
        m_prefixCounts.clear();
        m_isLimited = limits.any();
        if (m_isLimited) {
            limits.beginDocument();
            parse(CountedSource(source, limits));
        } else {
            parse(source);
        }
    }

    void loadExternalDtd(bool load) { setFeature(XMLUni::fgXercesLoadExternalDTD, load); }

    void refuseExternal(bool refuse)
    {
        setFeature(XMLUni::fgXercesDisableDefaultEntityResolution, refuse);
        setXMLEntityResolver(refuse ? this : nullptr);
    }

    void limitExpansions(unsigned int limit)
    {
        m_securityManager.setEntityExpansionLimit(limit);
        setProperty(XMLUni::fgXercesSecurityManager, limit != 0 ? &m_securityManager : nullptr);
        m_expansionLimit = limit;
    }

    void takeSettings(const EventReader& other);

    void startElement(const xercesc::XMLElementDecl& declaration, const unsigned int uriId,
                      const XMLCh* const prefix, const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                      const XMLSize_t attributeCount, const bool isEmpty, const bool isRoot) override;
    void endElement(const xercesc::XMLElementDecl& declaration, const unsigned int uriId, const bool isRoot,
                    const XMLCh* const prefix) override;
    void docCharacters(const XMLCh* const characters, const XMLSize_t length, const bool isCdata) override;
    void ignorableWhitespace(const XMLCh* const characters, const XMLSize_t length,
                             const bool isCdata) override;

private:
    void endElement(const XMLCh* uri, const XMLCh* name);

    const XMLCh* namedSchemas() const override
    {
        return static_cast<const XMLCh*>(getProperty(XMLUni::fgXercesSchemaExternalSchemaLocation));
    }
    const XMLCh* namedNoNamespaceSchema() const override { return nullptr; }

    QRMISAX_Parser& m_parser;
    DefaultHandlerImpl& m_handler;
    xercesc::SecurityManager m_securityManager;
    unsigned int m_expansionLimit = 0;
    bool m_isParsing = false;
    bool m_isLimited = false;
    bool m_isDirect = false;
    XMLSize_t m_openElements = 0;
    std::vector<std::u16string> m_prefixes; // declared by the open elements
    std::vector<XMLSize_t> m_prefixCounts;  // how many of them by each one
};

} // namespace qrm

using qrm::EventReader;
using qrm::kParseError;
using qrm::narrowed;

namespace {

constexpr int kNameTooLong = -5;
constexpr std::size_t kLongestName = 3840;
constexpr unsigned int kLastUrlProtocol = 3;

// Where memory runs out while a text is converted.
constexpr QRMFileLocation kConversion = {"QRMISAX_Parser.cpp", 645};

/// The features by their numbers.
const XMLCh* const kFeatures[] = {
    XMLUni::fgSAX2CoreNameSpaces,
    XMLUni::fgSAX2CoreNameSpacePrefixes,
    XMLUni::fgSAX2CoreValidation,
    XMLUni::fgXercesCacheGrammarFromParse,
    XMLUni::fgXercesUseCachedGrammarInParse,
    XMLUni::fgXercesSchema,
    XMLUni::fgXercesDynamic,
};

const XMLCh* featureName(QRMISAX_Parser::SAXFeature feature)
{
    const auto number = static_cast<unsigned int>(feature);
    return number < std::size(kFeatures) ? kFeatures[number] : nullptr;
}

/// Frees what XMLString made.
struct ReleaseString
{
    template <class Unit>
    void operator()(Unit* text) const
    {
        XMLString::release(&text);
    }
};

/// A copy in the local code page, to be freed with delete[].
std::unique_ptr<char[]> transcoded(const XMLCh* text)
{
    const std::unique_ptr<char, ReleaseString> local(XMLString::transcode(text));
    const std::size_t size = std::strlen(local.get()) + 1;
    std::unique_ptr<char[]> copy(
        qrm::allocated(QRM_SITE_HERE, [size] { return new (std::nothrow) char[size]; }));
    std::memcpy(copy.get(), local.get(), size);
    return copy;
}

/// What the call on the reader gives; the failure where the reader does not know what it is asked, or not now.
template <class Result, class Call>
Result asked(QRMFileLocation site, Result failure, Call&& call)
{
    try {
        return call();
    } catch (const SAXNotRecognizedException&) {
        return failure;
    } catch (const SAXNotSupportedException&) {
        return failure;
    } catch (const xercesc::OutOfMemoryException&) {
        qrm::raiseXercesOutOfMemory(site);
    }
}

void copyProperty(EventReader& to, const EventReader& from, const XMLCh* name)
{
    to.setProperty(name, from.getProperty(name));
}

/// Makes a reader ready for the handler.
void prepare(EventReader& reader, DefaultHandlerImpl& handler)
{
    reader.setErrorHandler(&handler);
    reader.setContentHandler(&handler);
    reader.setLexicalHandler(&handler);
    reader.setFeature(XMLUni::fgSAX2CoreValidation, false);
}

/// The name of an element without its prefix. Without namespace processing only the qualified name is there.
const XMLCh* localPart(const XMLCh* localName, const XMLCh* qualifiedName)
{
    if (!qrm::isEmpty(localName) || qualifiedName == nullptr) {
        return localName;
    }
    const int colon = XMLString::indexOf(qualifiedName, u':');
    return qualifiedName + (colon + 1);
}

/// Gives up the strings of the event before, so that there is room for those of the next one.
EventReader& beginEvent(EventReader& reader)
{
    reader.strings.clear();
    if (reader.heldSurrogate != 0) {
        // Half a character with nothing behind it, which the conversion refuses.
        const XMLCh half[] = {reader.heldSurrogate, 0};
        reader.heldSurrogate = 0;
        reader.strings.add(half, kConversion);
    }
    return reader;
}

/// An attribute as Xerces has it.
struct Attribute
{
    const XMLCh* uri;
    const XMLCh* qualifiedName;
    const XMLCh* value;
};

/// Delivers the start of an element.
/// @param next gives the attributes, one after the other
template <class Next>
void deliverStart(QRMISAX_Parser& parser, EventReader& reader, const XMLCh* uri, const XMLCh* name,
                  XMLSize_t count, Next&& next)
{
    beginEvent(reader);
    if (reader.isLimited()) {
        reader.limits.beginElement(reader.locator);
    }
    const char* const fullName = reader.strings.addName(uri, name);
    const char** const atts = reader.strings.pointers(2 * count + 1, QRM_SITE(164));
    for (XMLSize_t i = 0; i < count; ++i) {
        const Attribute attribute = next();
        if (reader.isLimited()) {
            reader.limits.deliver(attribute.value, reader.locator);
        }
        atts[2 * i] = reader.strings.addName(attribute.uri, attribute.qualifiedName);
        atts[2 * i + 1] = reader.strings.add(attribute.value, kConversion).bytes;
    }
    atts[2 * count] = nullptr;
    parser.startElement(fullName, atts);
}

void deliverEnd(QRMISAX_Parser& parser, EventReader& reader, const XMLCh* uri, const XMLCh* name)
{
    beginEvent(reader);
    if (reader.isLimited()) {
        reader.limits.endElement();
    }
    parser.endElement(reader.strings.addName(uri, name));
}

/// The prefix that an attribute declares, empty for the default namespace; null where it is no declaration.
const XMLCh* declaredPrefix(const xercesc::XMLAttr& attribute)
{
    const XMLCh* const prefix = attribute.getPrefix();
    if (qrm::isEmpty(prefix)) {
        return XMLString::equals(attribute.getName(), XMLUni::fgXMLNSString) ? XMLUni::fgZeroLenString
                                                                             : nullptr;
    }
    return XMLString::equals(prefix, XMLUni::fgXMLNSString) ? attribute.getName() : nullptr;
}

void deliver(QRMISAX_Parser& parser, EventReader& reader, const XMLCh* text, std::size_t length)
{
    if (reader.isLimited()) {
        reader.limits.deliver(length, reader.locator);
    }
    reader.strings.clear();
    const qrm::EventString string = reader.strings.add(text, length, kConversion);
    QRM_ASSERT(string.length <= static_cast<std::size_t>(std::numeric_limits<int>::max()));
    parser.characterData(string.bytes, static_cast<int>(string.length));
}

/// Delivers text up to its terminating null. Xerces may cut a character of two units in half between two texts: the
/// first half waits for the second.
void deliverText(QRMISAX_Parser& parser, EventReader& reader, const XMLCh* text)
{
    if (reader.heldSurrogate != 0) {
        const XMLCh whole[] = {reader.heldSurrogate, *text, 0};
        reader.heldSurrogate = 0;
        deliver(parser, reader, whole, whole[1] != 0 ? 2 : 1);
        if (*++text == 0) {
            return;
        }
    }
    std::size_t length = qrm::unitLength(text);
    if (length != 0 && text[length - 1] >= 0xD800 && text[length - 1] <= 0xDBFF) {
        reader.heldSurrogate = text[--length];
        if (length == 0) {
            return;
        }
    }
    deliver(parser, reader, text, length);
}

} // namespace

void EventReader::startElement(const xercesc::XMLElementDecl& declaration, const unsigned int uriId,
                               const XMLCh* const prefix,
                               const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                               const XMLSize_t attributeCount, const bool isEmpty, const bool isRoot)
{
    if (!m_isDirect) {
        SAX2XMLReaderImpl::startElement(declaration, uriId, prefix, attributes, attributeCount, isEmpty,
                                        isRoot);
        return;
    }
    XMLSize_t declared = 0;
    for (XMLSize_t i = 0; i < attributeCount; ++i) {
        const xercesc::XMLAttr& attribute = *attributes.elementAt(i);
        if (const XMLCh* const name = declaredPrefix(attribute)) {
            m_handler.startPrefixMapping(name, attribute.getValue());
            qrm::allocated(kConversion, [&] { return &m_prefixes.emplace_back(name); });
            ++declared;
        }
    }
    qrm::allocated(kConversion, [&] { return &m_prefixCounts.emplace_back(declared); });
    const XMLCh* const uri = getURIText(uriId);
    const XMLCh* const name = declaration.getBaseName();
    XMLSize_t index = 0;
    deliverStart(m_parser, *this, uri, name, attributeCount - declared, [&] {
        const xercesc::XMLAttr* attribute = attributes.elementAt(index++);
        while (declared != 0 && declaredPrefix(*attribute) != nullptr) {
            attribute = attributes.elementAt(index++);
        }
        return Attribute{getURIText(attribute->getURIId()), attribute->getQName(), attribute->getValue()};
    });
    if (isEmpty) {
        endElement(uri, name);
    } else {
        ++m_openElements;
    }
}

void EventReader::endElement(const xercesc::XMLElementDecl& declaration, const unsigned int uriId,
                             const bool isRoot, const XMLCh* const prefix)
{
    if (!m_isDirect) {
        SAX2XMLReaderImpl::endElement(declaration, uriId, isRoot, prefix);
        return;
    }
    endElement(getURIText(uriId), declaration.getBaseName());
    --m_openElements;
}

void EventReader::endElement(const XMLCh* uri, const XMLCh* name)
{
    deliverEnd(m_parser, *this, uri, name);
    for (XMLSize_t left = m_prefixCounts.back(); left != 0; --left) {
        m_handler.endPrefixMapping(m_prefixes.back().c_str());
        m_prefixes.pop_back();
    }
    m_prefixCounts.pop_back();
}

void EventReader::docCharacters(const XMLCh* const characters, const XMLSize_t length, const bool isCdata)
{
    if (!m_isDirect) {
        SAX2XMLReaderImpl::docCharacters(characters, length, isCdata);
    } else if (m_openElements != 0) {
        m_handler.characters(characters, length);
    }
}

void EventReader::ignorableWhitespace(const XMLCh* const characters, const XMLSize_t length,
                                      const bool isCdata)
{
    if (!m_isDirect) {
        SAX2XMLReaderImpl::ignorableWhitespace(characters, length, isCdata);
    } else if (m_openElements != 0) {
        m_handler.ignorableWhitespace(characters, length);
    }
}

void EventReader::takeSettings(const EventReader& other)
{
    for (const XMLCh* const feature : kFeatures) {
        setFeature(feature, other.getFeature(feature));
    }
    copyProperty(*this, other, XMLUni::fgXercesSchemaExternalSchemaLocation);
    loadExternalDtd(other.getFeature(XMLUni::fgXercesLoadExternalDTD));
    refuseExternal(other.getFeature(XMLUni::fgXercesDisableDefaultEntityResolution));
    limitExpansions(other.m_expansionLimit);
    limits = other.limits;
}

DefaultHandlerImpl::DefaultHandlerImpl(QRMISAX_Parser* owner) : m_pOwner(owner)
{
}

DefaultHandlerImpl::~DefaultHandlerImpl() = default;

InputSource* DefaultHandlerImpl::resolveEntity(const XMLCh* const /*publicId*/,
                                               const XMLCh* const /*systemId*/)
{
    return nullptr;
}

void DefaultHandlerImpl::characters(const XMLCh* const chars, const XMLSize_t /*length*/)
{
    QRM_ASSERT_AT(74, m_pOwner != NULL);
    deliverText(*m_pOwner, m_pOwner->reader(), chars);
}

void DefaultHandlerImpl::endDocument()
{
}

void DefaultHandlerImpl::endElement(const XMLCh* const uri, const XMLCh* const localname,
                                    const XMLCh* const qname)
{
    QRM_ASSERT_AT(121, m_pOwner != NULL);
    deliverEnd(*m_pOwner, m_pOwner->reader(), uri, localPart(localname, qname));
}

void DefaultHandlerImpl::ignorableWhitespace(const XMLCh* const chars, const XMLSize_t /*length*/)
{
    QRM_ASSERT_AT(129, m_pOwner != NULL);
    deliverText(*m_pOwner, m_pOwner->reader(), chars);
}

void DefaultHandlerImpl::processingInstruction(const XMLCh* const target, const XMLCh* const data)
{
    // The one event that does not ask for its owner first.
    EventReader& reader = beginEvent(m_pOwner->reader());
    const char* const name = reader.strings.add(target, kConversion).bytes;
    m_pOwner->processingInstruction(name, reader.strings.add(data, kConversion).bytes);
}

void DefaultHandlerImpl::resetDocument()
{
}

void DefaultHandlerImpl::setDocumentLocator(const xercesc::Locator* const locator)
{
    if (m_pOwner != nullptr) {
        m_pOwner->reader().locator = locator;
    }
}

void DefaultHandlerImpl::startDocument()
{
}

void DefaultHandlerImpl::startElement(const XMLCh* const uri, const XMLCh* const localname,
                                      const XMLCh* const qname, const xercesc::Attributes& attrs)
{
    QRM_ASSERT_AT(158, m_pOwner != NULL);
    XMLSize_t index = 0;
    deliverStart(*m_pOwner, m_pOwner->reader(), uri, localPart(localname, qname), attrs.getLength(), [&] {
        const XMLSize_t i = index++;
        return Attribute{attrs.getURI(i), attrs.getQName(i), attrs.getValue(i)};
    });
}

void DefaultHandlerImpl::startPrefixMapping(const XMLCh* const prefix, const XMLCh* const uri)
{
    QRM_ASSERT_AT(200, m_pOwner != NULL);
    EventReader& reader = beginEvent(m_pOwner->reader());
    const char* const name = reader.strings.add(prefix, kConversion).bytes;
    m_pOwner->startNamespaceDecl(name, reader.strings.add(uri, kConversion).bytes);
}

void DefaultHandlerImpl::endPrefixMapping(const XMLCh* const prefix)
{
    QRM_ASSERT_AT(222, m_pOwner != NULL);
    EventReader& reader = beginEvent(m_pOwner->reader());
    m_pOwner->endNamespaceDecl(reader.strings.add(prefix, kConversion).bytes);
}

void DefaultHandlerImpl::skippedEntity(const XMLCh* const /*name*/)
{
}

void DefaultHandlerImpl::error(const SAXParseException& exc)
{
    throw SAXParseException(exc);
}

void DefaultHandlerImpl::fatalError(const SAXParseException& exc)
{
    throw SAXParseException(exc);
}

void DefaultHandlerImpl::warning(const SAXParseException& /*exc*/)
{
}

void DefaultHandlerImpl::resetErrors()
{
    QRM_ASSERT_AT(276, m_pOwner != NULL);
    m_pOwner->setErrorCode(0);
}

void DefaultHandlerImpl::notationDecl(const XMLCh* const /*name*/, const XMLCh* const /*publicId*/,
                                      const XMLCh* const /*systemId*/)
{
}

void DefaultHandlerImpl::resetDocType()
{
}

void DefaultHandlerImpl::unparsedEntityDecl(const XMLCh* const /*name*/, const XMLCh* const /*publicId*/,
                                            const XMLCh* const /*systemId*/,
                                            const XMLCh* const /*notationName*/)
{
}

void DefaultHandlerImpl::comment(const XMLCh* const chars, const XMLSize_t /*length*/)
{
    QRM_ASSERT_AT(83, m_pOwner != NULL);
    EventReader& reader = beginEvent(m_pOwner->reader());
    m_pOwner->comment(reader.strings.add(chars, kConversion).bytes);
}

QRMISAX_Parser::QRMISAX_Parser() : m_handler(this)
{
    std::unique_ptr<EventReader> made;
    asked(QRM_SITE(310), 0, [&] {
        made = std::make_unique<EventReader>(*this, m_handler);
        prepare(*made, m_handler);
        return 1;
    });
    m_parserImpl = made.release();
}

QRMISAX_Parser::~QRMISAX_Parser()
{
    delete[] m_errorText;
    qrm::silently([this] { delete m_parserImpl; });
}

void QRMISAX_Parser::startElement(const char* /*name*/, const char** /*atts*/)
{
}

void QRMISAX_Parser::endElement(const char* /*name*/)
{
}

void QRMISAX_Parser::notationDecl(const char* /*notationName*/, const char* /*base*/,
                                  const char* /*systemId*/, const char* /*publicId*/)
{
}

void QRMISAX_Parser::processingInstruction(const char* /*target*/, const char* /*data*/)
{
}

void QRMISAX_Parser::comment(const char* /*data*/)
{
}

void QRMISAX_Parser::startCDataSection()
{
}

void QRMISAX_Parser::endCDataSection()
{
}

void QRMISAX_Parser::characterData(const char* /*s*/, int /*len*/)
{
}

void QRMISAX_Parser::startNamespaceDecl(const char* /*prefix*/, const char* /*uri*/)
{
}

void QRMISAX_Parser::endNamespaceDecl(const char* /*prefix*/)
{
}

void QRMISAX_Parser::defaultHandler(const char* /*s*/, int /*len*/)
{
}

void QRMISAX_Parser::unparseEntityDecl(const char* /*entityName*/, const char* /*base*/,
                                       const char* /*systemId*/, const char* /*publicId*/,
                                       const char* /*notationName*/)
{
}

int QRMISAX_Parser::notStandalone()
{
    return 0;
}

int QRMISAX_Parser::externalEntityRef(const char* /*context*/, const char* /*base*/, const char* /*systemId*/,
                                      const char* /*publicId*/)
{
    return 0;
}

int QRMISAX_Parser::parse(InputSource& src)
{
    replaceSpentReader();
    m_errorCode = 0;
    try {
        reader().parseLimited(src);
        return 1;
    } catch (const SAXParseException& error) {
        m_columnNumber = narrowed(error.getColumnNumber());
        return recordFailure(kParseError, narrowed(error.getLineNumber()), error.getMessage());
    } catch (const xercesc::XMLException& error) {
        // Such as a parse within a parse. The line is one of Xerces' sources, as logs have always had it.
        return recordFailure(error.getCode(), narrowed(error.getSrcLine()), error.getMessage());
    } catch (const xercesc::OutOfMemoryException&) {
        reader().isSpent = true;
        qrm::raiseXercesOutOfMemory(QRM_SITE(628));
    }
}

int QRMISAX_Parser::parse(const char* name)
{
    if (name == nullptr) {
        return 0;
    }
    {
        WQSFileInputStream file(name);
        if (file.isOpen()) {
            return parse(file);
        }
    }
    if (std::strlen(name) > kLongestName) {
        m_errorCode = kNameTooLong;
        constexpr std::size_t kTextSize = 100;
        std::unique_ptr<char[]> text(
            qrm::allocated(QRM_SITE(447), [] { return new (std::nothrow) char[kTextSize]; }));
        std::snprintf(text.get(), kTextSize, "The specified URL exceeds the maximum length of %u.\n",
                      static_cast<unsigned int>(kLongestName));
        setErrorText(std::move(text));
        return 0;
    }
    const auto isUrl = [name] {
        try {
            return static_cast<unsigned int>(XmlUrl(name).getProtocol()) <= kLastUrlProtocol;
        } catch (...) {
            return false;
        }
    };
    if (!isUrl()) {
        constexpr std::size_t kTextSize = 256;
        std::unique_ptr<char[]> text(
            qrm::allocated(QRM_SITE(475), [] { return new (std::nothrow) char[kTextSize]; }));
        // Where the text does not fit, the name is cut and the rest stays.
        constexpr const char* kRest = " does not exist.\n";
        std::snprintf(text.get(), kTextSize, "%.*s%s", static_cast<int>(kTextSize - 1 - std::strlen(kRest)),
                      name, kRest);
        setErrorText(std::move(text));
        return 0;
    }
    return parseUrl(name);
}

int QRMISAX_Parser::parseUrl(const char* name)
{
    std::unique_ptr<xercesc::URLInputSource> source;
    try {
        source = std::make_unique<xercesc::URLInputSource>(
            xercesc::XMLURL(name, XMLPlatformUtils::fgMemoryManager), XMLPlatformUtils::fgMemoryManager);
    } catch (const xercesc::MalformedURLException& error) {
        return recordFailure(kParseError, narrowed(error.getSrcLine()), error.getMessage());
    } catch (...) {
        return 0;
    }
    return parse(*source);
}

int QRMISAX_Parser::parse(const char* buffer, int length)
{
    const auto size = static_cast<XMLSize_t>(buffer != nullptr ? std::max(length, 0) : 0);
    std::unique_ptr<xercesc::MemBufInputSource> source;
    qrm::translated(QRM_SITE_HERE, [&] {
        source = std::make_unique<xercesc::MemBufInputSource>(reinterpret_cast<const XMLByte*>(buffer), size,
                                                              "", false, XMLPlatformUtils::fgMemoryManager);
    });
    return parse(*source);
}

int QRMISAX_Parser::parse(std::istream& in)
{
    StreamInputSource source(in);
    return parse(source);
}

int QRMISAX_Parser::parse(WQSInputStream& in)
{
    WQSStreamInputSource source(in);
    return parse(source);
}

EventReader& QRMISAX_Parser::reader() const
{
    return static_cast<EventReader&>(*m_parserImpl);
}

/// Puts a new Xerces reader with the same settings in the place of one that ran out of memory.
void QRMISAX_Parser::replaceSpentReader()
{
    if (reader().isSpent) {
        qrm::translated(QRM_SITE_HERE, [this] {
            auto fresh = std::make_unique<EventReader>(*this, m_handler);
            prepare(*fresh, m_handler);
            fresh->takeSettings(reader());
            delete m_parserImpl;
            m_parserImpl = fresh.release();
        });
    }
}

int QRMISAX_Parser::recordFailure(int code, int line, const XMLCh* text)
{
    m_errorCode = code;
    m_lineNumber = line;
    setErrorText(qrm::translated(QRM_SITE_HERE, [text] { return transcoded(text); }));
    return 0;
}

void QRMISAX_Parser::setErrorText(std::unique_ptr<char[]> text)
{
    delete[] m_errorText;
    m_errorText = text.release();
}

int QRMISAX_Parser::setFeature(SAXFeature f, int value)
{
    const XMLCh* const name = featureName(f);
    if (name == nullptr) {
        return 0;
    }
    return asked(QRM_SITE(340), 0, [&] {
        m_parserImpl->setFeature(name, value != 0);
        return 1;
    });
}

int QRMISAX_Parser::getFeature(SAXFeature f) const
{
    const XMLCh* const name = featureName(f);
    if (name == nullptr) {
        return 0;
    }
    return asked(QRM_SITE(363), 0, [&] { return m_parserImpl->getFeature(name) ? 1 : 0; });
}

int QRMISAX_Parser::setProperty(SAXProperty p, const char* value)
{
    if (p != PROPERTY_EXTERNAL_SCHEMA_LOCATION) {
        return 0;
    }
    return asked(QRM_SITE(390), 0, [&] {
        const std::unique_ptr<XMLCh, ReleaseString> text(XMLString::transcode(value));
        m_parserImpl->setProperty(XMLUni::fgXercesSchemaExternalSchemaLocation, text.get());
        return 1;
    });
}

char* QRMISAX_Parser::getProperty(SAXProperty p) const
{
    if (p != PROPERTY_EXTERNAL_SCHEMA_LOCATION) {
        return nullptr;
    }
    return asked(QRM_SITE(423), static_cast<char*>(nullptr), [&] {
        const void* const text = m_parserImpl->getProperty(XMLUni::fgXercesSchemaExternalSchemaLocation);
        return text != nullptr ? transcoded(static_cast<const XMLCh*>(text)).release() : nullptr;
    });
}

void QRMISAX_Parser::setParamEntityParsing(ParamEntityParsing /*parsing*/)
{
}

int QRMISAX_Parser::setLoadExternalDTD(int flag)
{
    return asked(QRM_SITE_HERE, 0, [&] {
        reader().loadExternalDtd(flag != 0);
        return 1;
    });
}

int QRMISAX_Parser::setRefuseExternal(int flag)
{
    return asked(QRM_SITE_HERE, 0, [&] {
        reader().refuseExternal(flag != 0);
        return 1;
    });
}

int QRMISAX_Parser::setEntityExpansionLimit(unsigned int limit)
{
    if (reader().isParsing()) {
        return 0;
    }
    return asked(QRM_SITE_HERE, 0, [&] {
        reader().limitExpansions(limit);
        return 1;
    });
}

int QRMISAX_Parser::setDepthLimit(unsigned int levels)
{
    if (reader().isParsing()) {
        return 0;
    }
    reader().limits.maxDepth = levels;
    return 1;
}

int QRMISAX_Parser::setAmplificationLimit(unsigned int factor, unsigned long from)
{
    if (reader().isParsing()) {
        return 0;
    }
    reader().limits.maxAmplification = factor;
    reader().limits.amplifiedFrom = from;
    return 1;
}
