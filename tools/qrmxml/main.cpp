#include <cerrno>
#include <csignal>
#include <cstdio>
#include <functional>
#include <map>
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
    command.add_option("FILE", file, "The document, or its URL; - is standard input")
        ->required()
        ->type_name("");
}

/// Options of the commands that write a document.
void addSaveOptions(CLI::App& command, SaveOptions& options)
{
    command.add_option("--encoding", options.encoding, "Encoding of the output, one that contains ASCII")
        ->type_name("NAME")
        ->capture_default_str();
    CLI::Option* const output =
        command
            .add_option("-o,--output", options.output,
                        "Write there; a file is replaced when all is written, - is standard output")
            ->type_name("OUT");
    command.add_flag("-i,--in-place", options.inPlace, "Replace FILE itself")->excludes(output);
    command.add_flag("--ns", options.namespaces, "Write the namespace declarations that elements need");
}

/// An option NAME=VALUE.
CLI::Option* addAttribute(CLI::App& command, std::optional<NameValue>& attribute, const std::string& help)
{
    const auto take = [&attribute](const std::string& text) {
        const std::size_t split = text.find('=');
        if (split == 0 || split == std::string::npos) {
            throw CLI::ValidationError("--attr", "takes NAME=VALUE, not " + text);
        }
        attribute = NameValue{text.substr(0, split), text.substr(split + 1)};
    };
    return command.add_option_function<std::string>("--attr", take, help)->type_name("NAME=VALUE");
}

int execute(int argc, char** argv)
{
    CLI::App app(
        "Reads, checks, searches, changes and writes XML documents. `qrmxml COMMAND --help` tells more.\n\n"
        "Exit status: 0 done; 1 a document is not well-formed or not valid, or nothing was found; 2 usage "
        "or\n"
        "input/output trouble. A reader who closes the pipe early ends the tool quietly, with 0.\n"
        "Documents from anywhere can be read: what they name outside themselves is not loaded, and their\n"
        "entities are expanded up to a limit only, unless --allow-external is given.",
        "qrmxml");
    app.set_version_flag("--version", "qrmxml " QRMXML_VERSION);
    app.require_subcommand(0, 1);
    app.footer("Examples:\n"
               "  qrmxml write --encoding ISO-8859-1 -o out.xml in.xml\n"
               "  qrmxml check --schema-location 'urn:orders orders.xsd' order.xml\n"
               "  qrmxml find --tag book --attr id=b1 --as text library.xml\n"
               "  qrmxml set -i settings.xml network/proxy/port --text 8080\n"
               "  qrmxml tree --depth 2 in.xml");
    app.failure_message([](const CLI::App*, const CLI::Error& error) {
        return std::string("qrmxml: error: ") + visible(error.what())
               + "\nRun with --help for more information.\n";
    });
    std::function<int()> command;

    WriteOptions write;
    CLI::App* const writeCommand = app.add_subcommand("write", "Parse a document and write it out");
    addReadOptions(*writeCommand, write.read);
    addSaveOptions(*writeCommand, write.save);
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
    checkCommand->add_option("FILE", check.files, "The documents, or their URLs; - is standard input")
        ->required()
        ->type_name("");
    checkCommand->footer("Examples:\n"
                         "  qrmxml check *.xml\n"
                         "  qrmxml check --dtd --allow-external book.xml\n"
                         "  qrmxml check --schema-location 'urn:orders orders.xsd' order.xml");
    checkCommand->callback([&] { command = [&] { return runCheck(check); }; });

    EventsOptions events;
    CLI::App* const eventsCommand =
        app.add_subcommand("events", "Print the events of a document, a line each, as they come");
    addReadOptions(*eventsCommand, events.read);
    eventsCommand->add_flag("--json", events.json, "Print each event as a JSON object");
    addFile(*eventsCommand, events.file);
    eventsCommand->footer(
        "Names are {namespace}local-name. A document may be larger than memory.\n"
        "Examples:\n"
        "  qrmxml events in.xml\n"
        "  qrmxml events --json http://host.example/feed.xml | jq -r 'select(.event == \"text\").data'");
    eventsCommand->callback([&] { command = [&] { return runEvents(events); }; });

    UrlOptions url;
    CLI::App* const urlCommand = app.add_subcommand("url", "Show what a URL consists of, or what it gives");
    urlCommand->add_flag("--no-progress", url.read.noProgress, "Show no progress bar");
    urlCommand->add_option("--base", url.base, "Resolve the URL against this one")->type_name("URL");
    urlCommand->add_flag("--fetch", url.fetch, "Print the content");
    urlCommand->add_option("URL", url.url, "A file, http, https or ftp URL")->required()->type_name("");
    urlCommand->footer("Examples:\n"
                       "  qrmxml url --base http://host.example/a/b ../c.xml\n"
                       "  qrmxml url --fetch http://host.example/feed.xml > feed.xml");
    urlCommand->callback([&] { command = [&] { return runUrl(url); }; });

    FindOptions find;
    CLI::App* const findCommand = app.add_subcommand(
        "find", "Find an element, the first in document order; status 1 where there is none");
    addReadOptions(*findCommand, find.read);
    CLI::Option_group* const names = findCommand->add_option_group("Name", "One of these is needed");
    names->add_option("--tag", find.tag, "The name with its prefix, as it is written")->type_name("NAME");
    CLI::Option* const localName =
        names->add_option("--name", find.name, "The name without a prefix, in any namespace")
            ->type_name("LOCAL");
    names->require_option(1);
    findCommand->add_option("--ns-uri", find.namespaceUri, "In this namespace; empty: in none")
        ->type_name("URI")
        ->needs(localName);
    addAttribute(*findCommand, find.attribute, "With this value of the attribute; absent is empty");
    findCommand->add_option("--text", find.text, "With just this text of its own")->type_name("TEXT");
    findCommand->add_flag("--children", find.children, "Among the children of the document element only");
    findCommand->add_flag("--all", find.all, "All of them, a line each");
    const std::map<std::string, FindOptions::As> shapes = {
        {"xml", FindOptions::As::kXml}, {"text", FindOptions::As::kText}, {"path", FindOptions::As::kPath}};
    findCommand
        ->add_option_function<std::string>(
            "--as", [&](const std::string& shape) { find.as = shapes.at(shape); },
            "Show the element, its own text, or the path to it")
        ->check(CLI::IsMember(shapes).description(""))
        ->type_name("xml|text|path")
        ->default_str("xml");
    addFile(*findCommand, find.file);
    findCommand->footer(
        "Examples:\n"
        "  qrmxml find --tag book --attr id=b1 library.xml\n"
        "  qrmxml find --name title --ns-uri http://purl.org/dc/elements/1.1/ --all --as text library.xml");
    findCommand->callback([&] { command = [&] { return runFind(find); }; });

    SetOptions set;
    CLI::App* const setCommand =
        app.add_subcommand("set", "Make sure that an element exists, and write the document out");
    addReadOptions(*setCommand, set.read);
    addSaveOptions(*setCommand, set.save);
    CLI::Option* const withText =
        setCommand->add_option("--text", set.text, "The last element of the path is one with this text")
            ->type_name("TEXT");
    addAttribute(*setCommand, set.attribute, "The last element is a child with this value of the attribute")
        ->excludes(withText);
    addFile(*setCommand, set.file);
    setCommand
        ->add_option("PATH", set.path,
                     "Names with / between them, from below the document element, or a path to one place")
        ->required()
        ->type_name("");
    setCommand->footer(
        "What is there already is found on any level below the step before; what is missing is made.\n"
        "A PATH as find --as path prints it, such as /settings[1]/user[2], leads to one place: the element\n"
        "there gets the text or the attribute, and is made where it is the next one of its name.\n"
        "Examples:\n"
        "  qrmxml set -i settings.xml network/proxy/port --text 8080\n"
        "  qrmxml set in.xml users/user --attr name=anna -o out.xml\n"
        "  qrmxml set -i in.xml \"$(qrmxml find --tag port --as path in.xml)\" --text 8080");
    setCommand->callback([&] { command = [&] { return runSet(set); }; });

    NamespacesOptions namespaces;
    CLI::App* const namespacesCommand =
        app.add_subcommand("namespaces", "Show the prefixes that are declared at an element");
    addReadOptions(*namespacesCommand, namespaces.read);
    namespacesCommand
        ->add_option("--tag", namespaces.tag,
                     "At the first element of this name, not at the document element")
        ->type_name("NAME");
    namespacesCommand
        ->add_option("--prefix-of", namespaces.prefixOf,
                     "Show the prefix of this namespace; status 1 without one")
        ->type_name("URI");
    addFile(*namespacesCommand, namespaces.file);
    namespacesCommand->footer("Examples:\n"
                              "  qrmxml namespaces --tag soap:Body message.xml\n"
                              "  qrmxml namespaces --prefix-of urn:orders order.xml");
    namespacesCommand->callback([&] { command = [&] { return runNamespaces(namespaces); }; });

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
