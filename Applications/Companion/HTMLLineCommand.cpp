#include "Applications/Companion/Commands.h"
#include "Applications/Companion/Invocation.h"
#include "Applications/Companion/Texts.h"
#include "Applications/Composition/LiveHTMLReader.h"
#include "Foundation/Text.h"
#include "Platform/HTMLReader/HTMLReader.h"
#include "Platform/WidgetHost/CallingThreadMainExecutor.h"
#include "WidgetExtension/HTMLAttributedTextUtil.h"

#include <cerrno>
#include <cstring>
#include <unistd.h>

namespace Companion {

namespace {

// All of standard input. What holds more is no description.
std::string boundedInput() {
    constexpr std::size_t mebibyte = 1024UL * 1024;
    constexpr std::size_t mostMebibytes = 16;
    std::string content;
    std::string buffer(64UL * 1024, '\0');
    while (true) {
        auto const count = ::read(STDIN_FILENO, buffer.data(), buffer.size());
        if (count == 0) return content;
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) throw CommandError::failed(Texts::unreadableInput(std::strerror(errno)));
        content.append(buffer, 0, static_cast<std::size_t>(count));
        if (content.size() > mostMebibytes * mebibyte)
            throw CommandError::failed(Texts::inputIsTooLarge(mostMebibytes));
    }
}

// At most so many bytes of `text`, without breaking a character that is whole.
std::string_view prefix(std::string_view text, std::size_t bytes) {
    if (text.size() <= bytes) return text;
    constexpr std::size_t mostContinuations = 3;
    auto const isContinuation = [&](std::size_t at) {
        return (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80U;
    };
    auto end = bytes;
    while (bytes - end < mostContinuations && isContinuation(end))
        --end;
    return text.substr(0, end);
}

// What is shown of a text, line by line. A plain text comes whole from the parser, whatever it holds and
// however long it is; a person reads the beginning.
std::string shown(std::string_view text) {
    constexpr std::size_t mostBytes = 64UL * 1024;
    constexpr std::size_t mostCharacters = 1000;
    // The last line need not end the text twice.
    if (text.ends_with('\n')) text.remove_suffix(1);
    auto rest = prefix(text, mostBytes);
    bool const isCut = rest.size() < text.size();
    std::string output;
    while (true) {
        auto const end = rest.find('\n');
        auto const line = Foundation::Text::neutralized(rest.substr(0, end));
        auto const kept = Foundation::Text::truncated(line, mostCharacters);
        bool const isLast = end == std::string_view::npos;
        bool const isCutHere = isLast && isCut && !kept.ends_with("…");
        output += kept + (isCutHere ? "…\n" : "\n");
        if (isLast) return output;
        rest.remove_prefix(end + 1);
    }
}

ExitCode run(Invocation const& invocation) {
    Platform::CallingThreadMainExecutor main;
    auto const line =
        WidgetExtension::HTMLAttributedTextUtil::parse(boundedInput(), Composition::liveHTMLReader(), main);
    if (line) invocation.console.write(shown(line->string));
    return ExitCode::done;
}

} // namespace

Command htmlLineCommand() {
    return {
        .path = "html-line",
        .summary = Texts::text("html-line-summary"),
        .description = Texts::text("html-line-description"),
        .examples = {{"quillora html-line < invitation.html", Texts::text("html-line-example-1")}},
        .run = run,
    };
}

} // namespace Companion
