#include "Applications/Companion/Commands.h"
#include "Applications/Companion/ShownDay.h"
#include "Applications/Companion/Texts.h"

namespace Companion {

Command dayCommand(CommandRun run) {
    return {
        .path = "day",
        .summary = Texts::text("day-summary"),
        .description = Texts::text("day-description"),
        .options =
            withDayChoice({{.name = "--family",
                            .valueName = "FAMILY",
                            .help = Texts::text("day-option-family"),
                            .choices = {"small", "medium", "large"}},
                           {.name = "--at",
                            .valueName = "MOMENT",
                            .help = Texts::text("day-option-at"),
                            .kind = ValueKind::moment},
                           {.name = "--with-backend", .help = Texts::text("day-option-with-backend")},
                           {.name = "--text", .help = Texts::text("day-option-text")},
                           {.name = "--json", .help = Texts::text("day-option-json")},
                           {.name = "--waybar", .help = Texts::text("day-option-waybar")},
                           {.name = "--follow",
                            .help = Texts::text("day-option-follow"),
                            .excludes = {"--day", "--at", "--with-backend", "--png", "--svg", "--pdf"}},
                           {.name = "--live",
                            .help = Texts::text("day-option-live"),
                            .excludes = {"--offset", "--day", "--at", "--with-backend", "--text", "--json",
                                         "--waybar", "--follow", "--png", "--svg", "--pdf"}},
                           {.name = "--png",
                            .valueName = "FILE",
                            .help = Texts::text("day-option-png"),
                            .kind = ValueKind::file},
                           {.name = "--svg",
                            .valueName = "FILE",
                            .help = Texts::text("day-option-svg"),
                            .kind = ValueKind::file},
                           {.name = "--pdf",
                            .valueName = "FILE",
                            .help = Texts::text("day-option-pdf"),
                            .kind = ValueKind::file},
                           {.name = "--scheme",
                            .valueName = "SCHEME",
                            .help = Texts::text("day-option-scheme"),
                            .choices = {"light", "dark"}},
                           {.name = "--scale",
                            .valueName = "S",
                            .help = Texts::text("day-option-scale"),
                            .kind = ValueKind::number}}),
        .examples = {{"quillora day", Texts::text("day-example-1")},
                     {"quillora day --offset 1", Texts::text("day-example-2")},
                     {"quillora day --day 2026-03-11 --json", Texts::text("day-example-3")},
                     {"quillora day --with-backend", Texts::text("day-example-5")},
                     {"quillora day --family medium --scheme dark --png day.png",
                      Texts::text("day-example-4")},
                     {"quillora day --waybar --follow", Texts::text("day-example-follow")},
                     {"quillora day --live", Texts::text("day-example-live")}},
        .run = run,
    };
}

} // namespace Companion
