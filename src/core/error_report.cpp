#include "core/error_report.h"

#include <algorithm>
#include <cerrno>
#include <iterator>

namespace nmr {

namespace {

struct ErrorWords {
    int number;
    std::string_view text;
};

constexpr ErrorWords kFileErrors[] = {
    {6, "Over flow! "},
    {7, "not enough memory"},
    {9, "Invalid Index number"},
    {11, "divided by 0"},
    {14, "not enough area for a string"},
    {52, "not Valid File Name"},
    {53, "File is not found"},
    {54, "Can not Open File in this Mode"},
    {55, "File is already open"},
    {57, "Inside Disk Error"},
    {61, "Disk is full"},
    {62, "EOF is not standard format\nor read files beyond EOF"},
    {64, "not Valid File Name"},
    {68, "Device is not Ready"},
    {71, "Colse Door, after setting Disk on Drive"},
    {76, "Path is not found or Invalid path name"},
};

constexpr int kInsideDiskError = 57;
constexpr int kDriveDoorOpen = 71;

struct ErrnoRow {
    int system, number;
};
constexpr ErrnoRow kErrnos[] = {
    {0, 0},       {ENOMEM, 7},  {EOVERFLOW, 6}, {ENAMETOOLONG, 52}, {EILSEQ, 52},  {ENOENT, 53}, {EACCES, 54},
    {EPERM, 54},  {EROFS, 54},  {EISDIR, 54},   {EBUSY, 55},        {ETXTBSY, 55}, {EEXIST, 55}, {EAGAIN, 55},
    {ENOSPC, 61}, {EDQUOT, 61}, {ENXIO, 68},    {ENODEV, 68},       {ENOTDIR, 76}, {ELOOP, 76},  {ENOMEDIUM, 71},
};

void ShowError(Asker& asker, std::string text)
{
    MessageBox box;
    box.text = std::move(text);
    box.title = "Error";
    box.icon = Icon::error;
    asker.Message(box);
}

} // namespace

void ErrorReport(Asker& asker, std::string_view location, int number, std::string_view description)
{
    ShowError(asker, std::string(location) + "\nError " + std::to_string(number) + ": " + std::string(description));
}

void ErrorReport(Asker& asker, const Error& error)
{
    ShowError(asker, error.where + "\n" + error.text);
}

std::string FileErrorText(int number, std::string_view system_text)
{
    const auto row = std::ranges::find(kFileErrors, number, &ErrorWords::number);
    return std::string(row == std::end(kFileErrors) ? system_text : row->text);
}

int RuntimeErrorNumber(int errno_value)
{
    const auto row = std::ranges::find(kErrnos, errno_value, &ErrnoRow::system);
    return row == std::end(kErrnos) ? kInsideDiskError : row->number;
}

int File_Error(Asker& asker, int number, std::string_view location, std::string_view system_text)
{
    if (number == 0) return 0;
    MessageBox box;
    box.text = FileErrorText(number, system_text);
    if (!location.empty()) box.text.append(1, '(').append(location).append(1, ')');
    box.title = "Disk Error";
    const bool single = number != kDriveDoorOpen;
    if (!single) box.buttons = {Button::ok, Button::cancel};
    switch (asker.Message(box)) {
    case Button::ok:
    case Button::retry:
        return single ? 2 : 0;
    case Button::ignore:
        return 1;
    case Button::cancel:
    case Button::abort:
        return 2;
    default:
        return 3;
    }
}

} // namespace nmr
