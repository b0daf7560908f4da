#include <gtest/gtest.h>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_DOMImplementation.h"

/// The main program of tests that need the library started.
int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    QRMIDOM_DOMImplementation::initialize();
    const int result = RUN_ALL_TESTS();
    QRMIDOM_DOMImplementation::terminate();
    return result;
}
