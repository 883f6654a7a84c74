#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <string>
#include <thread>

#include "fixtures/scoped_environment.h"
#include "platform/windows/windows_api.h"
#include "tests/platform/windows/folder_test.h"

namespace {

// Answers each connection on the loopback address with a fixed text, until its own end.
class Server {
  public:
    explicit Server(std::string answer)
        : answer_(std::move(answer)), socket_(socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address = {AF_INET, 0, {htonl(INADDR_LOOPBACK)}, {}};
        socklen_t size = sizeof address;
        auto *const generic = reinterpret_cast<sockaddr *>(&address);
        if (bind(socket_, generic, size) != 0 || listen(socket_, 8) != 0)
            ADD_FAILURE() << "no loopback server";
        getsockname(socket_, generic, &size);
        url_ = "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + "/icon.png";
        thread_ = std::thread([this] { Run(); });
    }
    ~Server() {
        shutdown(socket_, SHUT_RDWR);
        thread_.join();
        close(socket_);
    }

    std::string Url() const { return url_; }
    int connections() const { return connections_; }

  private:
    void Run() {
        std::array<char, 4096> request;
        for (int connection; (connection = accept(socket_, nullptr, nullptr)) >= 0; close(connection)) {
            ++connections_;
            static_cast<void>(recv(connection, request.data(), request.size(), 0));
            static_cast<void>(send(connection, answer_.data(), answer_.size(), MSG_NOSIGNAL));
        }
    }

    std::string answer_, url_;
    int socket_;
    std::atomic<int> connections_ = 0;
    std::thread thread_;
};

std::string Answer(const std::string &status, const std::string &headers, const std::string &body) {
    return "HTTP/1.1 " + status + "\r\nConnection: close\r\n" + headers + "\r\n" + body;
}

class Download : public FolderTest {
  protected:
    HRESULT Fetch(const std::string &url) const {
        return URLDownloadToFileW(nullptr, Utf8ToWide(url).c_str(), Wide("ICON.jpg").c_str(), 0, nullptr);
    }
    ScopedEnvironment no_proxy_{"no_proxy", "127.0.0.1"};
};

TEST_F(Download, WritesTheTargetAndFollowsARedirectionToHttp) {
    const std::string picture("\x89PNG\0\r\n", 7);
    const Server server(Answer("200 OK", "Content-Length: 7\r\n", picture));
    EXPECT_EQ(Fetch(server.Url()), S_OK);
    EXPECT_EQ(All(), "ICON.jpg=" + picture + ";");
    const Server other(Answer("200 OK", "Content-Length: 3\r\n", "png"));
    const Server redirection(Answer("302 Found", "Location: " + other.Url() + "\r\n", ""));
    EXPECT_EQ(Fetch(redirection.Url()), S_OK);
    EXPECT_EQ(All(), "ICON.jpg=png;");
}

TEST_F(Download, FailuresLeaveNoFileOrTheOldOne) {
    const TempFolder elsewhere;
    const std::string secret = "file://" + elsewhere.Write("secret", "secret").string();
    for (const std::string &answer : {Answer("404 Not Found", "Content-Length: 4\r\n", "page"),
                                      Answer("200 OK", "Content-Length: 100\r\n", "ends early"),
                                      Answer("302 Found", "Location: " + secret + "\r\n", ""),
                                      Answer("302 Found", "Location: /again\r\n", ""),
                                      Answer("200 OK", "Content-Length: 99999999999\r\n", "too large"),
                                      Answer("200 OK", "", std::string(size_t{40} << 20, 'x'))}) {
        SCOPED_TRACE(answer.substr(0, 100));
        const Server server(answer);
        EXPECT_TRUE(FAILED(Fetch(server.Url())));
        EXPECT_EQ(All(), "");
        folder_.Write("icon.jpg", "old");
        EXPECT_TRUE(FAILED(Fetch(server.Url())));
        EXPECT_EQ(All(), "icon.jpg=old;");
        EXPECT_GE(server.connections(), 2);
        EXPECT_LE(server.connections(), answer.find("/again") == std::string::npos ? 2 : 30);
        std::filesystem::remove(Native("icon.jpg"));
    }
    for (const std::string &url :
         std::initializer_list<std::string>{secret, "ftp://127.0.0.1/x", "no url", ""})
        EXPECT_TRUE(FAILED(Fetch(url))) << url;
    EXPECT_EQ(All(), "");
}

}  // namespace
