#include "Applications/Companion/WholeDay.h"

#include "Applications/Companion/DayRequest.h"
#include "Applications/Companion/DayWithBackend.h"
#include "Applications/Companion/OutputFile.h"
#include "Applications/Companion/PictureStyle.h"
#include "Applications/Companion/PrintedDay.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "Platform/Face/FacePainter.h"
#include "Platform/Face/FacePicture.h"

#include <string>
#include <utility>

namespace Companion {

namespace {

// What else is printed must not end up in a document or a picture.
OutputReader readerOf(DayRequest const& request) {
    return request.writesText ? OutputReader::person : OutputReader::program;
}

std::string picture(std::string_view option, Platform::FacePainter const& painter,
                    Platform::FaceLayout const& layout, double scale) {
    auto drawn = option == "--png"   ? Platform::FacePicture::png(painter, layout, scale)
                 : option == "--svg" ? Platform::FacePicture::svg(painter, layout)
                                     : Platform::FacePicture::pdf(painter, layout);
    if (!drawn) throw CommandError::failed(Texts::told(drawn.error()));
    return *std::move(drawn);
}

void writePictures(Invocation const& invocation, WidgetExtension::ScheduleWidgetServices const& services,
                   Platform::FaceLayout const& layout, double scale) {
    Platform::FacePainter const painter(pictureStyle(*services.appearance, services.region->currentLocale()));
    for (auto const* option : pictureOptions) {
        auto const path = invocation.values.option(option);
        if (!path) continue;
        auto const bytes = picture(option, painter, layout, scale);
        if (goesToStandardOutput(invocation.values, option)) {
            invocation.console.write(bytes);
        } else {
            writeOutputFile(absolutePath(*path), bytes);
        }
    }
}

} // namespace

ExitCode showWholeDay(Invocation const& invocation) {
    if (!needsWholeDay(invocation.values)) return showDay(invocation);
    auto const request = dayRequest(invocation);
    auto asked = askedDay(invocation, request);
    if (invocation.values.has("--with-backend"))
        asked.day =
            withBackend(invocation, *asked.live, asked.services, std::move(asked.day), readerOf(request));
    if (drawsPictures(invocation.values)) {
        // Only a picture shows the scheme; for text alone the desktop need not be asked.
        asked.scheme = asked.services.appearance->colorScheme().value_or(Platform::ColorScheme::light);
        auto const layout = faceOf(asked.services, asked.day, request.family, asked.scheme);
        writePictures(invocation, asked.services, layout, request.scale);
    }
    printDay(invocation, request, asked);
    return ExitCode::done;
}

} // namespace Companion
