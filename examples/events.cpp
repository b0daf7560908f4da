// Reads a document event by event, however large it is: what the books of a library are called, and how many there are.
//
//     events [FILE|URL]
//
// Without an argument it reads library.xml beside this source.

#include <cstring>
#include <iostream>
#include <string>

#include <QRMCore/QRMThrowable.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_DOMImplementation.h>
#include <QRMUtils/XML/DOMInterface/QRMISAX_Parser.h>

namespace {

/// Derive from the parser and override the callbacks that matter. Strings are UTF-8 and last until the callback returns.
class Titles : public QRMISAX_Parser
{
public:
    using QRMISAX_Parser::parse; // an overridden callback hides nothing, but a parse() of one's own would

    int books = 0;

    /// A name is the namespace, the byte 1 and the local name.
    void startElement(const char* name, const char** atts) override
    {
        if (std::strcmp(name, "urn:example:library\1book") == 0) {
            ++books;
            for (; *atts != nullptr; atts += 2) {
                if (std::strcmp(atts[0], "id") == 0) {
                    std::cout << atts[1] << ": ";
                }
            }
        }
        m_isTitle = std::strcmp(name, "http://purl.org/dc/elements/1.1/\1title") == 0;
    }

    /// Text comes in pieces: keep them until the element ends.
    void characterData(const char* s, int len) override
    {
        if (m_isTitle) {
            m_title.append(s, static_cast<std::size_t>(len));
        }
    }

    void endElement(const char* /*name*/) override
    {
        if (m_isTitle) {
            std::cout << m_title << '\n';
            m_title.clear();
            m_isTitle = false;
        }
    }

private:
    bool m_isTitle = false;
    std::string m_title;
};

int run(const char* name)
{
    Titles titles;
    if (titles.parse(name) == 0) {
        std::cerr << name << ": " << titles.errorString() << '\n';
        return 1;
    }
    std::cout << titles.books << " books\n";
    return std::cout ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    QRMIDOM_DOMImplementation::initialize();
    int status = 1;
    try {
        status = run(argc > 1 ? argv[1] : SAMPLE_DOCUMENT);
    } catch (const QRMThrowable& error) {
        std::cerr << error.what() << '\n';
    }
    QRMIDOM_DOMImplementation::terminate();
    return status;
}
