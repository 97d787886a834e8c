#pragma once
// The plot as a picture: into a file, onto the clipboard, onto paper.

#include "core/settings.h"
#include "layout/paper.h"
#include "layout/picture_job.h"
#include "session/forms.h"
#include "session/session.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace nmr {

/// What the form of a picture file holds.
struct PictureChoice {
    PictureFormat format = PictureFormat::pdf;
    PictureSize size{200, 150, true, 300};

    static PictureChoice From(const Settings& settings); ///< by the lengths of the plot on paper
    static PictureChoice From(const forms::Values& values);
    forms::Values ToValues() const;
    /// What the form says of the size: pixels and expected size of the file, or why it can't be.
    std::string Hint() const;
};

/// What the form of printing holds.
struct PrintChoice {
    std::string printer; ///< a queue, or kPdfPrinter
    int paper = 1;       ///< a code of Papers()
    Orientation orientation = Orientation::landscape;

    static PrintChoice From(const Settings& settings);
    static PrintChoice From(const forms::Values& values);
    forms::Values ToValues() const;
    void Keep(Settings& settings) const;
};
/// The printer that is always there: it asks for a file.
inline constexpr char kPdfPrinter[] = "PDF";

using DrawPage = std::function<void(Canvas&, const RectD& page)>;

/// A printer that has been opened.
class PrintDevice {
public:
    virtual ~PrintDevice() = default;
    /// Asks for a paper; returns the size in mm that the printer will take, as it lies.
    virtual RectD SetPaper(const PrintChoice& choice) = 0;
    /// Prints one page; false when the document can't be begun or sent.
    virtual bool Print(const std::string& job_name, const DrawPage& draw) = 0;
};

struct CopiedPicture {
    PictureFormat format;
    std::string bytes;
};

/// What the platform has for pictures.
class PictureDevices {
public:
    virtual ~PictureDevices() = default;
    virtual Result<std::string> Make(const PictureJob& job) = 0;
    /// Puts one picture in several formats on the clipboard, all at once.
    virtual void Copy(const std::vector<CopiedPicture>& pictures) = 0;
    /// nullptr when no such printer is there. Only now the queue is asked for.
    virtual std::unique_ptr<PrintDevice> Open(const std::string& printer) = 0;

    std::optional<PictureChoice> last; ///< of this run's pictures
};

void SavePicture_Click(Session& s);  ///< "Save Picture"
void CopyPicture_Click(Session& s);  ///< "Copy"
void PrintPicture_Click(Session& s); ///< "Print"

} // namespace nmr
