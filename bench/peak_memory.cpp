// Parses a document once, raw or through the library, and prints the peak of resident memory in KiB.

#include <cstdio>
#include <cstring>

#include <QRMUtils/XML/DOMInterface/QRMIDOM_DOMImplementation.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Parser.h>
#include <sys/resource.h>

#include "bench/documents.h"
#include "bench/peers.h"

int main(int argc, char** argv)
{
    if (argc != 2 || (std::strcmp(argv[1], "raw") != 0 && std::strcmp(argv[1], "handles") != 0)) {
        std::fputs("usage: peak_memory raw|handles\n", stderr);
        return 2;
    }
    const std::string text = documents::records(50000);
    QRMIDOM_DOMImplementation::initialize();
    if (std::strcmp(argv[1], "raw") == 0) {
        const peers::Document document = peers::Parser().parse(text);
    } else {
        QRMIDOM_Parser parser;
        QRMIDOM_Document document;
        if (parser.parse(text.data(), static_cast<int>(text.size()), document) != 1) {
            return 1;
        }
    }
    QRMIDOM_DOMImplementation::terminate();
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("%ld\n", usage.ru_maxrss);
    return 0;
}
