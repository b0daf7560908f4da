#include "QRMUtils/XML/DOMInterface/internal/NetAccessor.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <curl/curl.h>
#include <xercesc/util/BinInputStream.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLExceptMsgs.hpp>
#include <xercesc/util/XMLNetAccessor.hpp>
#include <xercesc/util/XMLURL.hpp>

#include "QRMCore/I18NString.h"

using xercesc::XMLExcepts;
using xercesc::XMLNetHTTPInfo;
using xercesc::XMLURL;

namespace qrm {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr const char* kProtocols = "http,https,ftp";
constexpr long kMaxRedirects = 10;
constexpr long kHttpError = 400;
constexpr int kLongestWait = 1000;                       // milliseconds until we look around again
constexpr std::size_t kEnough = std::size_t(256) * 1024; // bytes on hand from which on the server has to wait

std::atomic<int> connectTimeout{30000};
std::atomic<int> stallTimeout{60000};

// For libcurl a transfer, and a group of them, is a void.
struct CleanupEasy
{
    void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
};
struct CleanupMulti
{
    void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
};
struct CleanupList
{
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};

[[noreturn]] void fail(XMLExcepts::Codes code, const std::string& url, const std::string& why)
{
    const I18NString text((url + (why.empty() ? "" : " (" + why + ")")).c_str());
    throw xercesc::NetAccessorException(__FILE_NAME__, __LINE__, code, text.getExternalBuffer(), nullptr,
                                        nullptr, nullptr, xercesc::XMLPlatformUtils::fgMemoryManager);
}

XMLExcepts::Codes codeFor(CURLcode code)
{
    switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY: return XMLExcepts::NetAcc_TargetResolution;
    case CURLE_COULDNT_CONNECT:
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_PEER_FAILED_VERIFICATION: return XMLExcepts::NetAcc_ConnSocket;
    case CURLE_SEND_ERROR: return XMLExcepts::NetAcc_WriteSocket;
    default: return XMLExcepts::NetAcc_ReadSocket;
    }
}

/// A transfer that goes on while it is read, and waits while it is not: what is on hand stays below a limit, however
/// much there is to come.
class Transfer final : public xercesc::BinInputStream
{
public:
    /// Starts the transfer and waits until there is something to read, or nothing more to come.
    /// @throws NetAccessorException
    Transfer(std::string url, const XMLNetHTTPInfo* request) : m_url(std::move(url))
    {
        if (m_easy == nullptr || m_multi == nullptr) {
            fail(XMLExcepts::NetAcc_InitFailed, m_url, "");
        }
        set(CURLOPT_URL, m_url.c_str());
        set(CURLOPT_ERRORBUFFER, m_error);
        set(CURLOPT_PROTOCOLS_STR, kProtocols);
        set(CURLOPT_REDIR_PROTOCOLS_STR, kProtocols);
        set(CURLOPT_FOLLOWLOCATION, 1L);
        set(CURLOPT_MAXREDIRS, kMaxRedirects);
        set(CURLOPT_FAILONERROR, 1L);
        set(CURLOPT_NOSIGNAL, 1L);
        set(CURLOPT_CONNECTTIMEOUT_MS, connectLimit());
        set(CURLOPT_WRITEFUNCTION, &Transfer::take);
        set(CURLOPT_WRITEDATA, this);
        set(CURLOPT_HEADERFUNCTION, &Transfer::note);
        set(CURLOPT_HEADERDATA, this);
        if (request != nullptr) {
            setRequest(*request);
        }
        curl_multi_add_handle(m_multi.get(), m_easy.get());
        try {
            fill();
        } catch (...) {
            curl_multi_remove_handle(m_multi.get(), m_easy.get());
            throw;
        }
        const char* type = nullptr;
        if (curl_easy_getinfo(m_easy.get(), CURLINFO_CONTENT_TYPE, &type) == CURLE_OK && type != nullptr) {
            m_contentType = I18NString(type, static_cast<int>(std::strlen(type)), "ISO-8859-1");
        }
    }

    ~Transfer() override { curl_multi_remove_handle(m_multi.get(), m_easy.get()); }

    XMLFilePos curPos() const override { return m_position; }

    XMLSize_t readBytes(XMLByte* const toFill, const XMLSize_t maxToRead) override
    {
        if (maxToRead == 0) {
            return 0;
        }
        fill();
        const std::size_t count = std::min<std::size_t>(maxToRead, m_bytes.size() - m_read);
        std::copy_n(m_bytes.data() + m_read, count, toFill);
        m_read += count;
        m_position += count;
        return count;
    }

    const XMLCh* getContentType() const override
    {
        return m_contentType.empty() ? nullptr : m_contentType.getExternalBuffer();
    }

private:
    template <class Value>
    void set(CURLoption option, Value value)
    {
        const CURLcode code = curl_easy_setopt(m_easy.get(), option, value);
        if (code != CURLE_OK) {
            fail(XMLExcepts::NetAcc_InternalError, m_url, curl_easy_strerror(code));
        }
    }

    /// For libcurl 0 would be a limit of its own.
    static long connectLimit()
    {
        const int limit = connectTimeout;
        return limit > 0 ? limit : 0x7FFFFFFFL;
    }

    void setRequest(const XMLNetHTTPInfo& request)
    {
        if (request.fHTTPMethod != XMLNetHTTPInfo::GET) {
            set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.fPayloadLen));
            set(CURLOPT_COPYPOSTFIELDS, request.fPayload != nullptr ? request.fPayload : "");
            if (request.fHTTPMethod == XMLNetHTTPInfo::PUT) {
                set(CURLOPT_CUSTOMREQUEST, "PUT");
            }
        }
        const std::string headers(request.fHeaders != nullptr ? request.fHeaders : "",
                                  request.fHeaders != nullptr ? request.fHeadersLen : 0);
        for (std::size_t start = 0; start < headers.size();) {
            const std::size_t end = std::min(headers.find("\r\n", start), headers.size());
            if (end > start) {
                curl_slist* const longer =
                    curl_slist_append(m_headers.get(), headers.substr(start, end - start).c_str());
                if (longer == nullptr) {
                    fail(XMLExcepts::NetAcc_InternalError, m_url, "");
                }
                static_cast<void>(m_headers.release());
                m_headers.reset(longer);
            }
            start = end + 2;
        }
        if (m_headers != nullptr) {
            set(CURLOPT_HTTPHEADER, m_headers.get());
        }
    }

    /// What arrives. libcurl is C: nothing may be thrown through it.
    static std::size_t take(char* bytes, std::size_t size, std::size_t count, void* transfer) noexcept
    {
        auto& self = *static_cast<Transfer*>(transfer);
        self.m_hasProgress = true;
        if (self.m_bytes.size() >= kEnough) {
            self.m_isPaused = true;
            return CURL_WRITEFUNC_PAUSE;
        }
        try {
            self.m_bytes.insert(self.m_bytes.end(), bytes, bytes + size * count);
        } catch (...) {
            return 0; // which ends the transfer with an error
        }
        return size * count;
    }

    static std::size_t note(char* /*bytes*/, std::size_t size, std::size_t count, void* transfer) noexcept
    {
        static_cast<Transfer*>(transfer)->m_hasProgress = true;
        return size * count;
    }

    /// Waits until there is something to read, or nothing more to come.
    void fill()
    {
        if (m_read < m_bytes.size()) {
            return;
        }
        m_bytes.clear();
        m_read = 0;
        Clock::time_point last = Clock::now();
        while (m_bytes.empty() && !m_isDone) {
            if (m_isPaused) {
                m_isPaused = false;
                curl_easy_pause(m_easy.get(), CURLPAUSE_CONT);
            }
            int running = 0;
            const CURLMcode code = curl_multi_perform(m_multi.get(), &running);
            if (code != CURLM_OK) {
                fail(XMLExcepts::NetAcc_InternalError, m_url, curl_multi_strerror(code));
            }
            finish();
            if (m_bytes.empty() && !m_isDone) {
                last = m_hasProgress || !isConnected() ? Clock::now() : last;
                m_hasProgress = false;
                wait(last);
            }
        }
        if (m_bytes.empty()) {
            failIfFailed();
        }
    }

    /// Waits for the next event on the line.
    void wait(Clock::time_point last)
    {
        int longest = kLongestWait;
        const int limit = stallTimeout;
        if (limit > 0) {
            const auto waited = std::chrono::duration_cast<milliseconds>(Clock::now() - last).count();
            if (waited >= limit) {
                m_isDone = true;
                m_result = CURLE_OPERATION_TIMEDOUT;
                std::snprintf(m_error, sizeof m_error, "nothing came for %d milliseconds", limit);
                return;
            }
            longest = std::min(longest, static_cast<int>(limit - waited));
        }
        curl_multi_poll(m_multi.get(), nullptr, 0, longest, nullptr);
    }

    bool isConnected() const
    {
        curl_off_t time = 0;
        curl_easy_getinfo(m_easy.get(), CURLINFO_PRETRANSFER_TIME_T, &time);
        return time != 0;
    }

    /// Takes note of the end of the transfer.
    void finish()
    {
        int left = 0;
        while (const CURLMsg* const message = curl_multi_info_read(m_multi.get(), &left)) {
            if (message->msg == CURLMSG_DONE) {
                m_isDone = true;
                m_result = message->data.result;
            }
        }
    }

    void failIfFailed()
    {
        if (m_result == CURLE_OK) {
            return;
        }
        long status = 0;
        curl_easy_getinfo(m_easy.get(), CURLINFO_RESPONSE_CODE, &status);
        std::string why = m_error[0] != 0 ? m_error : curl_easy_strerror(m_result);
        if (m_result == CURLE_HTTP_RETURNED_ERROR && status >= kHttpError) {
            why = "HTTP status " + std::to_string(status);
        }
        if (m_result == CURLE_OPERATION_TIMEDOUT && !isConnected()) {
            fail(XMLExcepts::NetAcc_ConnSocket, m_url, why);
        }
        fail(codeFor(m_result), m_url, why);
    }

    std::string m_url;
    std::unique_ptr<curl_slist, CleanupList> m_headers;
    std::unique_ptr<CURLM, CleanupMulti> m_multi{curl_multi_init()};
    std::unique_ptr<CURL, CleanupEasy> m_easy{curl_easy_init()};
    char m_error[CURL_ERROR_SIZE] = "";
    I18NString m_contentType;
    std::vector<char> m_bytes; // on hand, those before m_read read already
    std::size_t m_read = 0;
    XMLFilePos m_position = 0;
    bool m_isPaused = false;
    bool m_isDone = false;
    bool m_hasProgress = false;
    CURLcode m_result = CURLE_OK;
};

class NetAccessor final : public xercesc::XMLNetAccessor
{
public:
    NetAccessor() { curl_global_init(CURL_GLOBAL_DEFAULT); }
    ~NetAccessor() override { curl_global_cleanup(); }

    const XMLCh* getId() const override { return u"QRMIDOM"; }

    xercesc::BinInputStream* makeNew(const XMLURL& url, const XMLNetHTTPInfo* request) override
    {
        switch (url.getProtocol()) {
        case XMLURL::HTTP:
        case XMLURL::HTTPS:
        case XMLURL::FTP: return new Transfer(I18NString(url.getURLText()).toUtf8(), request);
        default:
            // A file of another host.
            throw xercesc::MalformedURLException(__FILE_NAME__, __LINE__, XMLExcepts::URL_UnsupportedProto1,
                                                 url.getProtocolName(), nullptr, nullptr, nullptr,
                                                 url.getMemoryManager());
        }
    }
};

} // namespace

void installNetAccessor()
{
    xercesc::XMLNetAccessor*& installed = xercesc::XMLPlatformUtils::fgNetAccessor;
    if (dynamic_cast<NetAccessor*>(installed) == nullptr) {
        auto own = std::make_unique<NetAccessor>();
        delete installed;
        installed = own.release();
    }
}

void setConnectTimeout(int limit)
{
    connectTimeout = limit;
}

void setStallTimeout(int limit)
{
    stallTimeout = limit;
}

} // namespace qrm
