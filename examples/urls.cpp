// Takes URLs apart, resolves one against another, and reads what a URL gives.
//
//     urls [URL]
//
// Without an argument it reads library.xml beside this source, as a file URL.

#include <iostream>
#include <memory>
#include <string>

#include <QRMCore/QRMByteBuffer.h>
#include <QRMCore/QRMThrowable.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_DOMImplementation.h>
#include <QRMUtils/XML/DOMInterface/XmlUrl.h>
#include <xercesc/util/XMLException.hpp>

namespace {

int run(const char* name)
{
    const XmlUrl url("http://reader@library.example:8080/books/list.xml?lang=en#first");
    std::cout << "host " << url.getHost() << ", port " << url.getPortNum() << ", path " << url.getPath()
              << ", query " << url.getQuery() << '\n';

    const XmlUrl resolved("http://library.example/books/list.xml", "../index.xml");
    std::cout << "resolved: " << resolved.getUrlText() << '\n';

    try {
        const XmlUrl wrong("mailto:reader@library.example");
    } catch (const xercesc::XMLException& error) { // Xerces' own, as it is
        std::cout << "no URL: " << I18NString(error.getMessage()) << '\n';
    }

    // What takes longer than this is given up.
    XmlUrl::setConnectTimeout(5000);
    XmlUrl::setStallTimeout(10000);
    const std::unique_ptr<WQSInputStream> stream(XmlUrl(name).makeNewStream());
    if (stream == nullptr) {
        std::cerr << name << " cannot be opened\n";
        return 1;
    }
    QRMByteBuffer buffer;
    std::string content;
    for (int count = 0; (count = stream->read(buffer, 4096)) > 0;) {
        content.append(buffer.data(), static_cast<std::size_t>(count));
    }
    std::cout << "it begins with " << content.substr(0, content.find('\n')) << '\n';
    return std::cout ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    QRMIDOM_DOMImplementation::initialize();
    int status = 1;
    try {
        status = run(argc > 1 ? argv[1] : SAMPLE_URL);
    } catch (const QRMThrowable& error) {
        std::cerr << error.what() << '\n';
    } catch (const xercesc::XMLException& error) {
        std::cerr << I18NString(error.getMessage()) << '\n';
    }
    QRMIDOM_DOMImplementation::terminate();
    return status;
}
