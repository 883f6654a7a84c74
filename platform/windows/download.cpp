#include <curl/curl.h>

#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "platform/limits.h"
#include "platform/windows/atomic_file.h"
#include "platform/windows/text.h"
#include "platform/windows/windows_api.h"

namespace {

constexpr long kConnectSeconds = 10;
constexpr long kTotalSeconds = 60;
constexpr long kMaxRedirects = 10;
constexpr const char *kProtocols = "http,https";

struct EasyCloser {
    void operator()(CURL *easy) const { curl_easy_cleanup(easy); }
};
using Easy = std::unique_ptr<CURL, EasyCloser>;

struct Transfer {
    AtomicFile file;
    uint64_t size = 0;
};

// Taking fewer bytes than offered ends the transfer. The size is counted here too: a server need not announce
// it.
size_t TakeBytes(const char *bytes, size_t, size_t count, void *context) {
    auto *const transfer = static_cast<Transfer *>(context);
    transfer->size += count;
    const bool taken =
        !limits::kDownloadBytes.IsPassedBy(transfer->size) && transfer->file.Write(bytes, count);
    return taken ? count : 0;
}

Easy OpenTransfer() {
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
    return Easy(curl_easy_init());
}

bool Fetch(CURL *easy, const std::string &url, Transfer &transfer) {
    bool ready = true;
    const auto set = [&ready, easy](CURLoption option, auto value) {
        ready = ready && curl_easy_setopt(easy, option, value) == CURLE_OK;
    };
    set(CURLOPT_URL, url.c_str());
    set(CURLOPT_PROTOCOLS_STR, kProtocols);
    set(CURLOPT_REDIR_PROTOCOLS_STR, kProtocols);
    set(CURLOPT_FOLLOWLOCATION, 1L);
    set(CURLOPT_MAXREDIRS, kMaxRedirects);
    set(CURLOPT_CONNECTTIMEOUT, kConnectSeconds);
    set(CURLOPT_TIMEOUT, kTotalSeconds);
    set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(limits::kDownloadBytes.value));
    set(CURLOPT_FAILONERROR, 1L);
    set(CURLOPT_NOSIGNAL, 1L);  // a timer signal would hit a thread of the host
    set(CURLOPT_WRITEFUNCTION, &TakeBytes);
    set(CURLOPT_WRITEDATA, static_cast<void *>(&transfer));
    const CURLcode result = ready ? curl_easy_perform(easy) : CURLE_FAILED_INIT;
    if (result == CURLE_FILESIZE_EXCEEDED) limits::kDownloadBytes.Hit();
    return result == CURLE_OK;
}

}  // namespace

HRESULT URLDownloadToFileW(LPUNKNOWN, LPCWSTR url, LPCWSTR path, DWORD, LPBINDSTATUSCALLBACK) {
    if (url == nullptr || path == nullptr) return E_INVALIDARG;
    std::optional<AtomicFile> file = AtomicFile::Create(WideToUtf8(path));
    const Easy easy = OpenTransfer();
    if (!file || !easy) return E_FAIL;
    Transfer transfer{std::move(*file)};
    if (!Fetch(easy.get(), WideToUtf8(url), transfer)) return INET_E_DOWNLOAD_FAILURE;
    return transfer.file.Commit() ? S_OK : E_FAIL;
}
