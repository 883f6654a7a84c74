#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <string>
#include <thread>

#include "platform/windows/text.h"
#include "platform/windows/windows_api.h"
#include "tests/platform/windows/folder_contents.h"
#include "tests/support/scoped_environment.h"

namespace {

using Contents = std::map<std::string, std::string>;

// Answers each connection on the loopback address with a fixed text, until its own end.
class Server {
  public:
    explicit Server(std::string answer)
        : answer_(std::move(answer)), socket_(socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto *const generic = reinterpret_cast<sockaddr *>(&address);
        if (bind(socket_, generic, size) != 0 || listen(socket_, 8) != 0)
            ADD_FAILURE() << "no loopback server";
        getsockname(socket_, generic, &size);
        port_ = ntohs(address.sin_port);
        thread_ = std::thread([this] { Run(); });
    }
    ~Server() {
        shutdown(socket_, SHUT_RDWR);
        thread_.join();
        close(socket_);
    }
    Server(const Server &) = delete;
    Server &operator=(const Server &) = delete;

    std::string Url() const { return "http://127.0.0.1:" + std::to_string(port_) + "/icon.png"; }
    int connections() const { return connections_; }

  private:
    void Run() {
        while (true) {
            const int connection = accept(socket_, nullptr, nullptr);
            if (connection < 0) return;
            ++connections_;
            std::array<char, 4096> request;
            static_cast<void>(recv(connection, request.data(), request.size(), 0));
            size_t sent = 0;
            while (sent < answer_.size()) {
                const ssize_t size =
                    send(connection, answer_.data() + sent, answer_.size() - sent, MSG_NOSIGNAL);
                if (size <= 0) break;
                sent += static_cast<size_t>(size);
            }
            close(connection);
        }
    }

    std::string answer_;
    int socket_;
    uint16_t port_ = 0;
    std::atomic<int> connections_ = 0;
    std::thread thread_;
};

std::string Answer(const std::string &status, const std::string &headers, const std::string &body) {
    return "HTTP/1.1 " + status + "\r\nConnection: close\r\n" + headers + "\r\n" + body;
}

class Download : public testing::Test {
  protected:
    HRESULT Fetch(const std::string &url) const {
        const std::wstring target = Utf8ToWide(folder_.path().string() + "\\ICON.jpg");
        return URLDownloadToFileW(nullptr, Utf8ToWide(url).c_str(), target.c_str(), 0, nullptr);
    }

    // Whether a failed download leaves both an empty folder and an old file as they were.
    void ExpectNothing(const std::string &url) const {
        EXPECT_TRUE(FAILED(Fetch(url))) << url;
        EXPECT_EQ(FolderContents(folder_.path()), Contents()) << url;
        folder_.Write("icon.jpg", "old");
        EXPECT_TRUE(FAILED(Fetch(url))) << url;
        EXPECT_EQ(FolderContents(folder_.path()), (Contents{{"icon.jpg", "old"}})) << url;
        std::filesystem::remove(folder_.path() / "icon.jpg");
    }

    TempFolder folder_;
    ScopedEnvironment no_proxy_{"no_proxy", "127.0.0.1"};
};

TEST_F(Download, WritesTheTarget) {
    const std::string picture("\x89PNG\0\r\n", 7);
    const Server server(Answer("200 OK", "Content-Length: 7\r\n", picture));
    EXPECT_EQ(Fetch(server.Url()), S_OK);
    EXPECT_EQ(FolderContents(folder_.path()), (Contents{{"ICON.jpg", picture}}));
}

TEST_F(Download, FollowsARedirectionToHttp) {
    const Server picture(Answer("200 OK", "Content-Length: 3\r\n", "png"));
    const Server server(Answer("302 Found", "Location: " + picture.Url() + "\r\n", ""));
    folder_.Write("icon.jpg", "old");
    EXPECT_EQ(Fetch(server.Url()), S_OK);
    EXPECT_EQ(FolderContents(folder_.path()), (Contents{{"icon.jpg", "png"}}));
}

TEST_F(Download, FailuresLeaveNoFile) {
    const Server missing(Answer("404 Not Found", "Content-Length: 4\r\n", "page"));
    ExpectNothing(missing.Url());
    EXPECT_EQ(missing.connections(), 2);
}

TEST_F(Download, AnAnswerThatEndsEarlyLeavesNoFile) {
    const Server server(Answer("200 OK", "Content-Length: 100\r\n", "short"));
    ExpectNothing(server.Url());
}

TEST_F(Download, RefusesRedirectionsToOtherProtocols) {
    const std::string secret =
        folder_.path().parent_path() / (folder_.path().filename().string() + "-secret");
    std::ofstream(secret) << "secret";
    const Server server(Answer("302 Found", "Location: file://" + secret + "\r\n", ""));
    ExpectNothing(server.Url());
    EXPECT_EQ(server.connections(), 2);
    std::filesystem::remove(secret);
}

TEST_F(Download, RefusesOtherProtocols) {
    const std::string secret =
        folder_.path().parent_path() / (folder_.path().filename().string() + "-secret");
    std::ofstream(secret) << "secret";
    for (const std::string &url :
         {"file://" + secret, std::string("ftp://127.0.0.1/x"), std::string("no url"), std::string()}) {
        EXPECT_TRUE(FAILED(Fetch(url))) << url;
    }
    EXPECT_EQ(FolderContents(folder_.path()), Contents());
    std::filesystem::remove(secret);
}

TEST_F(Download, EndsAtTheLimitOnSize) {
    const Server announced(Answer("200 OK", "Content-Length: 99999999999\r\n", "x"));
    ExpectNothing(announced.Url());
    const Server silent(Answer("200 OK", "", std::string(size_t{40} << 20, 'x')));
    ExpectNothing(silent.Url());
}

TEST_F(Download, EndlessRedirectionsEnd) {
    const Server server(Answer("302 Found", "Location: /again\r\n", ""));
    ExpectNothing(server.Url());
    EXPECT_LE(server.connections(), 30);
}

}  // namespace
