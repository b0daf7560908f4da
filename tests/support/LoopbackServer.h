#ifndef QRM_TESTS_LOOPBACKSERVER_H
#define QRM_TESTS_LOOPBACKSERVER_H

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

/// One request to a LoopbackServer, and the line to whoever made it.
class Connection
{
public:
    Connection(int socket, std::string request, const std::atomic<bool>& isStopping)
        : m_socket(socket), m_request(std::move(request)), m_isStopping(isStopping)
    {
    }

    /// Request line and header.
    const std::string& request() const { return m_request; }

    /// The path that is asked for.
    std::string path() const;

    /// Sends the bytes; false when nobody takes them any more.
    bool send(const std::string& bytes) const;

    /// Sends an answer with its length.
    bool answer(const std::string& body, const std::string& status = "200 OK",
                const std::string& header = "") const;

    /// Breaks the connection off: the other side sees a reset.
    void reset() const;

    /// Waits; shorter when the server stops.
    void wait(int milliseconds) const;

private:
    int m_socket;
    std::string m_request;
    const std::atomic<bool>& m_isStopping;
};

/// An HTTP server on 127.0.0.1 for the length of a scope. It answers one request a connection, each in a thread.
class LoopbackServer
{
public:
    explicit LoopbackServer(std::function<void(const Connection&)> answer);
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;
    ~LoopbackServer();

    int port() const { return m_port; }
    std::string url(const std::string& path) const;

    /// How many requests came.
    int requests() const { return m_requests; }

    /// A port on which nobody listens.
    static int closedPort();

private:
    void run();
    void serve(int socket);

    std::function<void(const Connection&)> m_answer;
    int m_socket;
    int m_port;
    std::atomic<bool> m_isStopping{false};
    std::atomic<int> m_requests{0};
    std::vector<std::thread> m_threads;
    std::thread m_listener;
};

#endif
