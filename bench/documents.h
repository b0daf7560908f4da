#ifndef QRM_BENCH_DOCUMENTS_H
#define QRM_BENCH_DOCUMENTS_H

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

/// What the benchmarks work on: generated documents of different kinds, and real ones where they are installed.
namespace documents {

struct Sample
{
    std::string name;
    std::string text;
};

inline std::string records(int count)
{
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<orders xmlns=\"urn:orders\">\n";
    for (int i = 0; i < count; ++i) {
        const std::string number = std::to_string(i);
        text += "  <order id=\"o" + number + "\" state=\"open\">\n    <customer>Customer " + number
                + " &amp; Sons</customer>\n    <amount currency=\"EUR\">" + number
                + ".50</amount>\n  </order>\n";
    }
    return text + "</orders>\n";
}

inline std::string prose(int paragraphs)
{
    std::string text = "<book>";
    for (int i = 0; i < paragraphs; ++i) {
        text += "<p>It was a bright cold day in April, and the clocks were striking <em>thirteen</em>. "
                "\u0411\u044b\u043b \u044f\u0440\u043a\u0438\u0439 "
                "\u0445\u043e\u043b\u043e\u0434\u043d\u044b\u0439 "
                "\u0430\u043f\u0440\u0435\u043b\u044c\u0441\u043a\u0438\u0439 \u0434\u0435\u043d\u044c, and "
                "a line "
                "of text goes on for a while, as lines of text do in books.</p>";
    }
    return text + "</book>";
}

/// Elements with many attributes in namespaces, as drawings and spreadsheets have them.
inline std::string vectors(int count)
{
    std::string text = "<d:drawing xmlns:d=\"urn:drawing\" xmlns:s=\"urn:style\">";
    for (int i = 0; i < count; ++i) {
        const std::string number = std::to_string(i);
        text += "<d:line x1=\"" + number + "\" y1=\"0.5\" x2=\"" + number
                + ".25\" y2=\"-10\" s:stroke=\"#102030\" s:width=\"0.75\" d:layer=\"base\"/>";
    }
    return text + "</d:drawing>";
}

inline void addReal(std::vector<Sample>& samples, const std::string& name, const std::string& path)
{
    if (std::filesystem::exists(path)) {
        std::ifstream stream(path, std::ios::binary);
        std::string text(std::istreambuf_iterator<char>(stream), {});
        const std::size_t doctype = text.find("<!DOCTYPE");
        if (doctype != std::string::npos) {
            const std::size_t end = text.find_first_of("[>", doctype);
            if (text[end] == '>') {
                text.erase(doctype, end + 1 - doctype);
            }
        }
        samples.push_back({name, std::move(text)});
    }
}

/// All samples. Document types that only name a DTD outside are taken out, so that no side loads it.
inline const std::vector<Sample>& all()
{
    static const std::vector<Sample> samples = [] {
        std::vector<Sample> made = {
            {"records", records(10000)}, {"prose", prose(4000)}, {"vectors", vectors(8000)}};
        addReal(made, "mime", "/usr/share/mime/packages/freedesktop.org.xml");
        addReal(made, "iso_639_3", "/usr/share/xml/iso-codes/iso_639_3.xml");
        addReal(made, "cldr_de", "/usr/share/unicode/cldr/common/main/de.xml");
        return made;
    }();
    return samples;
}

/// A document of about 500 bytes.
inline const std::string& small()
{
    static const std::string text = records(3);
    return text;
}

} // namespace documents

#endif
