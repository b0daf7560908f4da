// Real documents, as Debian ships them, are parsed, written and parsed again: both trees are equal, and xmllint finds
// the same canonical form in what came in and what went out, but for what the writer does by contract:
// - it escapes the internal subset, so that a document with one does not parse again: the test puts the subset back;
// - it escapes comments and the data of processing instructions, which changes them: the test puts them back;
// - it introduces public and system identifier with a keyword each, which is no XML: the test takes SYSTEM out again;
// - it leaves out attributes that only a DTD gives: no DTD is loaded here, and xmllint reads copies of the documents
//   that lie where their DTDs are not to be found.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <vector>

#include <unistd.h>

#include "tests/support/RealDocuments.h"
#include "tests/support/TestDocument.h"
#include "tests/support/TreeEqual.h"

namespace {

namespace fs = std::filesystem;

using real_documents::Package;

int parseFile(const fs::path& path, QRMIDOM_Document& document, std::string& error)
{
    QRMIDOM_Parser parser;
    parser.setLoadExternalDTD(0);
    const int result = parser.parse(path.c_str(), document);
    error = path.string() + ":" + std::to_string(parser.getCurrentLineNumber()) + ": "
            + parser.errorString().toUtf8();
    return result;
}

void replaceOnce(std::string& text, const std::string& what, const std::string& by)
{
    const std::size_t at = text.find(what);
    ASSERT_NE(at, std::string::npos) << what.substr(0, 100);
    text.replace(at, what.size(), by);
}

/// Undoes in the text what the writer's contract makes of a document type.
void mendDoctype(std::string& text, const QRMIDOM_DocumentType& doctype)
{
    const I18NString subset = doctype.getInternalSubset();
    if (!subset.empty()) {
        std::ostringstream escaped;
        QRMIDOM_Helper::write(escaped, subset, "UTF-8");
        replaceOnce(text, "[" + escaped.str() + "]", "[" + subset.toUtf8() + "]");
    }
    if (!doctype.getPublicId().empty()) {
        replaceOnce(text, "\" SYSTEM \"", "\" \"");
    }
}

/// Undoes the escaping of comments and processing instructions below the node, one after the other.
void mendComments(std::string& text, const QRMIDOM_Node& node, std::size_t& from)
{
    if (node.getNodeType() == 7 || node.getNodeType() == 8) {
        const std::string value = node.getNodeValue().toUtf8();
        std::ostringstream escaped;
        QRMIDOM_Helper::write(escaped, node.getNodeValue(), "UTF-8");
        if (escaped.str() != value) {
            const std::string before =
                node.getNodeType() == 8 ? "<!--" : "<?" + node.getNodeName().toUtf8() + " ";
            const std::size_t at = text.find(before + escaped.str(), from);
            ASSERT_NE(at, std::string::npos) << value;
            text.replace(at, before.size() + escaped.str().size(), before + value);
            from = at + before.size() + value.size();
        }
    }
    for (QRMIDOM_Node child = node.getFirstChild(); !child.isNull(); child = child.getNextSibling()) {
        mendComments(text, child, from);
    }
}

/// The canonical forms that xmllint finds, in one run: what it prints for several files comes one after the other.
std::string canonical(const std::vector<std::string>& paths)
{
    std::string command = "xmllint --nonet --huge --c14n";
    for (const std::string& path : paths) {
        command += " '" + path + "'";
    }
    std::FILE* const pipe = ::popen((command + " 2>/dev/null").c_str(), "r");
    std::string output;
    char bytes[65536];
    for (std::size_t count = 0; (count = std::fread(bytes, 1, sizeof bytes, pipe)) > 0;) {
        output.append(bytes, count);
    }
    ::pclose(pipe);
    return output;
}

class RoundTrip : public testing::TestWithParam<Package>
{
protected:
    fs::path folder = fs::path(testing::TempDir()) / ("qrmidom-round-trip-" + std::to_string(::getpid()));

    RoundTrip() { fs::create_directories(folder); }
    ~RoundTrip() override { fs::remove_all(folder); }
};

INSTANTIATE_TEST_SUITE_P(RealDocuments, RoundTrip, testing::ValuesIn(real_documents::packages()),
                         [](const auto& package) {
                             std::string name = package.param.name;
                             name.erase(std::remove(name.begin(), name.end(), '-'), name.end());
                             return name;
                         });

TEST_P(RoundTrip, KeepsEverything)
{
    const Package& package = GetParam();
    const std::vector<fs::path> documents = real_documents::of(package);
    ASSERT_GE(documents.size(), package.atLeast) << "is the package " << package.name << " installed?";

    std::vector<std::string> inputs;
    std::vector<std::string> outputs;
    std::size_t illFormed = 0;
    for (const fs::path& path : documents) {
        QRMIDOM_Document document;
        std::string error;
        const int result = parseFile(path, document, error);
        if (package.illFormed.count(path.filename().string()) != 0) {
            EXPECT_EQ(result, 0) << path;
            ++illFormed;
            continue;
        }
        ASSERT_EQ(result, 1) << error;

        std::string text = written(document);
        if (!document.getDoctype().isNull()) {
            mendDoctype(text, document.getDoctype());
        }
        std::size_t from = 0;
        mendComments(text, document, from);
        const fs::path output = folder / (std::to_string(outputs.size()) + ".xml");
        std::ofstream(output, std::ios::binary) << text;
        QRMIDOM_Document again;
        ASSERT_EQ(parseFile(output, again, error), 1) << path << " written: " << error;
        ASSERT_EQ(firstDifference(document, again), "") << path;
        const fs::path input = folder / (std::to_string(inputs.size()) + "-as-it-came.xml");
        fs::copy_file(path, input);
        inputs.push_back(input.string());
        outputs.push_back(output.string());
    }
    EXPECT_EQ(illFormed, package.illFormed.size());

    constexpr std::size_t kBatch = 40;
    for (std::size_t start = 0; start < inputs.size(); start += kBatch) {
        const auto batch = [start](const std::vector<std::string>& paths) {
            const std::size_t end = std::min(start + kBatch, paths.size());
            return canonical({paths.begin() + static_cast<std::ptrdiff_t>(start),
                              paths.begin() + static_cast<std::ptrdiff_t>(end)});
        };
        const std::string expected = batch(inputs);
        EXPECT_GT(expected.size(), 1000u);
        EXPECT_EQ(expected.find("xmllint: "), std::string::npos) << expected.substr(0, 500);
        EXPECT_TRUE(batch(outputs) == expected)
            << "the canonical forms differ from " << inputs[start] << " on";
    }
}

} // namespace
