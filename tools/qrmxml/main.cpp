#include <csignal>
#include <functional>

#include <CLI/CLI.hpp>
#include <QRMCore/QRMThrowable.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_DOMException.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_DOMImplementation.h>

#include "tools/qrmxml/Commands.h"
#include "tools/qrmxml/Output.h"

namespace {

/// The library is up as long as this lives.
class Library
{
public:
    Library() { QRMIDOM_DOMImplementation::initialize(); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library() { QRMIDOM_DOMImplementation::terminate(); }
};

void addReadOptions(CLI::App& command, ReadOptions& options)
{
    command.add_flag("--allow-external", options.allowExternal,
                     "Load external entities and DTDs, and expand entities without limit");
    command.add_flag("--no-progress", options.noProgress, "Show no progress bar");
}

int run(const std::function<int()>& command)
{
    const Library library;
    try {
        return command();
    } catch (const ReaderGone&) {
        return kDone;
    } catch (const Trouble& trouble) {
        reportError(trouble.name(), trouble.what());
    } catch (const QRMIDOM_DOMException& error) {
        reportError("qrmxml", "DOM exception " + std::to_string(error.getCode()));
    } catch (const std::exception& error) {
        reportError("qrmxml", error.what());
    }
    return kTrouble;
}

} // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): only mistakes in making the options would throw
int main(int argc, char** argv)
{
    // A closed pipe and a file that grows too large come as errors of write().
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);

    CLI::App app(
        "Reads, checks and writes XML documents.\n\n"
        "Exit status: 0 done; 1 a document is not well-formed or not valid; 2 usage or input/output "
        "trouble.\n"
        "FILE may be - for standard input. External entities and DTDs are not loaded unless allowed.",
        "qrmxml");
    app.set_version_flag("--version", "qrmxml " QRMXML_VERSION);
    app.require_subcommand(1);
    app.footer("Examples:\n"
               "  qrmxml write --encoding ISO-8859-1 -o out.xml in.xml\n"
               "  qrmxml check --schema-location 'urn:orders orders.xsd' order.xml\n"
               "  qrmxml tree --depth 2 in.xml");
    std::function<int()> command;

    WriteOptions write;
    CLI::App* const writeCommand = app.add_subcommand("write", "Parse a document and write it out");
    addReadOptions(*writeCommand, write.read);
    writeCommand->add_option("--encoding", write.encoding, "Encoding of the output")->capture_default_str();
    CLI::Option* const output = writeCommand->add_option(
        "-o,--output", write.output, "Write there; a file is replaced when all is written");
    writeCommand->add_flag("-i,--in-place", write.inPlace, "Replace FILE itself")->excludes(output);
    writeCommand->add_option("FILE", write.file)->required();
    writeCommand->callback([&] { command = [&] { return runWrite(write); }; });

    CheckOptions check;
    CLI::App* const checkCommand = app.add_subcommand("check", "Parse documents; silent when they are good");
    addReadOptions(*checkCommand, check.read);
    checkCommand->add_flag("--dtd", check.dtd, "Validate against the document's DTD");
    checkCommand->add_flag("--schema", check.schema, "Validate against XML schemas");
    checkCommand->add_option("--schema-location", check.schemaLocation,
                             "Pairs of namespace URI and schema file");
    checkCommand->add_option("--no-namespace-schema", check.noNamespaceSchema,
                             "Schema file for elements without a namespace");
    checkCommand->add_option("FILE", check.files)->required();
    checkCommand->callback([&] { command = [&] { return runCheck(check); }; });

    TreeOptions tree;
    CLI::App* const treeCommand = app.add_subcommand("tree", "Show the outline of a document");
    addReadOptions(*treeCommand, tree.read);
    treeCommand->add_option("--depth", tree.depth, "Levels below the document to show")
        ->check(CLI::NonNegativeNumber);
    treeCommand->add_option("FILE", tree.file)->required();
    treeCommand->callback([&] { command = [&] { return runTree(tree); }; });

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? kDone : kTrouble;
    }
    return run(command);
}
