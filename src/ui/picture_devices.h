#pragma once
// Picture files, clipboard and printers of the desktop.

#include "session/picture_commands.h"

namespace nmr {

class QtPictureDevices : public PictureDevices {
public:
    Result<std::string> Make(const PictureJob& job) override;
    void Copy(const std::vector<CopiedPicture>& pictures) override;
    std::unique_ptr<PrintDevice> Open(const std::string& printer) override;
};

} // namespace nmr
