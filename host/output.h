#ifndef HOST_OUTPUT_H
#define HOST_OUTPUT_H

#include <string>
#include <string_view>

namespace velmarhost {

enum class ColorChoice { kAuto, kAlways, kNever };
enum class Style { kPlain, kFolder, kFaint, kWarning };

// Standard output, buffered. Throws OutputClosed when the reader has gone and HostError when a write fails
// otherwise.
class Output {
  public:
    // `color` is whether Text wraps its styles in escape sequences.
    explicit Output(bool color) : color_(color) {}

    // Bytes as they are.
    void Raw(std::string_view bytes);
    // A text that may come from a library: escaped, in the style.
    void Text(std::string_view text, Style style = Style::kPlain);
    // To be called before the end, as only this tells of the last failure.
    void Flush();

  private:
    bool color_;
    std::string buffer_;
};

// Colour is for terminals that can show it, unless the user says otherwise: by the choice, or by NO_COLOR.
bool WantsColor(ColorChoice choice);

// True when a person watches standard error on a terminal that can move its cursor.
bool WantsProgress();

// One line for the user on standard error, escaped.
void PrintMessage(std::string_view text);

}  // namespace velmarhost

#endif
