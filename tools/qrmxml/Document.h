#ifndef QRMXML_DOCUMENT_H
#define QRMXML_DOCUMENT_H

#include <string>

#include <QRMUtils/XML/DOMInterface/QRMIDOM_Parser.h>
#include <QRMUtils/XML/DOMInterface/QRMISAX_Parser.h>

#include "tools/qrmxml/Commands.h"

// Set a parser up for documents from anywhere, or for trusted ones.

void prepare(QRMIDOM_Parser& parser, const ReadOptions& options);
void prepare(QRMISAX_Parser& parser, const ReadOptions& options);

/// Parses a file, standard input for "-", or a URL, and reports what is wrong with it. What the document names is looked for
/// beside it. The parser should be a new one: what it recorded of another document might be reported for this one.
/// @return kDone or kNo
/// @throws Trouble when it cannot be read
int parseFile(QRMIDOM_Parser& parser, const std::string& name, const ReadOptions& options,
              QRMIDOM_Document& document);

/// The same for the events of the document.
int parseFile(QRMISAX_Parser& parser, const std::string& name, const ReadOptions& options);

/// Parses a file with a parser of its own, as parseFile().
int readDocument(const std::string& name, const ReadOptions& options, QRMIDOM_Document& document);

/// Moves on in document order, without recursion, however deep the document is.
/// @param node starts as the document
/// @param depth the levels below the document, 0 at first
/// @param enter whether to go on with the node's children, if any, or behind them
/// @return false at the end, where the node is the document again
bool moveOn(QRMIDOM_Node& node, int& depth, bool enter);

#endif
