#include "tools/qrmxml/Excerpt.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>

#include <QRMCore/I18NString.h>
#include <QRMCore/QRMThrowable.h>

#include "tools/qrmxml/Output.h"
#include "tools/qrmxml/Terminal.h"

namespace {

constexpr std::size_t kMaxLineLength = std::size_t(1) << 20;

/// The bytes of a line without its end, which is a line feed, a carriage return, or both.
std::optional<std::string> lineOf(const std::string& file, int number)
{
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error)) {
        return std::nullopt; // A pipe was read to its end.
    }
    std::filebuf bytes;
    if (bytes.open(file, std::ios::in | std::ios::binary) == nullptr) {
        return std::nullopt;
    }
    std::string line;
    int current = 1;
    for (int byte = bytes.sbumpc(); byte != std::filebuf::traits_type::eof(); byte = bytes.sbumpc()) {
        if (byte == '\n' || byte == '\r') {
            if (current == number) {
                return line;
            }
            if (byte == '\r' && bytes.sgetc() == '\n') {
                bytes.sbumpc();
            }
            ++current;
        } else if (current == number) {
            line += static_cast<char>(byte);
            if (line.size() > kMaxLineLength) {
                return std::nullopt;
            }
        }
    }
    return current == number ? std::optional<std::string>(line) : std::nullopt;
}

} // namespace

std::string excerptOf(const std::string& file, int line, int column, int width)
{
    const std::optional<std::string> bytes = lineOf(file, line);
    if (!bytes || bytes->empty()) {
        return "";
    }
    I18NString text;
    try {
        text = I18NString(bytes->data(), static_cast<int>(bytes->size()), "UTF-8");
    } catch (const I18NConversionError&) {
        return "";
    }
    if (text.startsWith(u"\uFEFF")) {
        text = text.substring(1); // a mark, which parsers do not count
    }
    const int at = std::min(column - 1, text.length());
    // A long line is shown from a little before the place on.
    const int room = std::max(width, 20) - 1;
    int from = at < room * 3 / 4 ? 0 : at - room / 2;
    if (text.charAt(from) >= 0xDC00 && text.charAt(from) <= 0xDFFF) {
        --from; // not between the halves of a pair
    }
    try {
        const std::string before =
            (from > 0 ? "\u2026" : "") + visible(text.substring(from, at - from).toUtf8());
        const std::string shown = clipped(before + visible(text.substring(at).toUtf8()), room);
        return shown + "\n" + std::string(static_cast<std::size_t>(columnsOf(before)), ' ') + "^\n";
    } catch (const I18NConversionError&) {
        return ""; // The place is between the halves of a pair.
    }
}
