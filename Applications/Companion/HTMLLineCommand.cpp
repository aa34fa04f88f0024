#include "Applications/Companion/Commands.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
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

ExitCode run(Invocation const& invocation) {
    auto const services = liveServices(invocation);
    Platform::CallingThreadMainExecutor main;
    auto const line =
        WidgetExtension::HTMLAttributedTextUtil::parse(boundedInput(), *services->htmlReader(), main);
    if (!line) return ExitCode::done;
    // A plain text keeps its lines; the last one need not end the text twice.
    std::string_view rest = line->string;
    if (rest.ends_with('\n')) rest.remove_suffix(1);
    std::string output;
    while (true) {
        auto const end = rest.find('\n');
        auto const shown = Foundation::Text::sanitizedUTF8(rest.substr(0, end));
        output += Foundation::Text::neutralized(shown) + "\n";
        if (end == std::string_view::npos) break;
        rest.remove_prefix(end + 1);
    }
    invocation.console.write(output);
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
