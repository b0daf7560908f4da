// The tree that the parser makes of any bytes is the one that Xerces' own parser makes, whole or broken off.

#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_DOMImplementation.h"
#include "tests/support/TreeComparison.h"

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/)
{
    QRMIDOM_DOMImplementation::initialize();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2) {
        return 0; // no bytes are refused before they come to Xerces
    }
    tree_comparison::Settings settings;
    settings.validates = (data[0] & 1) != 0;
    settings.loadsExternal = false;
    const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
    if (text[0] == 0) {
        return 0; // as are those that begin with a zero byte
    }
    const std::string difference = tree_comparison::differenceOf(text, settings);
    if (!difference.empty()) {
        std::fprintf(stderr, "%s\n", difference.c_str());
        std::abort();
    }
    return 0;
}
