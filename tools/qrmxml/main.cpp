#include <cerrno>
#include <csignal>
#include <cstdio>
#include <functional>
#include <sstream>

#include <CLI/CLI.hpp>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_DOMException.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_DOMImplementation.h>
#include <fcntl.h>
#include <unistd.h>

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

/// Runs a command and reports what keeps it from its work.
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
    } catch (...) {
        // Xerces' own errors are no std::exception; not all of its settings have theirs translated.
        reportError("qrmxml", "unexpected failure");
    }
    return kTrouble;
}

/// Standard streams that the caller closed are opened the wrong way round: they keep failing, but the files that are
/// opened later do not take their numbers and with them what is meant for the streams.
void occupyStandardDescriptors()
{
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        if (::fcntl(descriptor, F_GETFD) == -1 && errno == EBADF) {
            ::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        }
    }
}

void addReadOptions(CLI::App& command, ReadOptions& options)
{
    command.add_flag(
        "--allow-external", options.allowExternal,
        "Load the entities, DTDs and schemas that documents name, and expand entities without limit");
    command.add_flag("--no-progress", options.noProgress, "Show no progress bar");
}

void addFile(CLI::App& command, std::string& file)
{
    command.add_option("FILE", file, "The document; - is standard input")->required()->type_name("");
}

int execute(int argc, char** argv)
{
    CLI::App app(
        "Reads, checks and writes XML documents. `qrmxml COMMAND --help` tells more.\n\n"
        "Exit status: 0 done; 1 a document is not well-formed or not valid; 2 usage or input/output\n"
        "trouble. A reader who closes the pipe early ends the tool quietly, with 0.\n"
        "Documents from anywhere can be read: what they name outside themselves is not loaded, and their\n"
        "entities are expanded up to a limit only, unless --allow-external is given.",
        "qrmxml");
    app.set_version_flag("--version", "qrmxml " QRMXML_VERSION);
    app.require_subcommand(0, 1);
    app.footer("Examples:\n"
               "  qrmxml write --encoding ISO-8859-1 -o out.xml in.xml\n"
               "  qrmxml check --schema-location 'urn:orders orders.xsd' order.xml\n"
               "  qrmxml tree --depth 2 in.xml");
    app.failure_message([](const CLI::App*, const CLI::Error& error) {
        return std::string("qrmxml: error: ") + visible(error.what())
               + "\nRun with --help for more information.\n";
    });
    std::function<int()> command;

    WriteOptions write;
    CLI::App* const writeCommand = app.add_subcommand("write", "Parse a document and write it out");
    addReadOptions(*writeCommand, write.read);
    writeCommand->add_option("--encoding", write.encoding, "Encoding of the output, one that contains ASCII")
        ->type_name("NAME")
        ->capture_default_str();
    CLI::Option* const output =
        writeCommand
            ->add_option("-o,--output", write.output,
                         "Write there; a file is replaced when all is written, - is standard output")
            ->type_name("OUT");
    writeCommand->add_flag("-i,--in-place", write.inPlace, "Replace FILE itself")->excludes(output);
    addFile(*writeCommand, write.file);
    writeCommand->footer("Examples:\n"
                         "  qrmxml write --encoding ISO-8859-1 -o out.xml in.xml\n"
                         "  qrmxml write -i document.xml\n"
                         "  generate | qrmxml write - | less");
    writeCommand->callback([&] { command = [&] { return runWrite(write); }; });

    CheckOptions check;
    CLI::App* const checkCommand = app.add_subcommand("check", "Parse documents; silent when they are good");
    addReadOptions(*checkCommand, check.read);
    checkCommand->add_flag("--dtd", check.dtd, "Validate against the document's DTD");
    checkCommand->add_flag(
        "--schema", check.schema,
        "Validate against XML schemas; those that the document names need --allow-external");
    checkCommand
        ->add_option("--schema-location", check.schemaLocation,
                     "Validate against these: pairs of namespace URI and schema file")
        ->type_name("PAIRS");
    checkCommand
        ->add_option("--no-namespace-schema", check.noNamespaceSchema,
                     "Validate against this, for elements without a namespace")
        ->type_name("SCHEMA");
    checkCommand->add_option("FILE", check.files, "The documents; - is standard input")
        ->required()
        ->type_name("");
    checkCommand->footer("Examples:\n"
                         "  qrmxml check *.xml\n"
                         "  qrmxml check --dtd --allow-external book.xml\n"
                         "  qrmxml check --schema-location 'urn:orders orders.xsd' order.xml");
    checkCommand->callback([&] { command = [&] { return runCheck(check); }; });

    TreeOptions tree;
    CLI::App* const treeCommand = app.add_subcommand("tree", "Show the outline of a document");
    addReadOptions(*treeCommand, tree.read);
    treeCommand->add_option("--depth", tree.depth, "Levels below the document to show")
        ->type_name("N")
        ->check(CLI::NonNegativeNumber);
    addFile(*treeCommand, tree.file);
    treeCommand->footer("Examples:\n"
                        "  qrmxml tree --depth 2 in.xml\n"
                        "  generate | qrmxml tree -");
    treeCommand->callback([&] { command = [&] { return runTree(tree); }; });

    try {
        app.parse(argc, argv);
        if (!command) {
            throw CLI::RequiredError::Subcommand(1);
        }
    } catch (const CLI::ParseError& error) {
        std::ostringstream text;
        if (app.exit(error, text, std::cerr) != 0) {
            return kTrouble;
        }
        return run([&] {
            Output standard("-");
            standard.stream() << text.str();
            standard.commit();
            return kDone;
        });
    }
    return run(command);
}

} // namespace

int main(int argc, char** argv)
{
    occupyStandardDescriptors();
    // A closed pipe and a file that grows too large come as errors of write().
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    try {
        return execute(argc, argv);
    } catch (...) {
        // Commands report their errors themselves, so this is before or after them.
        std::fputs("qrmxml: error: cannot start or stop\n", stderr);
        return kTrouble;
    }
}
