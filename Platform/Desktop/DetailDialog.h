#pragma once

#include "Foundation/URL.h"
#include "Platform/Appearance/ColorScheme.h"

#include <functional>
#include <string>
#include <vector>

struct _GtkWidget;

namespace Platform {

/// What is told of one thing. The texts are shown as they stand; nothing in them is markup.
struct DetailPage {
    struct Link {
        std::string title;
        Foundation::URL target;

        bool operator==(Link const&) const = default;
    };

    std::string title;
    std::vector<std::string> lines;
    std::vector<Link> links;

    bool operator==(DetailPage const&) const = default;
};

/// An underscore stands before the letter that presses a button with Alt.
struct DetailDialogTexts {
    std::string close;
};

/// Tells more of one thing, in a window that Escape closes. There is one page at a time. The display has to
/// be open by the time that it is first shown.
class DetailDialog final {
public:
    /// `openLink` hears which of the page's links was pressed.
    DetailDialog(DetailDialogTexts texts, std::function<void(Foundation::URL const&)> openLink);
    DetailDialog(DetailDialog const&) = delete;
    DetailDialog& operator=(DetailDialog const&) = delete;
    ~DetailDialog();

    /// Takes the place of the page that is shown, if there is one.
    void show(DetailPage const& page, ColorScheme scheme);

    /// Adds a line below the page; without a page there is nobody to tell.
    void tell(std::string const& line);

    void close();

private:
    void build(DetailPage const& page);
    void addLink(DetailPage::Link const& link);

    DetailDialogTexts texts;
    std::function<void(Foundation::URL const&)> openLink;
    _GtkWidget* dialog = nullptr;
    _GtkWidget* box = nullptr; // The dialog's own.
};

} // namespace Platform
