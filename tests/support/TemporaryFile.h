#ifndef QRM_TESTS_TEMPORARYFILE_H
#define QRM_TESTS_TEMPORARYFILE_H

#include <fstream>
#include <string>

#include <gtest/gtest.h>
#include <unistd.h>

/// A file with some content, for the length of a scope. Always of the same name, so one at a time.
class TemporaryFile
{
public:
    explicit TemporaryFile(const std::string& content) { std::ofstream(m_name, std::ios::binary) << content; }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() { ::unlink(m_name.c_str()); }

    const char* name() const { return m_name.c_str(); }

    /// The name that the file has while there is one.
    static std::string nameOfAny() { return testing::TempDir() + "qrm-file-" + std::to_string(::getpid()); }

private:
    std::string m_name = nameOfAny();
};

#endif
