#ifndef QRMXML_OUTPUT_H
#define QRMXML_OUTPUT_H

#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>

#include <QRMCore/I18NString.h>

/// What keeps the tool from doing its work, and which file it has to do with.
class Trouble : public std::runtime_error
{
public:
    Trouble(std::string name, const std::string& text) : std::runtime_error(text), m_name(std::move(name)) {}
    const std::string& name() const { return m_name; }

private:
    std::string m_name;
};

/// Whoever reads our output has gone: there is nothing left to do, and nothing to say.
class ReaderGone
{
};

/// Prints "NAME: error: TEXT" to standard error, with line and column where they are known (not 0), and then with what
/// the file of that name has at the place, if it can be shown.
void reportError(const std::string& name, const std::string& text, int line = 0, int column = 0);

/// Text for people: control characters, marks that turn the direction of writing, and bytes that are no UTF-8 as
/// escapes.
std::string visible(const std::string& utf8);

/// The code units of a text that is shown where nobody says how much room there is.
constexpr int kShortUnits = 60;

/// The beginning of a text, so many code units at most, with "..." where it goes on.
std::string shortened(const I18NString& text, int maxUnits = kShortUnits);

/// A place to write to. A regular file gets its new content when all of it is there, and stays what it was when
/// anything fails or a signal ends the tool; pipes, devices, open descriptors (/dev/fd) and standard output ("-") are
/// written as the bytes come.
class Output
{
public:
    /// @throws Trouble when the place cannot be written
    explicit Output(const std::string& name);
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;
    /// Without commit(), a file stays what it was.
    ~Output();

    std::ostream& stream();

    /// Makes what was written the content.
    /// @throws Trouble when anything could not be written
    /// @throws ReaderGone when the other end of a pipe is closed
    void commit();

private:
    class Buffer;

    int open();
    int openTemporary();
    [[noreturn]] void fail(int error) const;

    std::string m_name;      // as the user gave it
    std::string m_target;    // where it leads
    std::string m_temporary; // empty where the target is written directly
    std::unique_ptr<Buffer> m_buffer;
    std::unique_ptr<std::ostream> m_stream;
};

#endif
