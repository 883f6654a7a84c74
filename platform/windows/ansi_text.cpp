#include "platform/windows/ansi_text.h"

#include <iconv.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <functional>
#include <optional>

#include "platform/windows/ansi_code_page.h"
#include "platform/windows/text.h"

namespace {

const char *const kWideCharset = "WCHAR_T";

class Converter {
  public:
    Converter(const char *to, const char *from) : descriptor_(iconv_open(to, from)) {}
    ~Converter() {
        if (IsOpen()) iconv_close(descriptor_);
    }
    Converter(const Converter &) = delete;
    Converter &operator=(const Converter &) = delete;

    bool IsOpen() const { return descriptor_ != reinterpret_cast<iconv_t>(-1); }

    // Converts the bytes of `input`. `skip` gets what is left at a place that has no conversion, appends what
    // shall stand there and gives the number of bytes to pass over.
    std::string Run(std::string_view input,
                    const std::function<size_t(std::string_view, std::string &)> &skip) {
        std::string output;
        while (!input.empty()) {
            if (Step(input, output)) continue;
            Flush(output);
            input.remove_prefix(skip(input, output));
        }
        Flush(output);
        return output;
    }

  private:
    // Takes what can be converted off `input`. False at bytes that have no conversion.
    bool Step(std::string_view &input, std::string &output) {
        std::array<char, 512> buffer;
        char *from = const_cast<char *>(input.data());
        size_t from_size = input.size();
        char *to = buffer.data();
        size_t to_size = buffer.size();
        const size_t result = iconv(descriptor_, &from, &from_size, &to, &to_size);
        const bool converted = result != static_cast<size_t>(-1) || errno == E2BIG;
        output.append(buffer.data(), buffer.size() - to_size);
        input.remove_prefix(input.size() - from_size);
        return converted;
    }

    // Brings out a character that waited for a combining mark.
    void Flush(std::string &output) {
        std::array<char, 16> buffer;
        char *to = buffer.data();
        size_t to_size = buffer.size();
        iconv(descriptor_, nullptr, nullptr, &to, &to_size);
        output.append(buffer.data(), buffer.size() - to_size);
    }

    iconv_t descriptor_;
};

std::string_view BytesOf(std::wstring_view text) {
    return {reinterpret_cast<const char *>(text.data()), text.size() * sizeof(wchar_t)};
}

}  // namespace

std::optional<std::wstring> WideFromAnsi(const char *charset, std::string_view text, bool &complete) {
    Converter converter(kWideCharset, charset);
    if (!converter.IsOpen()) return std::nullopt;
    complete = true;
    const std::string bytes = converter.Run(text, [&complete](std::string_view rest, std::string &output) {
        complete = false;
        const wchar_t same = static_cast<unsigned char>(rest[0]);
        output += BytesOf({&same, 1});
        return size_t{1};
    });
    std::wstring wide(bytes.size() / sizeof(wchar_t), L'\0');
    std::memcpy(wide.data(), bytes.data(), bytes.size());
    return wide;
}

std::optional<std::string> AnsiFromWide(const char *charset, std::wstring_view text,
                                        std::string_view replacement, bool &complete) {
    Converter converter(charset, kWideCharset);
    if (!converter.IsOpen()) return std::nullopt;
    complete = true;
    return converter.Run(BytesOf(text), [&complete, replacement](std::string_view, std::string &output) {
        complete = false;
        output += replacement;
        return sizeof(wchar_t);
    });
}

std::string AnsiFromWide(std::wstring_view text) {
    bool complete = true;
    return AnsiFromWide(CodePageCharset(GetACP()), text, "?", complete).value_or(std::string());
}
