#ifndef QRMXML_TERMINAL_H
#define QRMXML_TERMINAL_H

#include <string>

/// What is known of a descriptor that text for people goes to.
class Terminal
{
public:
    explicit Terminal(int descriptor);

    /// Columns, 0 where it is no terminal.
    int width() const { return m_width; }

    enum class Style
    {
        kPlain,
        kError,
        kName,
        kValue,
        kNote
    };

    /// The text in a style, where the terminal has colours and the user wants them (NO_COLOR is not set).
    std::string styled(const std::string& text, Style style) const;

private:
    int m_width = 0;
    bool m_hasColors = false;
};

/// The columns that visible UTF-8 text takes.
int columnsOf(const std::string& utf8);

/// The beginning of visible UTF-8 text that fits into so many columns.
std::string fitting(const std::string& utf8, int columns);

/// The same with a "…" in the last column where something is left out.
std::string clipped(const std::string& utf8, int columns);

#endif
