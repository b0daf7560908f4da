#include "QRMUtils/XML/DOMInterface/internal/Guards.h"

namespace qrm {

namespace {
constexpr const char* kThrow = "QRM_THROW";
} // namespace

void raiseAssert(const char* text, QRMFileLocation site)
{
    QRMAssertError(0, text).hurl(site, nullptr, kThrow);
}

void raiseNullHandle(QRMFileLocation site)
{
    raiseAssert("QRM_ASSERT(m_nodeImpl != NULL);", site);
}

void raiseXercesOutOfMemory(QRMFileLocation site)
{
    QRMOutOfMemoryError(300, "Out of memory").hurl(site, "QRMIDOM -> Xerces", kThrow);
}

void raiseAllocationFailed(QRMFileLocation site)
{
    QRMOutOfMemoryError(0, nullptr).hurl(site, nullptr, kThrow);
}

void raiseStdException(const std::exception& error, QRMFileLocation site)
{
    QRMStdExceptionError(error).hurl(site, nullptr, kThrow);
}

void raiseDOMException(unsigned short code)
{
    throw QRMIDOM_DOMException(code);
}

} // namespace qrm
