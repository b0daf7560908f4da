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
    explicit QRMIDOM_DOMException(unsigned short code) : m_code(code) {}
    QRMIDOM_DOMException(const QRMIDOM_DOMException&) = default;
    QRMIDOM_DOMException& operator=(const QRMIDOM_DOMException&) = default;
    virtual ~QRMIDOM_DOMException();

    unsigned short getCode() const { return m_code; }

private:
    unsigned short m_code = 0;
};

#endif
