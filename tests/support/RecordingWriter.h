#ifndef QRM_TESTS_RECORDINGWRITER_H
#define QRM_TESTS_RECORDINGWRITER_H

#include <string>
#include <vector>

#include "QRMUtils/XML/DOMInterface/DomWriter.h"

/// Keeps each call of the sink: a write as its bytes, the end of a line as "(endline)".
class RecordingWriter : public DomWriter
{
public:
    using DomWriter::DomWriter;
    void write(const char* data, int length) override
    {
        calls.emplace_back(data, static_cast<std::size_t>(length));
    }
    void endline() override { calls.emplace_back("(endline)"); }
    std::vector<std::string> calls;
};

#endif
