#ifndef QRMXML_DOCUMENT_H
#define QRMXML_DOCUMENT_H

#include <string>

#include <QRMUtils/XML/DOMInterface/QRMIDOM_Parser.h>

#include "tools/qrmxml/Commands.h"

/// Sets the parser up for documents from anywhere, or for trusted ones.
void prepare(QRMIDOM_Parser& parser, const ReadOptions& options);

/// Parses a file, or standard input for "-", and reports what is wrong with it.
/// @return kDone or kNo
/// @throws Trouble when it cannot be read
int parseFile(QRMIDOM_Parser& parser, const std::string& name, const ReadOptions& options,
              QRMIDOM_Document& document);

#endif
