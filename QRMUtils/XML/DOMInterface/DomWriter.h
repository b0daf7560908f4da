#ifndef DOMWRITER_H
#define DOMWRITER_H

#include <memory>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Api.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Node.h"

/// The sink of all serialization: derive from it to receive the bytes. One thread at a time uses a writer.
class QRMIDOM_API DomWriter
{
public:
    /// A writer without an encoding name: text is written in the default encoding, UTF-8, and the header says so.
    /// @throws QRMOutOfMemoryError 0
    DomWriter();

    /// @param encoding a name as I18NConverter takes it, copied and not checked here; null is the same as none
    /// @throws QRMOutOfMemoryError 0
    explicit DomWriter(const char* encoding);

    DomWriter(const DomWriter&) = delete;
    DomWriter& operator=(const DomWriter&) = delete;
    virtual ~DomWriter();

    /// Takes `length` bytes, which may be 0, as they are.
    virtual void write(const char* data, int length) = 0;

    /// Ends a line.
    virtual void endline() = 0;

    /// The encoding that strings are converted to, asked for each string; null stands for the default. The header does
    /// not change with it.
    virtual const char* getOutputEncoding();

    /// The XML declaration with a line end.
    const char* getXMLHeader() const { return m_header.get(); }

    /// Writes the node with its subtree; nothing for a null handle, an attribute, a fragment or a notation. A document
    /// gets the header before it and the end of the line after it. Defaulted attributes are left out; entity
    /// references are written as references. The depth of the tree costs no stack.
    ///
    /// A character of text or of an attribute value that the encoding cannot express is written as a decimal character
    /// reference.
    /// @throws I18NConversionError for an unknown encoding, for a name, comment, CDATA section, processing instruction
    ///         or declaration that the encoding cannot express, and for a lone surrogate; what was written before
    ///         stays in the sink
    DomWriter& operator<<(QRMIDOM_Node& node);

private:
    std::unique_ptr<char[]> m_encoding;
    std::unique_ptr<char[]> m_header;
};

#endif
