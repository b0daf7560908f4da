#ifndef QRMXML_EXCERPT_H
#define QRMXML_EXCERPT_H

#include <string>

/// The line of a file that an error is in, and below it a caret at the place; both end with a line feed. Empty where that
/// cannot be shown: the name stands for no regular file, or the line is not there, very long, or no UTF-8.
/// @param line from 1, as parsers count
/// @param column from 1, in UTF-16 units
/// @param width the columns that there are to show it in
std::string excerptOf(const std::string& file, int line, int column, int width);

#endif
