// The tree that the parser makes of any bytes is the one that Xerces' own parser makes, whole or broken off.

#include "fuzz/Fuzz.h"
#include "tests/support/TreeComparison.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    tree_comparison::Settings settings;
    settings.validates = (input.choice() & 1) != 0;
    settings.loadsExternal = false;
    const std::string text = input.rest();
    if (text.empty() || text[0] == 0) {
        return 0; // refused before it comes to Xerces
    }
    const std::string difference = tree_comparison::differenceOf(text, settings);
    fuzz::require(difference.empty(), difference);
    return 0;
}
