#ifndef QRMTHROWABLE_H
#define QRMTHROWABLE_H

#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "QRMCore/QRMCore_Api.h"

/// A place in the sources that an error came by.
struct QRMFileLocation
{
    /// The base name of a source file.
    const char* fileName; // NUL-terminated, without folders
    /// A line of it, or the number that a guard has.
    int lineNumber;
};

/// Root of the family's errors: a code, a text, and the places the error came by. Copies share nothing that changes.
class QRMCORE_API QRMThrowable : public std::exception
{
public:
    /// A place that the error came through.
    struct BackTraceEntry
    {
        /// The base name of a source file.
        std::string fileName;
        /// A line of it, or the number that a guard has.
        int lineNumber;
        /// What the place was about; mostly empty.
        std::string context;
        /// "QRM_THROW" where the error began, "QRM_RETHROW" where it passed.
        std::string macroName;
    };

    /// @param text copied; null for none
    QRMThrowable(long code, const char* text);
    /// @overload
    QRMThrowable(const QRMThrowable&);
    /// Copies code, text and back trace.
    QRMThrowable& operator=(const QRMThrowable&);
    ~QRMThrowable() override;

    /// The code that the error was made with; 0 where there is none.
    long getCode() const { return m_code; }

    /// The text, valid as long as this object; null where there is none.
    const char* getText() const { return m_text != nullptr ? m_text->c_str() : nullptr; }

    /// The text, or the name of the class where there is none.
    const char* what() const noexcept override;

    /// Adds a place to the back trace. A null context or macro name is an empty string.
    void addBackTrace(const QRMFileLocation& location, const char* context, const char* macroName);

    /// The places added, oldest first.
    const std::vector<BackTraceEntry>& getBackTrace() const { return m_backTrace; }

protected:
    /// The name of the class of the error.
    virtual const char* className() const noexcept;

private:
    long m_code;
    std::shared_ptr<const std::string> m_text;
    std::vector<BackTraceEntry> m_backTrace;
};

/// A condition that callers have to keep does not hold.
class QRMCORE_API QRMAssertError : public QRMThrowable
{
public:
    /// Copies code, text and back trace.
    using QRMThrowable::QRMThrowable;
    /// Adds the location to the back trace and throws a copy of this error by its own type.
    [[noreturn]] void hurl(const QRMFileLocation& location, const char* context, const char* macroName);

protected:
    /// The name of the class of the error.
    const char* className() const noexcept override;
};

/// The operating system refused something.
class QRMCORE_API QRMSystemError : public QRMThrowable
{
public:
    /// Copies code, text and back trace.
    using QRMThrowable::QRMThrowable;
    /// Adds the location to the back trace and throws a copy of this error by its own type.
    [[noreturn]] void hurl(const QRMFileLocation& location, const char* context, const char* macroName);

protected:
    /// @overload
    const char* className() const noexcept override;
};

/// There is no memory for what was asked, or it is larger than can be counted.
class QRMCORE_API QRMOutOfMemoryError : public QRMThrowable
{
public:
    /// Copies code, text and back trace.
    using QRMThrowable::QRMThrowable;
    /// Adds the location to the back trace and throws a copy of this error by its own type.
    [[noreturn]] void hurl(const QRMFileLocation& location, const char* context, const char* macroName);

protected:
    /// @overload
    const char* className() const noexcept override;
};

/// Text cannot be converted: the encoding is unknown, the bytes are ill-formed, or a character is not in the encoding.
class QRMCORE_API I18NConversionError : public QRMThrowable
{
public:
    /// Copies code, text and back trace.
    using QRMThrowable::QRMThrowable;
    /// Adds the location to the back trace and throws a copy of this error by its own type.
    [[noreturn]] void hurl(const QRMFileLocation& location, const char* context, const char* macroName);

protected:
    /// @overload
    const char* className() const noexcept override;
};

/// An exception of the standard library in the family's dress: code 0 and its what().
class QRMCORE_API QRMStdExceptionError : public QRMThrowable
{
public:
    /// Takes over the text of the other error.
    explicit QRMStdExceptionError(const std::exception& error);
    /// Adds the location to the back trace and throws a copy of this error by its own type.
    [[noreturn]] void hurl(const QRMFileLocation& location, const char* context, const char* macroName);

protected:
    /// @overload
    const char* className() const noexcept override;
};

#endif
