#include "ui/run_options.h"

#include <functional>

namespace nmr {
namespace {

bool ReadSize(const QString& text, RunOptions& options)
{
    const auto parts = text.split(QLatin1Char('x'));
    if (parts.size() != 2) return false;
    options.sized = true;
    options.size = {parts[0].toInt(), parts[1].toInt()};
    return options.size.width() >= 100 && options.size.height() >= 100 && options.size.width() <= 10000 &&
           options.size.height() <= 10000;
}

bool ReadRange(const QString& text, RunOptions& options)
{
    const auto parts = text.split(QLatin1Char(':'));
    if (parts.size() != 2) return false;
    bool left_good = false, right_good = false;
    const double left = parts[0].toDouble(&left_good), right = parts[1].toDouble(&right_good);
    options.range = {std::max(left, right), std::min(left, right)};
    return left_good && right_good && left != right;
}

bool ReadTheme(const QString& text, RunOptions& options)
{
    if (text != QLatin1String("light") && text != QLatin1String("dark")) return false;
    options.theme = text == QLatin1String("dark") ? 2 : 1;
    return true;
}

bool ReadNumber(const QString& text, double low, double high, double& number)
{
    bool good = false;
    number = text.toDouble(&good);
    return good && number >= low && number <= high;
}

struct Option {
    const char* name;
    const char* value; ///< its name in the help; nullptr for a switch
    const char* help;
    bool (*read)(const QString& value, RunOptions& options);
};

constexpr Option kOptions[] = {
    {"--help", nullptr, "this text",
     [](const QString&, RunOptions& o) {
         o.help = true;
         return true;
     }},
    {"--version", nullptr, "the version",
     [](const QString&, RunOptions& o) {
         o.version = true;
         return true;
     }},
    {"--screenshot", "OUT.png",
     "read FILE with an automatic transform, write a picture of the window, and end; asks nothing and leaves "
     "settings alone",
     [](const QString& value, RunOptions& o) {
         o.screenshot = value;
         return !value.isEmpty();
     }},
    {"--form", "NAME", "picture of this form instead: NMR1D_Form11, HelpSheet, or one of the small forms",
     [](const QString& value, RunOptions& o) {
         o.form = value;
         return !value.isEmpty();
     }},
    {"--size", "WxH", "size of the pictured window", ReadSize},
    {"--theme", "light|dark", "look of the pictured window", ReadTheme},
    {"--scale", "N", "pixels of the picture for one of the window, 0.5 to 4",
     [](const QString& value, RunOptions& o) { return ReadNumber(value, 0.5, 4, o.scale); }},
    {"--range", "LEFT:RIGHT", "shown range of the picture, ppm", ReadRange},
    {"--height", "N", "magnification of the picture",
     [](const QString& value, RunOptions& o) { return ReadNumber(value, 1e-3, 1e7, o.height); }},
    {"--startup-probe", nullptr,
     "print the milliseconds from the start of the process to the first paint (and to the picture of FILE), and "
     "the memory, and end",
     [](const QString&, RunOptions& o) {
         o.probe = true;
         return true;
     }},
};

const Option* FindOption(const QString& name)
{
    for (const Option& option : kOptions)
        if (name == QLatin1String(option.name)) return &option;
    return nullptr;
}

} // namespace

RunOptions ParseRunOptions(const QStringList& arguments)
{
    RunOptions options;
    for (qsizetype i = 0; i < arguments.size() && options.error.isEmpty(); ++i) {
        const QString& argument = arguments[i];
        if (!argument.startsWith(QLatin1String("--"))) {
            if (!options.file.isEmpty()) options.error = QStringLiteral("more than one file: %1").arg(argument);
            options.file = argument;
            continue;
        }
        const Option* option = FindOption(argument);
        if (option == nullptr) {
            options.error = QStringLiteral("no such option: %1").arg(argument);
            break;
        }
        const QString value = option->value != nullptr ? arguments.value(++i) : QString();
        if (!option->read(value, options)) options.error = QStringLiteral("%1: bad value \"%2\"").arg(argument, value);
    }
    return options;
}

QString RunHelp()
{
    QString text = QStringLiteral("nmr1d [options] [FILE]\n\nReads, transforms and shows one-dimensional NMR data. "
                                  "FILE may be a folder.\n\n");
    for (const Option& option : kOptions) {
        QString head = QLatin1String(option.name);
        if (option.value != nullptr) head += QLatin1Char(' ') + QLatin1String(option.value);
        text += QStringLiteral("  %1 %2\n").arg(head, -24).arg(QLatin1String(option.help));
    }
    return text;
}

} // namespace nmr
