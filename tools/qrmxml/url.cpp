#include <array>

#include <QRMUtils/XML/DOMInterface/XmlUrl.h>
#include <xercesc/util/XMLException.hpp>

#include "tools/qrmxml/Commands.h"
#include "tools/qrmxml/Input.h"
#include "tools/qrmxml/Output.h"

namespace {

XmlUrl parsed(const UrlOptions& options)
{
    try {
        return options.base.empty()
                   ? XmlUrl(I18NString(options.url.c_str()))
                   : XmlUrl(I18NString(options.base.c_str()), I18NString(options.url.c_str()));
    } catch (const xercesc::XMLException& error) {
        throw Trouble(options.url, I18NString(error.getMessage()).toUtf8());
    }
}

void show(const XmlUrl& url, std::ostream& stream)
{
    static constexpr std::array<const char*, 4> kProtocols = {"file", "http", "ftp", "https"};
    const auto line = [&stream](const char* name, const std::string& value) {
        if (!value.empty()) {
            stream << name << ' ' << visible(value) << '\n';
        }
    };
    line("url", url.getUrlText().toUtf8());
    if (url.isRelative()) {
        line("relative", "yes");
    }
    const auto protocol = static_cast<std::size_t>(url.getProtocol());
    line("protocol", protocol < kProtocols.size() ? kProtocols[protocol] : "");
    line("user", url.getUser().toUtf8());
    line("password", url.getPassword().toUtf8());
    line("host", url.getHost().toUtf8());
    line("port", url.getPortNum() != 0 ? std::to_string(url.getPortNum()) : "");
    line("path", url.getPath().toUtf8());
    line("query", url.getQuery().toUtf8());
    line("fragment", url.getFragment().toUtf8());
}

void fetch(const std::string& url, const ReadOptions& options, std::ostream& stream)
{
    Input input(url, options.noProgress);
    std::array<char, 65536> bytes;
    int length = 0;
    while ((length = input.read(bytes.data(), static_cast<int>(bytes.size()))) > 0 && stream.good()) {
        stream.write(bytes.data(), length);
    }
    if (!input.failure().empty()) {
        throw Trouble(url, "cannot read: " + input.failure());
    }
}

} // namespace

int runUrl(const UrlOptions& options)
{
    const XmlUrl url = parsed(options);
    Output output("-");
    if (options.fetch) {
        if (url.isRelative()) {
            throw Trouble(options.url, "is relative and has to be resolved against a --base");
        }
        fetch(url.getUrlText().toUtf8(), options.read, output.stream());
    } else {
        show(url, output.stream());
    }
    output.commit();
    return kDone;
}
