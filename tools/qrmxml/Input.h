#ifndef QRMXML_INPUT_H
#define QRMXML_INPUT_H

#include <memory>
#include <string>

#include <WQSStreams/WQSInputStream.h>
#include <sys/types.h>

/// The bytes of a file, of standard input for "-", or of a URL where there is no such file. Shows on standard error how
/// far it has come where that takes long and somebody can see it.
class Input : public WQSInputStream
{
public:
    using WQSInputStream::read;
    using WQSInputStream::readFully;

    /// @throws Trouble when it cannot be read
    Input(const std::string& name, bool noProgress);
    ~Input() override;

    int read(QRMByteBuffer& buffer, int count) override;
    int read(char* dest, int count) override;
    int read() override;
    void close() override;

    /// Why reading stopped before the end; empty where it did not.
    const std::string& failure() const { return m_failure; }

    class Source;

private:
    void showProgress();

    std::unique_ptr<Source> m_source;
    bool m_showsProgress;
    off_t m_size; // 0: not known
    off_t m_done = 0;
    int m_shown = -1; // per cent or, without a size, MiB
    std::string m_failure;
};

#endif
