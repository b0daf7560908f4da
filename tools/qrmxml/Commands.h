#ifndef QRMXML_COMMANDS_H
#define QRMXML_COMMANDS_H

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

struct WriteOptions
{
    ReadOptions read;
    std::string file;
    std::string encoding = "UTF-8";
    std::string output = "-"; // standard output
    bool inPlace = false;
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

int runWrite(const WriteOptions& options);
int runCheck(const CheckOptions& options);
int runTree(const TreeOptions& options);

#endif
