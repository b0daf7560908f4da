#ifndef QRMIDOM_HELPER_H
#define QRMIDOM_HELPER_H

#include <cstdio>
#include <iosfwd>

#include "QRMCore/I18NString.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Api.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Node.h"

class DomWriter;

/// Static operations on trees and on text.
///
/// Encodings are named as I18NConverter takes them; null is the default, UTF-8. Conversion errors come as
/// I18NConversionError. Null text is empty text; a null FILE fails with QRMAssertError. Errors of a stream or file that is written to are not looked at: ask the stream afterwards.
class QRMIDOM_API QRMIDOM_Helper
{
public:
    // A node with its subtree, as DomWriter::operator<< writes it.

    /// Writes to a file, which is made or emptied first: when writing fails half-way, what is there stays there. Errors
    /// while the file is written or closed are not reported. Write beside the file and rename where that matters.
    /// @throws QRMSystemError 0, "System error occured while trying to write (QRMIDOM_Helper::write): " and the path
    ///         when the file cannot be opened; 0, "Unknown error occured while doing QRMIDOM_Helper::write" for errors
    ///         that are no QRMThrowable
    /// @throws QRMOutOfMemoryError 300 when Xerces runs out of memory
    static void write(QRMIDOM_Node node, const char* path, const char* encoding);
    static void write(QRMIDOM_Node node, std::ostream& stream, const char* encoding);
    static void write(QRMIDOM_Node node, std::FILE* file, const char* encoding);
    static void write(QRMIDOM_Node node, DomWriter& writer);

    // Text with the five markup characters replaced by entities, without header or line end. Output stops at the first
    // zero byte of the converted text, so encodings of two or four bytes a character are not for these.

    static void write(std::ostream& stream, const I18NString& text, const char* encoding);
    static void write(std::FILE* file, const I18NString& text, const char* encoding);
    /// Converts the text to the writer's encoding first; a character that it cannot express is written as a decimal
    /// character reference.
    static void write(DomWriter& writer, const I18NString& text);
    /// Takes the NUL-terminated bytes as they are.
    static void write(DomWriter& writer, const char* text);

    // Text as it is.

    static void writeNoEscape(DomWriter& writer, const I18NString& text);
    static void writeNoEscape(DomWriter& writer, const char* text);
    /// Converts to the default encoding, whatever encoding is named.
    static void writeNoEscape(std::ostream& stream, const I18NString& text, const char* encoding);
    /// Writes the NUL-terminated bytes, whatever encoding is named.
    static void writeNoEscape(std::ostream& stream, const char* text, const char* encoding);
    static void writeNoEscape(std::FILE* file, const char* text, const char* encoding);

    /// The index of the first byte of `<`, `>`, `&`, `'` and `"` from start, below end; -1 where there is none. A zero
    /// byte does not end the search, and a negative start is the caller's promise that there is something to read.
    static int findSpecialChar(const char* text, int start, int end);
};

#endif
