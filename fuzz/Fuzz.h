#ifndef QRM_FUZZ_FUZZ_H
#define QRM_FUZZ_FUZZ_H

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace fuzz {

/// Ends the program where something does not hold; the fuzzer keeps the input.
inline void require(bool holds, const std::string& what)
{
    if (!holds) {
        std::fprintf(stderr, "%s\n", what.c_str());
        std::abort();
    }
}

/// Bytes that say what to do, and then what to do it with.
class Input
{
public:
    Input(const std::uint8_t* data, std::size_t size) : m_bytes(reinterpret_cast<const char*>(data), size) {}

    /// The next byte, 0 at the end.
    unsigned choice() { return m_at < m_bytes.size() ? static_cast<unsigned char>(m_bytes[m_at++]) : 0; }

    /// The bytes up to the next zero byte, which is left out.
    std::string text()
    {
        const std::size_t end = m_bytes.find('\0', m_at);
        const std::string result = m_bytes.substr(m_at, end - m_at);
        m_at = end == std::string::npos ? m_bytes.size() : end + 1;
        return result;
    }

    std::string rest() const { return m_bytes.substr(m_at); }

private:
    std::string m_bytes;
    std::size_t m_at = 0;
};

} // namespace fuzz

#endif
