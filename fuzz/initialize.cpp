#include "QRMUtils/XML/DOMInterface/QRMIDOM_DOMImplementation.h"

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/)
{
    QRMIDOM_DOMImplementation::initialize();
    return 0;
}
