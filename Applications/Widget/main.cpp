#include "Applications/Widget/Texts.h"
#include "Applications/Widget/WidgetOptions.h"
#include "Applications/Widget/WidgetProgram.h"
#include "Foundation/Locale.h"
#include "Platform/Clock/SystemRegionSettings.h"
#include "Platform/Desktop/SingleInstance.h"

#include <malloc.h>

#include <csignal>
#include <cstdio>
#include <string>

namespace {

void fail(std::string const& text) {
    std::fprintf(stderr, "quillora-widget: %s\n", text.c_str());
}

int endEarly(Widget::EarlyEnd const& end) {
    if (end.exitCode == 0) {
        std::fputs(end.text.c_str(), stdout);
    } else {
        fail(end.text);
    }
    return end.exitCode;
}

int runWidget(Widget::WidgetOptions const& options, Foundation::Environment const& environment,
              Platform::SingleInstance* instance) {
    Widget::WidgetProgram program(environment, options);
    auto const outcome = program.run(instance);
    if (!outcome) {
        fail(outcome.error());
        return 1;
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    // One heap for all threads: they hardly ever want memory at once, and each heap of its own costs some.
    mallopt(M_ARENA_MAX, 1);
    // Writing to a program that has gone, or to a full quota, is an error of that write and not our end.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);

    auto const environment = Foundation::Environment::ofProcess();
    Widget::Texts::useLanguages(Foundation::Locale::textLanguages(environment));
    auto const options =
        Widget::parseCommandLine(argc, argv, Platform::SystemRegionSettings(environment).currentCalendar());
    if (!options) {
        return endEarly(options.error());
    }
    if (options->fixedMoment) {
        // A picture of another moment stands beside the widget that shows the present.
        return runWidget(*options, environment, nullptr);
    }
    Platform::SingleInstance instance(environment);
    if (!instance.isFirst()) {
        instance.handOver(options->family);
        return 0;
    }
    return runWidget(*options, environment, &instance);
}
