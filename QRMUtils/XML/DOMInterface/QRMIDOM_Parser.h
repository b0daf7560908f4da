#ifndef QRMIDOM_PARSER_H
#define QRMIDOM_PARSER_H

#include <iosfwd>

#include <xercesc/sax/InputSource.hpp>

#include "QRMCore/I18NString.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Api.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Document.h"

class DOM_ParserImpl;
class ErrorHandlerImpl;
class WQSInputStream;

/// Turns XML text into a document. A parser serves one thread at a time and any number of documents, one after the
/// other; the documents outlive it.
///
/// A document that cannot be parsed throws nothing: parse() gives 0, and the error record (code, line, column, text)
/// tells why. The record stays as it is until the next failure, so read it after a 0 only. The first error ends the
/// parse; warnings are dropped. Namespaces are processed, white space is kept, and by default nothing is validated and
/// external entities and DTDs are loaded.
class QRMIDOM_API QRMIDOM_Parser
{
public:
    /// @param grammarCaching 1 to keep the grammars loaded in a parse and to use them in it; anything else not to. They
    ///        are given up at the end of each parse. Documents with an internal subset do not parse with it.
    /// @throws QRMOutOfMemoryError 0
    explicit QRMIDOM_Parser(int grammarCaching = 0);
    QRMIDOM_Parser(const QRMIDOM_Parser&) = delete;
    QRMIDOM_Parser& operator=(const QRMIDOM_Parser&) = delete;
    virtual ~QRMIDOM_Parser();

    // All forms give 1 for success and 0 for failure, and put into doc what was built: the document; after a failure
    // the part that there is, or the null handle. Where the input is refused before the parse, doc and the error
    // record stay as they are. They throw QRMOutOfMemoryError 300 when Xerces runs out of memory; the parser can be
    // used again after that.

    /// Parses a file. A null name, or a file that cannot be opened, is refused. The name is never taken for a URL.
    int parse(const char* fileName, QRMIDOM_Document& doc);

    /// Parses `length` bytes, which stay the caller's. Null, a length of 0 or less, and a first byte of 0 are refused.
    int parse(const char* buffer, int length, QRMIDOM_Document& doc);

    /// Parses what the stream delivers from where it stands up to its end; it stays the caller's.
    int parse(std::istream& in, QRMIDOM_Document& doc);
    /// @overload
    int parse(WQSInputStream& in, QRMIDOM_Document& doc);

    /// Parses any source of Xerces. The other forms all end here.
    virtual int parse(xercesc::InputSource& src, QRMIDOM_Document& doc);

    /// The code of the last failure: -1 for an error in the document, the code of Xerces for an error of its own; 0
    /// before the first one.
    int getErrorCode() const { return m_errorCode; }

    /// The line of the last failure, from 1; 0 where none is known.
    int getCurrentLineNumber() const { return m_lineNumber; }

    /// The column of the last failure, from 1, one past what was read; 0 where none is known.
    int getCurrentColumnNumber() const { return m_columnNumber; }

    /// What Xerces said of the last failure; empty before the first one.
    I18NString errorString() const { return m_errorText; }
    /// @overload
    void errorString(I18NString& out) const { out = m_errorText; }

    // Settings. They hold from the next parse on; flags are 0 or not 0.

    /// Whether documents are validated against their DTD or schema; off at first.
    int getDoValidation() const;
    /// Whether documents are validated: 1 always, 0 never.
    void setDoValidation(int flag);

    /// Whether a DTD that stands outside the document is loaded when not validating; on at first.
    void setLoadExternalDTD(int flag);

    /// Whether schemas are processed; off at first.
    int getDoSchema() const;
    /// Whether schemas are used: 1 or 0.
    void setDoSchema(int flag);

    /// Pairs of namespace URI and schema location, separated by blanks, for elements in namespaces; null for none. In
    /// the local code page, UTF-8.
    void setExternalSchemaLocation(const char* schemaLocation);

    /// The location of the schema for elements without a namespace; null for none.
    void setExternalNoNamespaceSchemaLocation(const char* schemaLocation);

    /// Whether external entities, DTDs and schemas that a document names are refused; off at first. With it, a
    /// reference to one ends the parse with code -1; only the schemas named by the two settings above, and what these
    /// include, are read. Switch the external DTD off besides to have it passed over instead.
    void setRefuseExternal(int flag);

    /// How many entity references a document may expand before the parse ends with code -1; 0, as at first, for no
    /// limit.
    void setEntityExpansionLimit(unsigned int limit);

    /// How many levels of elements a document may have before the parse ends with code -1; 0, as at first, for no limit.
    /// With many levels Xerces takes time with the square of their number.
    void setDepthLimit(unsigned int levels);

    /// How many times its own size a document may make of itself, by entities that are used again and again, before the
    /// parse ends with code -1: text and values of attributes, in UTF-16 units, against the bytes of the document.
    /// @param factor 0, as at first, for no limit
    /// @param from the units that every document may make, whatever its size
    void setAmplificationLimit(unsigned int factor, unsigned long from = 8UL << 20);

    /// Whether nodes of usual content are linked by the library itself, which takes about half of the time; on at first.
    /// The trees are the same.
    void setDirectLinking(int flag);

    /// In grammar-caching mode, gives up the cached grammars, as every parse does at its end; otherwise does nothing.
    void reset();

private:
    void replaceSpentParser();
    int recordFailure(int code);
    int recordFailure(int code, int line, const XMLCh* text);

    DOM_ParserImpl* m_parserImpl = nullptr;
    int m_grammarCaching;
    ErrorHandlerImpl* m_errorHandler = nullptr;
    int m_errorCode = 0;
    int m_lineNumber = 0;
    int m_columnNumber = 0;
    I18NString m_errorText;
};

#endif
