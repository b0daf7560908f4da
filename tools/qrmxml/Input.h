#ifndef QRMXML_INPUT_H
#define QRMXML_INPUT_H

#include <string>

#include <WQSStreams/WQSInputStream.h>
#include <sys/types.h>

/// The bytes of a file, or of standard input for "-". Shows on standard error how far it has come where that takes long
/// and somebody can see it.
class Input : public WQSInputStream
{
public:
    using WQSInputStream::read;
    using WQSInputStream::readFully;

    /// @throws Trouble when the file cannot be read
    Input(const std::string& name, bool noProgress);
    ~Input() override;

    int read(QRMByteBuffer& buffer, int count) override;
    int read(char* dest, int count) override;
    int read() override;
    void close() override;

    /// Why reading stopped before the end; empty where it did not.
    const std::string& failure() const { return m_failure; }

private:
    void showProgress();

    int m_descriptor;
    off_t m_size = 0; // 0: not known, or too little to show
    off_t m_done = 0;
    int m_percent = -1;
    std::string m_failure;
};

#endif
