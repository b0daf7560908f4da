#include <QRMUtils/XML/DOMInterface/QRMIDOM_DOMImplementation.h>
#include <benchmark/benchmark.h>

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    QRMIDOM_DOMImplementation::initialize();
    benchmark::RunSpecifiedBenchmarks();
    QRMIDOM_DOMImplementation::terminate();
    return 0;
}
