#include "Applications/Companion/Doctor/PreferenceFault.h"

#include "Applications/Companion/DoctorTexts.h"
#include "Applications/Companion/ShellWord.h"
#include "Applications/Companion/Texts.h"

namespace Companion::Doctor {

std::optional<PreferenceFault> preferenceFault(Platform::FileManager const& files,
                                               std::filesystem::path const& file,
                                               Platform::GuardedPreference::Form form) {
    auto const content = files.contents(file, Platform::largestPreferenceFile);
    auto const word = shellWord(file.string());
    if (content) {
        if (Platform::isWhole(form, *content)) return std::nullopt;
        return PreferenceFault{.reason = Texts::fileIsDamaged(), .mend = Texts::moveAwayCommand(word)};
    }
    if (content.error() == std::errc::no_such_file_or_directory) return std::nullopt;
    return PreferenceFault{.reason = Texts::told(content.error().message()),
                           .mend = content.error() == std::errc::permission_denied
                                       ? Texts::makeUsableCommand(word)
                                       : Texts::moveAwayCommand(word)};
}

} // namespace Companion::Doctor
