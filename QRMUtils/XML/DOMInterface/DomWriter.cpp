#include "QRMUtils/XML/DOMInterface/DomWriter.h"

#include <cstddef>
#include <cstring>

#include "QRMUtils/XML/DOMInterface/internal/Guards.h"
#include "QRMUtils/XML/DOMInterface/internal/TreeWriter.h"

namespace {

constexpr const char* kHeaderStart = "<?xml version=\"1.0\" encoding=\"";
constexpr const char* kHeaderEnd = "\"?>\n";
constexpr const char* kDefaultEncoding = "UTF-8";

std::unique_ptr<char[]> allocate(std::size_t bytes, QRMFileLocation site)
{
    return std::unique_ptr<char[]>(qrm::allocated(site, [bytes] { return new (std::nothrow) char[bytes]; }));
}

std::unique_ptr<char[]> copyOf(const char* text, QRMFileLocation site)
{
    const std::size_t bytes = std::strlen(text) + 1;
    auto copy = allocate(bytes, site);
    std::memcpy(copy.get(), text, bytes);
    return copy;
}

std::unique_ptr<char[]> headerFor(const char* encoding, QRMFileLocation site)
{
    auto header =
        allocate(std::strlen(kHeaderStart) + std::strlen(encoding) + std::strlen(kHeaderEnd) + 1, site);
    // NOLINTNEXTLINE(clang-analyzer-security.insecureAPI.strcpy): the sizes are added up above
    std::strcat(std::strcat(std::strcpy(header.get(), kHeaderStart), encoding), kHeaderEnd);
    return header;
}

} // namespace

DomWriter::DomWriter() : m_header(headerFor(kDefaultEncoding, QRM_SITE_HERE))
{
}

DomWriter::DomWriter(const char* encoding)
{
    if (encoding != nullptr) {
        m_encoding = copyOf(encoding, QRM_SITE_HERE);
        m_header = headerFor(encoding, QRM_SITE_HERE);
    } else {
        m_header = headerFor(kDefaultEncoding, QRM_SITE_HERE);
    }
}

DomWriter::~DomWriter() = default;

const char* DomWriter::getOutputEncoding()
{
    return m_encoding.get();
}

DomWriter& DomWriter::operator<<(QRMIDOM_Node& node)
{
    if (!node.isNull()) {
        qrm::TreeWriter(*this).write(node);
    }
    return *this;
}
