#ifndef I18NCONVERTER_H
#define I18NCONVERTER_H

#include <cstddef>

#include "QRMCore/QRMCore_Api.h"

class I18NString;

/// Gives memory for a converted string: at least `bytes` bytes. The context is the caller's own.
typedef void* (*I18NAllocator)(void* context, std::size_t bytes);

/// Gives the character to put in the place of a lone surrogate.
typedef char32_t (*I18NErrorCallback)(void* context, char16_t unit);

/// new char[bytes]; the context is not used. Strings from it are freed with delete[].
/// @throws std::bad_alloc
QRMCORE_API void* QRMI18NStringAllocator(void* context, std::size_t bytes);

/// Converts from UTF-16 to a named encoding. Costs next to nothing to make; the machinery behind the less usual
/// encodings is kept open per thread, whatever the life of the converters. A converter serves one thread at a time.
///
/// Names are those of ICU, in any case. Null is the default, UTF-8. "UTF-16" means this machine's byte order without a
/// byte-order mark.
class QRMCORE_API I18NConverter
{
public:
    /// @param encoding copied
    /// @throws I18NConversionError for an unknown name
    explicit I18NConverter(const char* encoding = nullptr);

    /// Converts NUL-terminated text.
    /// @param source null is the same as empty
    /// @return memory from the allocator: the bytes, ended by the encoding's own null
    /// @throws I18NConversionError for a character that the encoding cannot express, lone surrogates included
    char* fromUnicode(const char16_t* source, I18NAllocator allocator, void* context = nullptr) const;

    /// The same, but gives null where the encoding cannot express a character.
    char* fromUnicodeIfExpressible(const char16_t* source, I18NAllocator allocator,
                                   void* context = nullptr) const;

    /// The last character of the encoding, where it is UTF-8 (U+10FFFF), ISO-8859-1 (U+00FF) or US-ASCII (U+007F): these
    /// have every character up to the last one, and each ASCII character as the one byte of its own value. 0 for any
    /// other encoding.
    char32_t lastDirect() const;

    /// The bytes of the encoding's null: 1, 2 or 4.
    int sizeofLegacyNull() const;

    /// The name as it was given; null for the default.
    const char* getEncoding() const { return m_isDefault ? nullptr : m_name; }

    /// The index, in code units from 0, of the first character from `from` on that the encoding cannot express, a
    /// lone surrogate included; -1 where there is none.
    int firstUnexpressible(const I18NString& text, int from = 0) const;

private:
    friend class I18NString;

    static constexpr int kMaxNameLength = 60;

    int m_codec;
    bool m_isDefault;
    char m_name[kMaxNameLength + 1];
};

#endif
