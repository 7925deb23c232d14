#include "platform/code_page.h"

#include <iconv.h>
#include <langinfo.h>

#include <algorithm>
#include <array>

#include "platform/utf8.h"

namespace vorn {

namespace {

/// A converter between two encodings, closed on every path.
class Converter {
  public:
    Converter(const char* to, const char* from) : handle_(iconv_open(to, from)) {}
    ~Converter() {
        if (Open()) iconv_close(handle_);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    bool Open() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

    /// Converts `text`; `replacement` stands for each piece that cannot be converted.
    std::string Convert(std::string_view text, std::string_view replacement, bool utf8Input) {
        std::string result;
        // The interface takes a pointer to changeable bytes and does not change them.
        char* input = const_cast<char*>(text.data());
        std::size_t inputLeft = text.size();
        std::array<char, 256> buffer{};
        while (inputLeft > 0) {
            char* output = buffer.data();
            std::size_t outputLeft = buffer.size();
            const std::size_t before = inputLeft;
            iconv(handle_, &input, &inputLeft, &output, &outputLeft);
            result.append(buffer.data(), buffer.size() - outputLeft);
            const bool stuck = inputLeft == before;  // the buffer has room for any one character
            if (stuck) {
                result += replacement;
                // One byte, and in UTF-8 a whole character.
                const std::size_t character = utf8Input ? Utf8First({input, inputLeft}).bytes : 1;
                const std::size_t skipped = std::max<std::size_t>(character, 1);
                input += skipped;
                inputLeft -= skipped;
            }
        }
        return result;
    }

  private:
    iconv_t handle_;
};

/// The codeset of the process's locale. The C locale's ASCII counts as UTF-8.
const char* CodePage() {
    const std::string_view codeset = nl_langinfo(CODESET);
    return codeset.empty() || codeset == "ANSI_X3.4-1968" ? "UTF-8" : codeset.data();
}

constexpr std::string_view ReplacementCharacter = "\xEF\xBF\xBD";

}  // namespace

std::string Utf8FromCodePage(std::string_view text) {
    Converter converter("UTF-8", CodePage());
    return converter.Open() ? converter.Convert(text, ReplacementCharacter, false) : std::string(text);
}

std::string CodePageFromUtf8(std::string_view text) {
    Converter converter(CodePage(), "UTF-8");
    return converter.Open() ? converter.Convert(text, "?", true) : std::string(text);
}

}  // namespace vorn
