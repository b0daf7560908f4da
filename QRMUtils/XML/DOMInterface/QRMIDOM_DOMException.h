#ifndef QRMIDOM_DOMEXCEPTION_H
#define QRMIDOM_DOMEXCEPTION_H

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Api.h"

/// An operation that changes or creates nodes was refused. Carries the exception code of DOM Level 3 Core, 1 (index
/// size) to 16 (validation), and no text. Thrown by value; neither a QRMThrowable nor a std::exception.
class QRMIDOM_API QRMIDOM_DOMException
{
public:
    /// Code 0, which no operation throws.
    QRMIDOM_DOMException() = default;
    /// @overload
    explicit QRMIDOM_DOMException(unsigned short code) : m_code(code) {}
    /// @overload
    QRMIDOM_DOMException(const QRMIDOM_DOMException&) = default;
    /// Copies the code.
    QRMIDOM_DOMException& operator=(const QRMIDOM_DOMException&) = default;
    virtual ~QRMIDOM_DOMException();

    /// The code, as DOM Level 3 Core numbers it in ExceptionCode.
    unsigned short getCode() const { return m_code; }

private:
    unsigned short m_code = 0;
};

#endif
