#include "tools/qrmxml/Terminal.h"

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <cwchar>

#include <sys/ioctl.h>
#include <unistd.h>

namespace {

constexpr int kUsualWidth = 80;

bool isSet(const char* variable)
{
    const char* const value = std::getenv(variable);
    return value != nullptr && *value != 0;
}

const char* codeOf(Terminal::Style style)
{
    switch (style) {
    case Terminal::Style::kError: return "1;31";
    case Terminal::Style::kName: return "36";
    case Terminal::Style::kValue: return "32";
    case Terminal::Style::kNote: return "2";
    default: return "";
    }
}

/// The bytes of the character that begins at an index of well-formed UTF-8.
std::size_t lengthAt(const std::string& utf8, std::size_t index)
{
    const auto lead = static_cast<unsigned char>(utf8[index]);
    return lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC2 ? 2 : 1;
}

int columnsAt(const std::string& utf8, std::size_t index, std::size_t length)
{
    static const bool knowsUtf8 = std::setlocale(LC_CTYPE, "C.UTF-8") != nullptr;
    wchar_t character = 0;
    std::mbstate_t state = {};
    if (length == 1 || !knowsUtf8
        || std::mbrtowc(&character, utf8.data() + index, length, &state) != length) {
        return 1;
    }
    return std::max(::wcwidth(character), 0);
}

} // namespace

Terminal::Terminal(int descriptor)
{
    if (::isatty(descriptor) == 0) {
        return;
    }
    struct winsize size = {};
    const bool isKnown = ::ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    m_width = isKnown ? size.ws_col : kUsualWidth;
    const char* const kind = std::getenv("TERM");
    m_hasColors = !isSet("NO_COLOR") && kind != nullptr && std::strcmp(kind, "dumb") != 0;
}

std::string Terminal::styled(const std::string& text, Style style) const
{
    return m_hasColors && style != Style::kPlain
               ? std::string("\033[") + codeOf(style) + "m" + text + "\033[0m"
               : text;
}

int columnsOf(const std::string& utf8)
{
    int columns = 0;
    for (std::size_t i = 0; i < utf8.size();) {
        const std::size_t length = lengthAt(utf8, i);
        columns += columnsAt(utf8, i, length);
        i += length;
    }
    return columns;
}

std::string fitting(const std::string& utf8, int columns)
{
    std::size_t end = 0;
    for (int taken = 0; end < utf8.size();) {
        const std::size_t length = lengthAt(utf8, end);
        taken += columnsAt(utf8, end, length);
        if (taken > columns) {
            break;
        }
        end += length;
    }
    return utf8.substr(0, end);
}

std::string clipped(const std::string& utf8, int columns)
{
    return columnsOf(utf8) <= columns ? utf8 : fitting(utf8, columns - 1) + "\u2026";
}
