#ifndef QRMXML_SAVE_H
#define QRMXML_SAVE_H

#include <string>

#include <QRMUtils/XML/DOMInterface/QRMIDOM_Document.h>

#include "tools/qrmxml/Commands.h"

/// Tells before anything is read what cannot be done.
/// @throws Trouble
void checkSaving(const SaveOptions& options, const std::string& file);

/// Writes the document that the file held. A file is replaced when all is written.
/// @throws Trouble when the document cannot be expressed or the place cannot be written
void save(const QRMIDOM_Document& document, const SaveOptions& options, const std::string& file);

#endif
