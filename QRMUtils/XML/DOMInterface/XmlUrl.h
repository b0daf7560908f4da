#ifndef XMLURL_H
#define XMLURL_H

#include <memory>

#include <xercesc/util/BinInputStream.hpp>
#include <xercesc/util/XMLURL.hpp>

#include "QRMCore/I18NString.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Api.h"
#include "WQSStreams/WQSInputStream.h"

/// The content of a URL, as XmlUrl::makeNewStream() opens it. Read it through read(buffer, count): what read() gives at
/// the end is no different from a byte 0xFF.
class QRMIDOM_API UrlInputStream : public WQSInputStream
{
public:
    using WQSInputStream::read;

    /// Takes the Xerces stream, which is deleted with this.
    explicit UrlInputStream(xercesc::BinInputStream* stream);
    ~UrlInputStream() override;

    /// Reads up to `count` bytes into the buffer's storage, a zero byte behind them. The buffer's length stays what it
    /// is.
    /// @return the bytes read; 0 at the end
    /// @throws xercesc::XMLException when reading fails; a transfer that was cut short is a failure, not an end
    int read(QRMByteBuffer& buffer, int count) override;

    /// Reads one byte; 255 at the end, too.
    /// @throws xercesc::XMLException as above
    int read() override;

    /// Does nothing: the stream stays open until it is destroyed.
    void close() override;

private:
    xercesc::BinInputStream* m_stream;
};

/// A URL (RFC 3986) as Xerces parses it: file, http, https and ftp URLs, and relative references. A value.
///
/// Text that is no URL throws xercesc::MalformedURLException, as does null text; setUrl() may then have emptied the URL.
/// Parts are as they stand in the text, with what is escaped in it.
class QRMIDOM_API XmlUrl
{
public:
    /// The empty URL, which is relative.
    XmlUrl();
    /// @overload
    XmlUrl(const I18NString& url);
    /// In the local code page, UTF-8.
    XmlUrl(const char* url);

    // A reference and the base that it is resolved against. The base comes first; it has to be absolute, or empty as a
    // string of 16-bit units, for none.

    /// @overload
    XmlUrl(const I18NString& base, const I18NString& relative);
    /// @overload
    XmlUrl(const char* base, const char* relative);
    /// @overload
    XmlUrl(const I18NString& base, const char* relative);

    /// @overload
    XmlUrl(const XmlUrl& other);
    /// Copies the URL.
    XmlUrl& operator=(const XmlUrl& other);
    virtual ~XmlUrl();

    // Another URL in place of this one, as the constructors make it.

    /// Takes another URL; after an error this one is empty.
    void setUrl(const I18NString& url);
    /// @overload
    void setUrl(const char* url);
    /// @overload
    void setUrl(const I18NString& base, const I18NString& relative);
    /// @overload
    void setUrl(const char* base, const char* relative);
    /// @overload
    void setUrl(const I18NString& base, const char* relative);

    /// XMLURL::Unknown for a relative URL.
    xercesc::XMLURL::Protocols getProtocol() const;

    /// The port that is named, or else the usual one of the protocol; 0 where there is none.
    unsigned int getPortNum() const;

    // Empty where the URL has no such thing.

    /// The host, without the port.
    I18NString getHost() const;
    /// The user before the host.
    I18NString getUser() const;
    /// The password behind the user's name.
    I18NString getPassword() const;
    /// The path, escapes and all.
    I18NString getPath() const;
    /// What stands behind the "?".
    I18NString getQuery() const;
    /// What stands behind the "#".
    I18NString getFragment() const;

    /// All of it.
    I18NString getUrlText() const;

    /// Whether it has to be resolved against a base before it leads anywhere.
    bool isRelative() const;

    /// Whether all parts are equal, in upper and lower case as well. A port that is named differs from none.
    bool operator==(const XmlUrl& other) const;
    /// Whether a part of the URLs differs.
    bool operator!=(const XmlUrl& other) const;

    /// Opens the content: a file, or what a server gives.
    /// @return a stream, the caller's to delete; null where it cannot be opened, for whatever reason
    /// @throws QRMOutOfMemoryError 0 when there is no memory for the stream
    UrlInputStream* makeNewStream() const;

    // Limits for everything that is read over the network, by parsers too, in milliseconds; 0 is no limit. They hold for
    // transfers that begin later, in all threads. A transfer that goes beyond one fails.

    /// How long it may take to reach the server; 30,000 at first.
    static void setConnectTimeout(int milliseconds);

    /// How long the server may send nothing, while somebody waits for it; 60,000 at first.
    static void setStallTimeout(int milliseconds);

private:
    xercesc::XMLURL m_url;
};

#endif
