#pragma once
// Bruker directories (fid, ser, 1r, 1i with acqus and procs) and flat files (.fid/.aqs, .1r/.fqs).

#include "formats/registry.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace nmr {

/// A parameter file: text, or the values of an array, by name. Names keep their case (SW is not SW_h).
class BrukerParameters {
public:
    static Result<BrukerParameters> Read(const std::string& path);
    static Result<BrukerParameters> Parse(ByteSpan bytes);

    std::optional<std::string> Text(std::string_view name) const; ///< without angle brackets
    std::optional<double> Number(std::string_view name) const;
    std::vector<double> Numbers(std::string_view name) const; ///< of an array record
    const std::string& origin() const { return origin_; }
    const std::string& title() const { return title_; }
    /// ORIGIN names one of the vendor's programs.
    bool IsVendorFile() const;

private:
    std::map<std::string, std::string, std::less<>> records_;
    std::string origin_, title_;
};

/// Complex points of delay of the digital filter: GRPDLY, else the table of DSPFVS and DECIM; 0 for none.
double BrukerGroupDelay(const BrukerParameters& acqus);

Status ReadParaBruker(const ReadRequest& request, const std::string& acqus_path);
Status ReadParaBrukerAcq(const ReadRequest& request, const std::string& acqus_path);
Status ReadParaBrukerProcs(const ReadRequest& request, const std::string& procs_path);
Status ReadDataBruker(const ReadRequest& request);
Status ReadDataBrukerProc(const ReadRequest& request, const std::string& re_path, const std::string& im_path);

/// Families 4 and 8: parameters, then points.
Status ReadBruker(const ReadRequest& request);

/// "SPEC.BRUD" or "SPEC.BRUF" beside the data, so that a file association can open the folder. Only
/// the window calls it, and nothing is said where the folder can't be written.
void LeaveBrukerDummy(const FileType& type);

} // namespace nmr
