#ifndef QRMXML_COMMANDS_H
#define QRMXML_COMMANDS_H

#include <optional>
#include <string>
#include <vector>

/// What the tool ends with.
enum ExitStatus
{
    kDone = 0,    // it worked, or the answer is yes
    kNo = 1,      // the answer is no: a document is not well-formed or not valid
    kTrouble = 2, // wrong usage, or something cannot be read or written
};

/// How documents are read.
struct ReadOptions
{
    bool allowExternal = false; // load what documents name, and expand entities without limit
    bool noProgress = false;
};

/// How and where a document is written.
struct SaveOptions
{
    std::string encoding = "UTF-8";
    std::string output = "-"; // standard output
    bool inPlace = false;     // to the file that was read
    bool namespaces = false;  // with the declarations that elements need
};

struct WriteOptions
{
    ReadOptions read;
    SaveOptions save;
    std::string file;
};

struct CheckOptions
{
    ReadOptions read;
    std::vector<std::string> files;
    bool dtd = false;
    bool schema = false;
    std::string schemaLocation;
    std::string noNamespaceSchema;
};

struct TreeOptions
{
    ReadOptions read;
    std::string file;
    int depth = -1; // below 0: all of it
};

/// An attribute and its value.
struct NameValue
{
    std::string name;
    std::string value;
};

struct FindOptions
{
    /// How what was found is shown.
    enum class As
    {
        kXml,
        kText,
        kPath
    };

    ReadOptions read;
    std::string file;
    std::string tag;                         // the qualified name; empty where the local one is given
    std::string name;                        // the local name
    std::optional<std::string> namespaceUri; // empty: no namespace
    std::optional<NameValue> attribute;
    std::optional<std::string> text;
    bool children = false; // of the document element only
    bool all = false;
    As as = As::kXml;
};

struct SetOptions
{
    ReadOptions read;
    SaveOptions save;
    std::string file;
    std::string path;
    std::optional<NameValue> attribute;
    std::optional<std::string> text;
};

struct NamespacesOptions
{
    ReadOptions read;
    std::string file;
    std::string tag; // of the element that is asked about; empty: the document element
    std::optional<std::string> prefixOf;
};

struct EventsOptions
{
    ReadOptions read;
    std::string file; // or a URL
    bool json = false;
};

struct UrlOptions
{
    ReadOptions read;
    std::string url;
    std::string base; // empty: none
    bool fetch = false;
};

int runEvents(const EventsOptions& options);
int runFind(const FindOptions& options);
int runNamespaces(const NamespacesOptions& options);
int runSet(const SetOptions& options);
int runUrl(const UrlOptions& options);
int runWrite(const WriteOptions& options);
int runCheck(const CheckOptions& options);
int runTree(const TreeOptions& options);

#endif
