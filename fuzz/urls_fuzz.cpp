// URLs of any bytes are taken apart as Xerces does, and one that was put together is read again.

#include "QRMCore/QRMThrowable.h"
#include "QRMUtils/XML/DOMInterface/XmlUrl.h"
#include "fuzz/Fuzz.h"

namespace {

I18NString partOf(const XMLCh* part)
{
    return I18NString(part);
}

void compare(const XmlUrl& url, const xercesc::XMLURL& raw)
{
    fuzz::require(url.getProtocol() == raw.getProtocol() && url.getPortNum() == raw.getPortNum()
                      && url.getHost() == partOf(raw.getHost()) && url.getUser() == partOf(raw.getUser())
                      && url.getPassword() == partOf(raw.getPassword())
                      && url.getPath() == partOf(raw.getPath()) && url.getQuery() == partOf(raw.getQuery())
                      && url.getFragment() == partOf(raw.getFragment())
                      && url.getUrlText() == partOf(raw.getURLText()) && url.isRelative() == raw.isRelative(),
                  "parts");
}

/// What the call throws of the errors that are told; nothing else may come.
template <class Call>
std::string errorOf(Call&& call)
{
    try {
        call();
    } catch (const xercesc::MalformedURLException& error) {
        return I18NString(error.getMessage()).toUtf8();
    }
    return "";
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    I18NString first;
    I18NString second;
    try {
        first = I18NString(input.text().c_str());
        second = I18NString(input.text().c_str());
    } catch (const I18NConversionError&) {
        return 0;
    }
    xercesc::XMLURL raw;
    XmlUrl url;
    const std::string error = errorOf([&] { url.setUrl(first); });
    fuzz::require(error == errorOf([&] { raw.setURL(first.getExternalBuffer()); }), "errors: " + error);
    if (!error.empty()) {
        return 0;
    }
    compare(url, raw);
    XmlUrl copy(url);
    fuzz::require(copy == url && !(copy != url), "the copy differs");

    XmlUrl resolved;
    xercesc::XMLURL rawResolved;
    const std::string unresolved = errorOf([&] { resolved.setUrl(first, second); });
    fuzz::require(unresolved == errorOf([&] {
                      rawResolved.setURL(first.getExternalBuffer(), second.getExternalBuffer());
                  }),
                  "errors of resolving: " + unresolved);
    if (unresolved.empty()) {
        compare(resolved, rawResolved);
    }
    copy = resolved;
    fuzz::require(copy.getUrlText() == resolved.getUrlText(), "the assigned one differs");
    return 0;
}
