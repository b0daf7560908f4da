#include "tests/support/LoopbackServer.h"

#include <chrono>
#include <stdexcept>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int listening(int& port)
{
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (::bind(socket, reinterpret_cast<sockaddr*>(&address), length) != 0 || ::listen(socket, 64) != 0
        || ::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        throw std::runtime_error("there is no loopback server to be had");
    }
    port = ntohs(address.sin_port);
    return socket;
}

} // namespace

std::string Connection::path() const
{
    const std::size_t start = m_request.find(' ') + 1;
    return m_request.substr(start, m_request.find(' ', start) - start);
}

bool Connection::send(const std::string& bytes) const
{
    for (std::size_t sent = 0; sent < bytes.size();) {
        pollfd ready = {m_socket, POLLOUT, 0};
        if (::poll(&ready, 1, 50) == 0) {
            if (m_isStopping) {
                return false;
            }
            continue;
        }
        const ssize_t count =
            ::send(m_socket, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count < 0) {
            return false;
        }
        sent += static_cast<std::size_t>(count);
    }
    return true;
}

bool Connection::answer(const std::string& body, const std::string& status, const std::string& header) const
{
    return send("HTTP/1.1 " + status + "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" + header
                + "Connection: close\r\n\r\n" + body);
}

void Connection::reset() const
{
    const linger now = {1, 0};
    ::setsockopt(m_socket, SOL_SOCKET, SO_LINGER, &now, sizeof now);
}

void Connection::wait(int milliseconds) const
{
    for (; milliseconds > 0 && !m_isStopping; milliseconds -= 10) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

LoopbackServer::LoopbackServer(std::function<void(const Connection&)> answer)
    : m_answer(std::move(answer)), m_socket(listening(m_port)), m_listener([this] { run(); })
{
}

LoopbackServer::~LoopbackServer()
{
    m_isStopping = true;
    m_listener.join();
    for (std::thread& thread : m_threads) {
        thread.join();
    }
    ::close(m_socket);
}

std::string LoopbackServer::url(const std::string& path) const
{
    return "http://127.0.0.1:" + std::to_string(m_port) + path;
}

int LoopbackServer::closedPort()
{
    int port = 0;
    ::close(listening(port));
    return port;
}

void LoopbackServer::run()
{
    while (!m_isStopping) {
        pollfd ready = {m_socket, POLLIN, 0};
        if (::poll(&ready, 1, 20) == 1) {
            const int socket = ::accept4(m_socket, nullptr, nullptr, SOCK_CLOEXEC);
            if (socket >= 0) {
                ++m_requests;
                m_threads.emplace_back([this, socket] { serve(socket); });
            }
        }
    }
}

void LoopbackServer::serve(int socket)
{
    std::string request;
    char bytes[4096];
    while (request.find("\r\n\r\n") == std::string::npos && !m_isStopping) {
        pollfd ready = {socket, POLLIN, 0};
        if (::poll(&ready, 1, 50) == 0) {
            continue;
        }
        const ssize_t count = ::recv(socket, bytes, sizeof bytes, 0);
        if (count <= 0) {
            break;
        }
        request.append(bytes, static_cast<std::size_t>(count));
    }
    m_answer(Connection(socket, request, m_isStopping));
    ::close(socket);
}
