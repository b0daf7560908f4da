#ifndef QRMISAX_PARSER_H
#define QRMISAX_PARSER_H

#include <iosfwd>
#include <memory>

#include <xercesc/sax/InputSource.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/util/BinInputStream.hpp>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Api.h"

class QRMISAX_Parser;
class WQSInputStream;

namespace qrm {
class EventReader;
}

XERCES_CPP_NAMESPACE_BEGIN
class SAX2XMLReader;
XERCES_CPP_NAMESPACE_END

/// The bytes of a std::istream for Xerces. The stream stays the caller's, has to outlive this, and is left where
/// reading stopped.
class QRMIDOM_API BinStreamInputStream : public xercesc::BinInputStream
{
public:
    /// Reads from the stream, which has to outlive this.
    explicit BinStreamInputStream(std::istream& stream);
    ~BinStreamInputStream() override;

    /// The stream's read position, modulo 2^32.
    XMLFilePos curPos() const override;

    /// Up to maxToRead bytes; 0 once the stream's end-of-file flag is set.
    XMLSize_t readBytes(XMLByte* const toFill, const XMLSize_t maxToRead) override;

    /// Always null: nothing is known of the content.
    const XMLCh* getContentType() const override;

private:
    std::istream* m_stream;
};

/// Presents a std::istream to Xerces, which finds out the encoding from the bytes. The stream stays the caller's and
/// has to outlive the parse. A parse to the end leaves the stream's end-of-file and fail flags set.
class QRMIDOM_API StreamInputSource : public xercesc::InputSource
{
public:
    /// Reads from the stream, which has to outlive this.
    explicit StreamInputSource(std::istream& stream);
    ~StreamInputSource() override;

    /// A new BinStreamInputStream over the same stream, the caller's to delete.
    /// @throws QRMOutOfMemoryError 0
    xercesc::BinInputStream* makeStream() const override;

private:
    std::istream& m_stream;
};

/// Turns the events of a Xerces reader into calls of its parser's callbacks. It belongs to QRMISAX_Parser.
class QRMIDOM_API DefaultHandlerImpl : public xercesc::DefaultHandler
{
public:
    /// @param owner the parser that has the callbacks; it outlives this
    explicit DefaultHandlerImpl(QRMISAX_Parser* owner);
    ~DefaultHandlerImpl() override;

    /// Leaves the entity to Xerces: gives null.
    xercesc::InputSource* resolveEntity(const XMLCh* const publicId, const XMLCh* const systemId) override;
    /// Calls characterData().
    void characters(const XMLCh* const chars, const XMLSize_t length) override;
    /// Does nothing.
    void endDocument() override;
    /// Calls endElement() of the parser.
    void endElement(const XMLCh* const uri, const XMLCh* const localname, const XMLCh* const qname) override;
    /// Calls characterData().
    void ignorableWhitespace(const XMLCh* const chars, const XMLSize_t length) override;
    /// Calls processingInstruction() of the parser.
    void processingInstruction(const XMLCh* const target, const XMLCh* const data) override;
    /// Does nothing.
    void resetDocument() override;
    /// Does nothing.
    void setDocumentLocator(const xercesc::Locator* const locator) override;
    /// Does nothing.
    void startDocument() override;
    /// Calls startElement() of the parser.
    void startElement(const XMLCh* const uri, const XMLCh* const localname, const XMLCh* const qname,
                      const xercesc::Attributes& attrs) override;
    /// Calls startNamespaceDecl().
    void startPrefixMapping(const XMLCh* const prefix, const XMLCh* const uri) override;
    /// Calls endNamespaceDecl().
    void endPrefixMapping(const XMLCh* const prefix) override;
    /// Does nothing.
    void skippedEntity(const XMLCh* const name) override;
    /// @throws xercesc::SAXParseException a copy: the first error ends the parse
    [[noreturn]] void error(const xercesc::SAXParseException& exc) override;
    /// @throws xercesc::SAXParseException a copy
    [[noreturn]] void fatalError(const xercesc::SAXParseException& exc) override;
    /// Does nothing.
    void warning(const xercesc::SAXParseException& exc) override;
    /// Called when a parse begins.
    void resetErrors() override;
    /// Does nothing.
    void notationDecl(const XMLCh* const name, const XMLCh* const publicId,
                      const XMLCh* const systemId) override;
    /// Does nothing.
    void resetDocType() override;
    /// Does nothing.
    void unparsedEntityDecl(const XMLCh* const name, const XMLCh* const publicId, const XMLCh* const systemId,
                            const XMLCh* const notationName) override;
    /// Calls comment() of the parser.
    void comment(const XMLCh* const chars, const XMLSize_t length) override;

private:
    QRMISAX_Parser* m_pOwner;
};

/// Parses documents event by event: derive from it and override the callbacks. A document may be larger than memory.
///
/// The callbacks get NUL-terminated UTF-8, which lasts until they return. An element's name is its namespace URI, the
/// byte 1 and its local name; without a namespace the local name alone. An attribute's name is the same with its
/// prefixed name in place of the local one. Declarations of namespaces are no attributes; they come through
/// startNamespaceDecl(). Text comes in pieces of any size: references, CDATA sections and the parser's own buffers
/// divide it, characters are never divided. White space that a DTD makes ignorable comes as text as well.
///
/// parse() gives 1, or 0 for a document that is wrong or cannot be read, and leaves a record: code, text, line and
/// column. It throws what a callback throws, as it is; the parser can be used again after that, as after any failure.
/// A parser and its callbacks belong to one thread at a time, and a callback must not parse with the same parser: that
/// gives 0 with code 39 and leaves the outer parse in peace.
class QRMIDOM_API QRMISAX_Parser
{
public:
    /// What setFeature() switches, as SAX2 and Xerces name it.
    enum SAXFeature
    {
        FEATURE_NAMESPACES = 0,
        FEATURE_NAMESPACE_PREFIXES = 1,
        FEATURE_VALIDATION = 2,
        FEATURE_CACHE_GRAMMAR_FROM_PARSE = 3,
        FEATURE_USE_CACHED_GRAMMAR_IN_PARSE = 4,
        FEATURE_SCHEMA = 5,
        FEATURE_DYNAMIC = 6
    };

    /// What setProperty() sets.
    enum SAXProperty
    {
        PROPERTY_EXTERNAL_SCHEMA_LOCATION = 0
    };

    /// What setParamEntityParsing() takes.
    enum ParamEntityParsing
    {
        PARAM_ENTITY_PARSING_NEVER = 0,
        PARAM_ENTITY_PARSING_UNLESS_STANDALONE = 1,
        PARAM_ENTITY_PARSING_ALWAYS = 2
    };

    /// A parser that processes namespaces and does not validate.
    /// @throws QRMOutOfMemoryError 300 when Xerces runs out of memory
    QRMISAX_Parser();
    QRMISAX_Parser(const QRMISAX_Parser&) = delete;
    QRMISAX_Parser& operator=(const QRMISAX_Parser&) = delete;
    virtual ~QRMISAX_Parser();

    // Callbacks. They do nothing by themselves. The order is part of the interface.

    /// @param atts name, value, name, value, ... in the order of the document, then null
    virtual void startElement(const char* name, const char** atts);
    /// The end of an element, an empty one too. The name is that of its start.
    virtual void endElement(const char* name);
    /// Never called.
    virtual void notationDecl(const char* notationName, const char* base, const char* systemId,
                              const char* publicId);
    /// @param data empty where there is none
    virtual void processingInstruction(const char* target, const char* data);
    /// A comment, also one in the DTD, without its marks.
    virtual void comment(const char* data);
    /// Never called: what is in a CDATA section is text.
    virtual void startCDataSection();
    /// Never called.
    virtual void endCDataSection();
    /// @param len in bytes, without the zero byte that follows
    virtual void characterData(const char* s, int len);
    /// Before the startElement() of the element that has the declaration.
    /// @param prefix empty for the default namespace
    virtual void startNamespaceDecl(const char* prefix, const char* uri);
    /// After the endElement() of that element.
    virtual void endNamespaceDecl(const char* prefix);
    /// Never called.
    virtual void defaultHandler(const char* s, int len);
    /// Never called.
    virtual void unparseEntityDecl(const char* entityName, const char* base, const char* systemId,
                                   const char* publicId, const char* notationName);
    /// Never called. Gives 0.
    virtual int notStandalone();
    /// Never called. Gives 0.
    virtual int externalEntityRef(const char* context, const char* base, const char* systemId,
                                  const char* publicId);

    /// Parses what the source gives; the other forms all come here.
    /// @return 1, or 0 with a record
    /// @throws QRMOutOfMemoryError 300 when Xerces runs out of memory, 0 when there is none for the strings of an event
    virtual int parse(xercesc::InputSource& src);

    /// Parses a file or, where no file of that name can be opened, a URL.
    /// @param name null gives 0 and leaves the record as it is; for a name that is neither, 0 and the text
    ///        "... does not exist.\n", with the code of before; beyond 3840 bytes 0, code -5 and a text
    int parse(const char* name);

    /// Parses bytes in memory, which stay the caller's. Null or a length below 1 is a document without content.
    int parse(const char* buffer, int length);

    /// Parses what the stream has from its current position on, as StreamInputSource tells.
    int parse(std::istream& in);
    /// @overload
    int parse(WQSInputStream& in);

    // Settings. They hold from the next parse on.

    /// Switches a feature on (not 0) or off.
    /// @return 1; 0 where there is no such feature, or not now
    /// @throws QRMOutOfMemoryError 300
    int setFeature(SAXFeature f, int value);
    /// @return 1 or 0; 0 for an unknown feature, too
    /// @throws QRMOutOfMemoryError 300
    int getFeature(SAXFeature f) const;

    /// Sets a property to a text in the local code page, UTF-8; null for none.
    /// @return 1; 0 where there is no such property, or not now
    /// @throws QRMOutOfMemoryError 300
    int setProperty(SAXProperty p, const char* value);
    /// @return a new text, for the caller to free with delete[]; null where it is not set or unknown
    /// @throws QRMOutOfMemoryError 300
    char* getProperty(SAXProperty p) const;

    /// Does nothing.
    void setParamEntityParsing(ParamEntityParsing parsing);

    // What documents from anywhere may not do, as the settings of the same names of QRMIDOM_Parser tell. They give 1, or
    // 0 during a parse.

    /// See QRMIDOM_Parser::setLoadExternalDTD().
    int setLoadExternalDTD(int flag);
    /// See QRMIDOM_Parser::setRefuseExternal().
    int setRefuseExternal(int flag);
    /// See QRMIDOM_Parser::setEntityExpansionLimit().
    int setEntityExpansionLimit(unsigned int limit);
    /// See QRMIDOM_Parser::setDepthLimit().
    int setDepthLimit(unsigned int levels);
    /// See QRMIDOM_Parser::setAmplificationLimit().
    int setAmplificationLimit(unsigned int factor, unsigned long from = 8UL << 20);

    // The record of the last failure. A parse sets the code to 0 when it begins and leaves the rest.

    /// 0 for none; -1 for a document that is wrong; -5 for a name that is too long; or the code of Xerces.
    int getErrorCode() const { return m_errorCode; }
    /// Sets the code of the record.
    void setErrorCode(int code) { m_errorCode = code; }
    /// The line of the last failure, from 1; 0 where it has none.
    int getCurrentLineNumber() const { return m_lineNumber; }
    /// The column of the last failure, from 1; 0 where it has none.
    int getCurrentColumnNumber() const { return m_columnNumber; }
    /// Always 0.
    int getCurrentByteIndex() const { return 0; }
    /// In the local code page, UTF-8; null before the first failure that has a text. Lasts until the next one.
    const char* errorString() const { return m_errorText; }

private:
    friend class DefaultHandlerImpl;

    qrm::EventReader& reader() const;
    void replaceSpentReader();
    int recordFailure(int code, int line, const XMLCh* text);
    void setErrorText(std::unique_ptr<char[]> text);
    int parseUrl(const char* name);

    xercesc::SAX2XMLReader* m_parserImpl = nullptr;
    DefaultHandlerImpl m_handler;
    int m_errorCode = 0;
    int m_lineNumber = 0;
    int m_columnNumber = 0;
    char* m_errorText = nullptr;
};

#endif
