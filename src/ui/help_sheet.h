#pragma once
// The sheet under F1: what mouse and keys do.

#include <span>
#include <string_view>

class QWidget;

namespace nmr {

struct HelpRow {
    std::string_view gesture, effect;
};
struct HelpSection {
    std::string_view title;
    std::span<const HelpRow> rows;
};
std::span<const HelpSection> HelpSections();
void ShowHelpSheet(QWidget* parent);

} // namespace nmr
