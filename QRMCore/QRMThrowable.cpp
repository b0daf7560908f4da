#include "QRMCore/QRMThrowable.h"

namespace {

std::string orEmpty(const char* text)
{
    return text != nullptr ? text : "";
}

template <class Error>
[[noreturn]] void throwCopy(Error& error, const QRMFileLocation& location, const char* context,
                            const char* macroName)
{
    error.addBackTrace(location, context, macroName);
    throw Error(error);
}

} // namespace

QRMThrowable::QRMThrowable(long code, const char* text)
    : m_code(code), m_text(text != nullptr ? std::make_shared<const std::string>(text) : nullptr)
{
}

QRMThrowable::QRMThrowable(const QRMThrowable&) = default;

QRMThrowable& QRMThrowable::operator=(const QRMThrowable&) = default;

QRMThrowable::~QRMThrowable() = default;

const char* QRMThrowable::what() const noexcept
{
    const char* const text = getText();
    return text != nullptr ? text : className();
}

void QRMThrowable::addBackTrace(const QRMFileLocation& location, const char* context, const char* macroName)
{
    m_backTrace.push_back(
        {orEmpty(location.fileName), location.lineNumber, orEmpty(context), orEmpty(macroName)});
}

const char* QRMThrowable::className() const noexcept
{
    return "QRMThrowable";
}

void QRMAssertError::hurl(const QRMFileLocation& location, const char* context, const char* macroName)
{
    throwCopy(*this, location, context, macroName);
}

const char* QRMAssertError::className() const noexcept
{
    return "QRMAssertError";
}

void QRMSystemError::hurl(const QRMFileLocation& location, const char* context, const char* macroName)
{
    throwCopy(*this, location, context, macroName);
}

const char* QRMSystemError::className() const noexcept
{
    return "QRMSystemError";
}

void QRMOutOfMemoryError::hurl(const QRMFileLocation& location, const char* context, const char* macroName)
{
    throwCopy(*this, location, context, macroName);
}

const char* QRMOutOfMemoryError::className() const noexcept
{
    return "QRMOutOfMemoryError";
}

void I18NConversionError::hurl(const QRMFileLocation& location, const char* context, const char* macroName)
{
    throwCopy(*this, location, context, macroName);
}

const char* I18NConversionError::className() const noexcept
{
    return "I18NConversionError";
}

QRMStdExceptionError::QRMStdExceptionError(const std::exception& error) : QRMThrowable(0, error.what())
{
}

void QRMStdExceptionError::hurl(const QRMFileLocation& location, const char* context, const char* macroName)
{
    throwCopy(*this, location, context, macroName);
}

const char* QRMStdExceptionError::className() const noexcept
{
    return "QRMStdExceptionError";
}
