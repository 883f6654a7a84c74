#include "content/date_parser.h"

#include <algorithm>
#include <array>
#include <limits>

#include "platform/windows/windows_api.h"

namespace {

using namespace std::string_view_literals;

constexpr int kFirstYear = 1900;

constexpr std::array kFullDays = {"Sunday"sv,   "Monday"sv, "Tuesday"sv, "Wednesday"sv,
                                  "Thursday"sv, "Friday"sv, "Saturday"sv};
constexpr std::array kShortDays = {"Sun"sv, "Mon"sv, "Tue"sv, "Wed"sv, "Thu"sv, "Fri"sv, "Sat"sv};
constexpr std::array kFullMonths = {"January"sv,   "February"sv, "March"sv,    "April"sv,
                                    "May"sv,       "June"sv,     "July"sv,     "August"sv,
                                    "September"sv, "October"sv,  "November"sv, "December"sv};
constexpr std::array kShortMonths = {"Jan"sv, "Feb"sv, "Mar"sv, "Apr"sv, "May"sv, "Jun"sv,
                                     "Jul"sv, "Aug"sv, "Sep"sv, "Oct"sv, "Nov"sv, "Dec"sv};
constexpr std::array kHalvesOfDay = {"am"sv, "pm"sv};

// A conversion that stores its number plus an addition.
struct NumberField {
    char letter;
    int std::tm::*field;
    int addition;
};

constexpr std::array kNumberFields = std::to_array<NumberField>({
    {'Y', &std::tm::tm_year, -kFirstYear},
    {'m', &std::tm::tm_mon, -1},
    {'d', &std::tm::tm_mday, 0},
    {'e', &std::tm::tm_mday, 0},
    {'j', &std::tm::tm_yday, -1},
    {'H', &std::tm::tm_hour, 0},
    {'k', &std::tm::tm_hour, 0},
    {'M', &std::tm::tm_min, 0},
    {'S', &std::tm::tm_sec, 0},
    {'w', &std::tm::tm_wday, 0},
    {'u', &std::tm::tm_wday, -1},
});

struct NameField {
    char letter;
    int std::tm::*field;
    std::span<const std::string_view> table;
};

constexpr std::array kNameFields = std::to_array<NameField>({
    {'A', &std::tm::tm_wday, kFullDays},
    {'a', &std::tm::tm_wday, kShortDays},
    {'B', &std::tm::tm_mon, kFullMonths},
    {'b', &std::tm::tm_mon, kShortMonths},
    {'h', &std::tm::tm_mon, kShortMonths},
});

struct ShortForm {
    char letter;
    std::string_view format;
};

constexpr std::array kShortForms = std::to_array<ShortForm>({
    {'D', "%m/%d/%y"},
    {'R', "%H:%M"},
    {'T', "%H:%M:%S"},
    {'X', "%H:%M:%S"},
    {'r', "%I:%M:%S %p"},
    {'x', "%Y:%m:%d"},
});

template <typename Table>
auto FindLetter(const Table &table, char letter) {
    const auto row = std::find_if(table.begin(), table.end(),
                                  [letter](const auto &entry) { return entry.letter == letter; });
    return row == table.end() ? nullptr : &*row;
}

bool IsSpace(char character) {
    return character == ' ' || (character >= '\t' && character <= '\r');
}

bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

// The fields are 32 bits wide. What lies beyond stays at their limits, where no date is.
int32_t ClampToField(int64_t number) {
    using Limits = std::numeric_limits<int32_t>;
    return static_cast<int32_t>(std::clamp<int64_t>(number, Limits::min(), Limits::max()));
}

class FieldParser {
  public:
    FieldParser(std::string_view text, std::tm &record) : text_(text), record_(record) {}

    std::string_view rest() const { return text_; }

    bool Parse(std::string_view format) {
        while (!format.empty()) {
            const char next = format[0];
            format.remove_prefix(1);
            if (IsSpace(next)) {
                SkipSpace();
            } else if (next == '%' && !format.empty()) {
                if (!ParseConversion(format)) return false;
            } else if (!Take(next)) {
                return false;
            }
        }
        return true;
    }

  private:
    // Takes the conversion off the format, which begins behind its "%".
    bool ParseConversion(std::string_view &format) {
        if (format[0] == 'E' || format[0] == 'O') format.remove_prefix(1);
        if (format.empty()) return false;
        const char letter = format[0];
        format.remove_prefix(1);
        if (const NumberField *number = FindLetter(kNumberFields, letter)) {
            return StoreNumber(number->field, [=](int64_t value) { return value + number->addition; });
        }
        if (const NameField *name = FindLetter(kNameFields, letter)) return StoreName(*name);
        if (const ShortForm *form = FindLetter(kShortForms, letter)) return Parse(form->format);
        return ParseSpecial(letter);
    }

    bool ParseSpecial(char letter) {
        switch (letter) {
            case 'y':
                return StoreNumber(&std::tm::tm_year,
                                   [](int64_t year) { return year < 70 ? year + 100 : year; });
            case 'C':
                return StoreNumber(&std::tm::tm_year,
                                   [](int64_t century) { return century * 100 - kFirstYear; });
            case 'I':
            case 'l':
                return StoreNumber(&std::tm::tm_hour, [](int64_t hour) { return hour == 12 ? 0 : hour; });
            case 'p':
                return ApplyHalfOfDay();
            case 'n':
                return Take('\n');
            case 't':
                return Take('\t');
            case '%':
                return Take('%');
            default:
                return StepOver(letter);
        }
    }

    template <typename Convert>
    bool StoreNumber(int std::tm::*field, const Convert &convert) {
        const std::optional<int32_t> number = TakeNumber();
        if (number) record_.*field = ClampToField(convert(int64_t{*number}));
        return number.has_value();
    }

    bool StoreName(const NameField &name) {
        const std::optional<int> row = MatchNameTable(text_, name.table);
        if (row) record_.*name.field = *row;
        return row.has_value();
    }

    // Hours that are there already go up by half a day for "am" too.
    bool ApplyHalfOfDay() {
        const std::optional<int> half = MatchNameTable(text_, kHalvesOfDay);
        if (!half) return false;
        const bool later = record_.tm_hour != 0 || *half == 1;
        if (later) record_.tm_hour = ClampToField(int64_t{record_.tm_hour} + 12);
        return true;
    }

    // A letter that names no field, such as "z": a "%" in the text, or any character and then the letter.
    bool StepOver(char letter) {
        if (text_.empty()) return false;
        const bool percent = text_[0] == '%';
        text_.remove_prefix(1);
        return percent || Take(letter);
    }

    void SkipSpace() {
        while (!text_.empty() && IsSpace(text_[0]))
            text_.remove_prefix(1);
    }

    bool Take(char wanted) {
        if (text_.empty() || text_[0] != wanted) return false;
        text_.remove_prefix(1);
        return true;
    }

    // As strtol with 32 bits: leading space and a sign are taken, and so are any number of digits.
    std::optional<int32_t> TakeNumber() {
        SkipSpace();
        const bool negative = !text_.empty() && text_[0] == '-';
        if (negative || (!text_.empty() && text_[0] == '+')) text_.remove_prefix(1);
        if (text_.empty() || !IsDigit(text_[0])) return std::nullopt;
        int64_t number = 0;
        for (; !text_.empty() && IsDigit(text_[0]); text_.remove_prefix(1)) {
            const int digit = text_[0] - '0';
            number = ClampToField(number * 10 + (negative ? -digit : digit));
        }
        return static_cast<int32_t>(number);
    }

    std::string_view text_;
    std::tm &record_;
};

}  // namespace

int64_t ParseTimeStamp(std::string_view text, std::string_view format) {
    std::tm record = {};
    // A mismatch is no failure: what came before it stands.
    ParseTimeFields(text, format, record);
    return _mktime64(&record);
}

std::optional<std::string_view> ParseTimeFields(std::string_view text, std::string_view format,
                                                std::tm &record) {
    FieldParser parser(text, record);
    if (!parser.Parse(format)) return std::nullopt;
    return parser.rest();
}

std::optional<int> MatchNameTable(std::string_view &text, std::span<const std::string_view> table) {
    const auto row = std::find_if(table.begin(), table.end(),
                                  [&](std::string_view name) { return text.starts_with(name); });
    if (row == table.end()) return std::nullopt;
    text.remove_prefix(row->size());
    return static_cast<int>(row - table.begin());
}
