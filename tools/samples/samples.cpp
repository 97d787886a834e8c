#include "samples/samples.h"

#include "samples/vendor_samples.h"

#include <fmt/format.h>

#include <cstdlib>

namespace nmr::samples {

namespace {

using test::Image;
constexpr double kPi = 3.14159265358979323846;
constexpr double kScale = 1e6; // of stored integers
constexpr double kSweepPpm = kSweepHz / kMhz0;
const std::vector<double> kRowHeights{1, 0.5, 0.25};

using Values = std::vector<double>;

/// Real and imaginary values in turn.
Values FidValues(double height = 1, double delay = 0, double sense = 1)
{
    Values values;
    for (int n = 0; n < kFidPoints; ++n) {
        const auto z = kScale * height * FidPoint(n, delay);
        values.push_back(z.real());
        values.push_back(sense * z.imag());
    }
    return values;
}

/// One part of the spectrum, from high to low ppm.
Values SpectrumPart(bool imaginary)
{
    Values values;
    for (int i = 0; i < kSpectrumPoints; ++i) {
        const auto z = kScale * SpectrumPoint(FallingPpm(i));
        values.push_back(imaginary ? -z.imag() : z.real());
    }
    return values;
}

enum class Number { i32, f32, f64 };
std::string Encode(const Values& values, Number number, bool big_endian)
{
    Image file;
    std::size_t at = 0;
    for (const double value : values) {
        const std::size_t width = number == Number::f64 ? 8 : 4;
        const std::uint64_t bits = number == Number::i32   ? static_cast<std::uint64_t>(std::lround(value))
                                   : number == Number::f32 ? std::bit_cast<std::uint32_t>(static_cast<float>(value))
                                                           : std::bit_cast<std::uint64_t>(value);
        big_endian ? file.Big(at, bits, width) : file.Little(at, bits, width);
        at += width;
    }
    return file.str();
}

// --- Bruker

constexpr std::string_view kBrukerHead = "##TITLE= Parameter file, make_samples\n##JCAMPDX= 5.0\n"
                                         "##DATATYPE= Parameter Values\n##ORIGIN= UXNMR, computed\n##OWNER= nmr1d\n";

std::string Acqus(std::string_view more, int td = 2 * kFidPoints)
{
    // What the points need stands last, so that no cut loses it in silence.
    return fmt::format("{}##$BYTORDA= 0\n##$DTYPA= 0\n##$AQ_mod= 3\n##$PULPROG= <zg>\n##$NUC1= <1H>\n{}##$BF1= {}\n"
                       "##$SFO1= {:.6f}\n##$SW_h= {}\n##$TD= {}\n##END=\n",
                       kBrukerHead, more, kMhz0, kObserveMhz, kSweepHz, td);
}

std::string Procs(std::string_view more = "##$DTYPP= 0\n##$BYTORDP= 0\n##$NC_proc= 0\n")
{
    return fmt::format("{}{}##$OFFSET= {}\n##$SI= {}\n##$SW_p= {}\n##$SF= {}\n##END=\n", kBrukerHead, more,
                       kCarrierPpm + kSweepPpm / 2, kSpectrumPoints, kSweepHz, kMhz0);
}

Sample BrukerFid(std::string name, std::string what, std::string_view more, std::string fid)
{
    return {std::move(name), std::move(what), 4, Kind::fid, "fid", {{"acqus", Acqus(more)}, {"fid", std::move(fid)}}};
}

/// Pairs whose imaginary value was taken half a point after the real one.
Values SequentialValues()
{
    Values values;
    for (int n = 0; n < kFidPoints; ++n) {
        values.push_back(kScale * FidPoint(n).real());
        values.push_back(kScale * FidPoint(n + 0.5).imag());
    }
    return values;
}

std::string SerRows(Number number)
{
    std::string rows;
    for (const double height : kRowHeights) rows += Encode(FidValues(height), number, false);
    return rows;
}

void AddBruker(std::vector<Sample>& samples)
{
    const std::string list = "1s\n2s\n3000m\n", plane = "##ORIGIN= UXNMR\n##$FnMODE= 1\n##$TD= 3\n##END=\n";
    samples.push_back(BrukerFid("bruker-fid", "FID, 32-bit integers", "", Encode(FidValues(), Number::i32, false)));
    samples.push_back(BrukerFid("bruker-fid-float64", "FID, 64-bit floats, big-endian", "##$BYTORDA= 1\n##$DTYPA= 2\n",
                                Encode(FidValues(), Number::f64, true)));
    samples.push_back(BrukerFid("bruker-fid-old-console", "FID behind a digital filter that only DSPFVS and DECIM tell",
                                "##$DSPFVS= 10\n##$DECIM= 24\n",
                                Encode(FidValues(1, 2929.0 / 48), Number::i32, false)));
    samples.push_back(BrukerFid("bruker-fid-sequential", "FID with sequential quadrature (AQ_mod 2)", "##$AQ_mod= 2\n",
                                Encode(SequentialValues(), Number::i32, false)));
    samples.push_back({"bruker-ser",
                       "rows of an array over delays",
                       4,
                       Kind::fid,
                       "ser",
                       {{"acqus", Acqus("")},
                        {"acqu2s", plane, Cut::may_be_silent},
                        {"vdlist", list, Cut::may_be_silent},
                        {"ser", SerRows(Number::i32)}},
                       kRowHeights});
    samples.push_back({"bruker-spectrum",
                       "processed spectrum, 1r and 1i of different byte order than its FID",
                       4,
                       Kind::spectrum,
                       "1r",
                       {{"procs", Procs("##$DTYPP= 0\n##$BYTORDP= 1\n##$NC_proc= -2\n")},
                        {"acqus", Acqus("")},
                        {"1r", Encode(SpectrumPart(false), Number::i32, true)},
                        {"1i", Encode(SpectrumPart(true), Number::i32, true)}}});
    samples.push_back(
        {"bruker-flat-fid",
         "FID as flat files, 32-bit floats whatever the parameters say",
         8,
         Kind::fid,
         "001001.FID",
         {{"001001.AQS", Acqus("##$AQ_mod= 193\n")}, {"001001.FID", Encode(FidValues(), Number::f32, false)}}});
    samples.push_back({"bruker-flat-spectrum",
                       "spectrum as flat files",
                       8,
                       Kind::spectrum,
                       "001001.1R",
                       {{"001001.FQS", Procs()},
                        {"001001.AQS", Acqus("")},
                        {"001001.1R", Encode(SpectrumPart(false), Number::f32, false)},
                        {"001001.1I", Encode(SpectrumPart(true), Number::f32, false)}}});
    samples.push_back({"bruker-flat-ser",
                       "rows as flat files; only a list tells their values, and nothing tells how many they are",
                       8,
                       Kind::fid,
                       "001001.SER",
                       {{"001001.AQS", Acqus("##$AQ_mod= 193\n")},
                        {"vdlist", list, Cut::may_be_silent},
                        {"001001.SER", SerRows(Number::f32), Cut::may_be_silent}},
                       kRowHeights});
}

// --- Varian and CMX

std::array<double, 2> Pair(std::complex<double> z)
{
    return {z.real(), z.imag()};
}

std::string Procpar(const std::vector<test::VarianValue>& changes = {})
{
    std::vector<test::VarianValue> all{{"np", {std::to_string(2 * kFidPoints)}, 7}};
    all.insert(all.end(), changes.begin(), changes.end());
    return test::SampleProcpar(all);
}

Sample VarianSample(std::string name, std::string what, Kind kind, const char* file, test::VarianSample points,
                    const std::string& parameters = Procpar())
{
    const char* name_of_parameters = kind == Kind::fid ? "procpar" : "curpar";
    return {std::move(name),
            std::move(what),
            6,
            kind,
            file,
            {{name_of_parameters, parameters}, {file, test::VarianFile(points).str()}}};
}

void AddVarian(std::vector<Sample>& samples)
{
    using test::VarianWord;
    const auto fid = [](double scale) { return [scale](int, int n) { return Pair(std::conj(scale * FidPoint(n))); }; };
    const auto spectrum = [](int, int i) { return Pair(std::conj(kScale * SpectrumPoint(FallingPpm(i)))); };
    samples.push_back(VarianSample("varian-fid", "FID, 32-bit floats", Kind::fid, "fid",
                                   {.word = VarianWord::f32, .points = kFidPoints, .value = fid(kScale)}));
    samples.push_back(VarianSample("varian-fid-int16", "FID, 16-bit integers", Kind::fid, "fid",
                                   {.word = VarianWord::i16, .points = kFidPoints, .value = fid(15000)}));
    Sample array =
        VarianSample("varian-array", "array over d2", Kind::fid, "fid",
                     {.word = VarianWord::i32,
                      .blocks = 3,
                      .points = kFidPoints,
                      .value =
                          [](int row, int n) {
                              return Pair(std::conj(kScale * kRowHeights[static_cast<std::size_t>(row)] * FidPoint(n)));
                          }},
                     Procpar({{"array", {"\"d2\""}, 2}, {"arraydim", {"3"}, 7}, {"d2", {"1", "2", "3"}, 3}}));
    array.row_heights = kRowHeights;
    samples.push_back(array);
    samples.push_back(
        VarianSample("varian-data", "spectrum before phasing", Kind::spectrum, "data",
                     {.word = VarianWord::f32, .points = kSpectrumPoints, .status = 0x1B, .value = spectrum}));
    Sample phased = VarianSample(
        "varian-phasefile", "spectrum as displayed, real alone", Kind::spectrum, "phasefile",
        {.word = VarianWord::f32, .points = kSpectrumPoints, .status = 0x0B, .complex = false, .value = spectrum});
    phased.files.push_back({"data", phased.files.back().bytes, Cut::may_be_silent}); // always there beside it
    phased.has_imaginary = false;
    samples.push_back(phased);
}

std::string CmxData()
{
    const Values pairs = FidValues();
    Values values;
    for (std::size_t part = 0; part < 2; ++part)
        for (std::size_t i = part; i < pairs.size(); i += 2) values.push_back(pairs[i]);
    return Encode(values, Number::i32, true);
}

void AddCmx(std::vector<Sample>& samples)
{
    samples.push_back(
        {"cmx-fid",
         "FID: all real values, then all imaginary ones",
         9,
         Kind::fid,
         "data",
         {{"acq", fmt::format("ppfn=1pulse\nna=4\npd=5.0s\nch1=1\nsf1={:.6f}\nsw={}\ndw=0.00025s\nal={}\n", kObserveMhz,
                              kSweepHz / 1000, kFidPoints)},
          {"acq_2", "ac=4\nend_date=12/29/14\nend_time=10:00:00\n", Cut::may_be_silent},
          {"proc", fmt::format("com=computed\ndatatype=0\ndomain1=0\nrmvunits1=1\nrmv1=0\nrmp1={}\n", kMhz0)},
          {"data", CmxData()}}});
}

// --- JEOL Delta

test::DeltaSet DeltaFid(double delay = 0)
{
    test::DeltaSet set;
    set.stored = kFidPoints;
    set.last = kFidPoints - 1;
    set.stop = (kFidPoints - 1) / kSweepHz;
    set.base_mhz = kObserveMhz;
    set.values[0].number = kObserveMhz * 1e6;
    set.values[2].number = kCarrierPpm;
    set.values[4].number = kFidPoints;
    set.value = [delay](int n) { return Pair(std::conj(FidPoint(n, delay))); };
    return set;
}

/// Stored points before and behind the valid ones are no part of the spectrum.
test::DeltaSet DeltaSpectrum(double per_ppm, unsigned unit)
{
    test::DeltaSet set = DeltaFid();
    constexpr int kBefore = 3;
    set.unit = unit;
    set.first = kBefore;
    set.last = kBefore + kSpectrumPoints - 1;
    set.stored = kSpectrumPoints + 8;
    set.start = FallingPpm(0) * per_ppm;
    set.stop = FallingPpm(kSpectrumPoints - 1) * per_ppm;
    set.value = [](int i) { return Pair(std::conj(SpectrumPoint(FallingPpm(i - kBefore)))); };
    return set;
}

void AddDelta(std::vector<Sample>& samples)
{
    const auto add = [&](std::string name, std::string what, Kind kind, const test::DeltaSet& set) {
        samples.push_back(
            {std::move(name), std::move(what), 3, kind, "sample.jdf", {{"sample.jdf", test::DeltaSetFile(set).str()}}});
        samples.back().has_imaginary = set.axis_type != 1;
    };
    add("delta-fid", "FID, 64-bit floats", Kind::fid, DeltaFid());
    test::DeltaSet filtered = DeltaFid(2);
    filtered.float32 = true;
    filtered.little = false;
    filtered.values.push_back(test::DeltaText("orders", "2 5 7"));
    filtered.values.push_back(test::DeltaText("factors", "2  2"));
    add("delta-fid-filter", "FID, 32-bit floats, big-endian, behind a filter of two stages", Kind::fid, filtered);
    add("delta-spectrum-ppm", "spectrum over ppm, more points stored than valid", Kind::spectrum, DeltaSpectrum(1, 26));
    test::DeltaSet hertz = DeltaSpectrum(kObserveMhz, 13);
    hertz.axis_type = 1;
    add("delta-spectrum-hz", "spectrum over Hz, real alone", Kind::spectrum, hertz);
}

// --- JCAMP-DX

std::vector<long> Rounded(const Values& values, std::size_t first = 0, std::size_t step = 1)
{
    std::vector<long> out;
    for (std::size_t i = first; i < values.size(); i += step) out.push_back(std::lround(values[i]));
    return out;
}

std::string JcampHead(std::string_view type, std::string_view data_class)
{
    return fmt::format(
        "##TITLE= computed\n##JCAMP-DX= 5.01\n##DATA TYPE= {}\n##DATA CLASS= {}\n##ORIGIN= make_samples\n"
        "##OWNER= nmr1d\n##.OBSERVE FREQUENCY= {:.6f}\n##.OBSERVE NUCLEUS= ^1H\n",
        type, data_class, kObserveMhz);
}

/// Hz from 0 ppm, by the observe frequency, as most programs count them.
std::string JcampSpectrum(TableForm form)
{
    const double factor = kObserveMhz;
    return JcampHead("NMR SPECTRUM", "XYDATA") +
           fmt::format("##XUNITS= HZ\n##YUNITS= ARBITRARY UNITS\n##XFACTOR= 1\n##YFACTOR= 1\n##FIRSTX= {:.9f}\n"
                       "##LASTX= {:.9f}\n##NPOINTS= {}\n##XYDATA= (X++(Y..Y))\n",
                       FallingPpm(0) * factor, FallingPpm(kSpectrumPoints - 1) * factor, kSpectrumPoints) +
           TableText(Rounded(SpectrumPart(false)), form) + "##END=\n";
}

std::string Pages(std::string_view kind, const std::vector<long>& re, const std::vector<long>& im,
                  std::string_view columns)
{
    return fmt::format("##NTUPLES= {}\n##SYMBOL= X, R, I, N\n##VAR_DIM= {}, {}, {}, 2\n{}##FACTOR= 1, 1, 1, 1\n"
                       "##PAGE= N=1\n##DATA TABLE= (X++(R..R)), XYDATA\n{}##PAGE= N=2\n"
                       "##DATA TABLE= (X++(I..I)), XYDATA\n{}##END NTUPLES= {}\n##END=\n",
                       kind, re.size(), re.size(), im.size(), columns, TableText(re, TableForm::difdup),
                       TableText(im, TableForm::difdup), kind);
}

std::string TimeColumns()
{
    return fmt::format("##UNITS= SECONDS, ARBITRARY UNITS, ARBITRARY UNITS,\n##FIRST= 0, 0, 0, 1\n"
                       "##LAST= {:.9f}, 0, 0, 2\n",
                       (kFidPoints - 1) / kSweepHz);
}

const std::string kReference = fmt::format(
    "$$ Bruker specific parameters\n##$SF= {}\n##$GRPDLY= 0\n$$ End of Bruker specific parameters\n", kMhz0);

std::string JcampFid()
{
    const Values values = FidValues();
    return JcampHead("NMR FID", "NTUPLES") + kReference +
           Pages("NMR FID", Rounded(values, 0, 2), Rounded(values, 1, 2), TimeColumns());
}

std::string JcampPages()
{
    return JcampHead("NMR SPECTRUM", "NTUPLES") +
           Pages("NMR SPECTRUM", Rounded(SpectrumPart(false)), Rounded(SpectrumPart(true)),
                 fmt::format("##UNITS= PPM, ARBITRARY UNITS, ARBITRARY UNITS,\n##FIRST= {:.9f}, 0, 0, 1\n"
                             "##LAST= {:.9f}, 0, 0, 2\n",
                             FallingPpm(0), FallingPpm(kSpectrumPoints - 1)));
}

std::string JcampLink()
{
    return "##TITLE= all\n##JCAMP-DX= 5.01\n##DATA TYPE= LINK\n##BLOCKS= 2\n##TITLE= peaks\n"
           "##DATA TYPE= NMR PEAK TABLE\n##DATA CLASS= PEAK TABLE\n##NPOINTS= 2\n##PEAK TABLE= (XY..XY)\n8.125,1 "
           "5.625,0.5\n##END=\n" +
           JcampSpectrum(TableForm::difdup) + "##END=\n";
}

std::string JcampArray()
{
    constexpr double kDelays[] = {1, 2, 5};
    std::string text =
        JcampHead("nD NMR FID", "NTUPLES") + "##NUM DIM= 2\n" + kReference +
        fmt::format("##NTUPLES= nD NMR FID\n##VAR_NAME= TIME1, TIME2, FID/REAL, FID/IMAG\n##SYMBOL= T1, T2, R, I\n"
                    "##VAR_DIM= 3, {0}, {0}, {0}\n##UNITS= SECONDS, SECONDS, ARBITRARY UNITS, ARBITRARY UNITS\n"
                    "##FIRST= 1, 0, 0, 0\n##LAST= 5, {1:.9f}, 0, 0\n##FACTOR= 1, 1, 1, 1\n",
                    kFidPoints, (kFidPoints - 1) / kSweepHz);
    for (std::size_t row = 0; row < kRowHeights.size(); ++row) {
        const Values values = FidValues(kRowHeights[row]);
        for (const std::size_t part : {0U, 1U}) {
            const char symbol = part == 0 ? 'R' : 'I';
            text += fmt::format("##PAGE= T1={0}\n##DATA TABLE= (T2++({1}..{1})), PROFILE\n", kDelays[row], symbol);
            text += TableText(Rounded(values, part, 2), TableForm::difdup);
        }
    }
    return text + "##END NTUPLES= nD NMR FID\n##END=\n";
}

void AddJcamp(std::vector<Sample>& samples)
{
    const auto add = [&](std::string name, std::string what, Kind kind, std::string text) {
        samples.push_back({std::move(name), std::move(what), 13, kind, "sample.dx", {{"sample.dx", std::move(text)}}});
    };
    constexpr std::pair<TableForm, const char*> kForms[] = {{TableForm::affn, "affn"},
                                                            {TableForm::pac, "pac"},
                                                            {TableForm::sqz, "sqz"},
                                                            {TableForm::dif, "dif"},
                                                            {TableForm::difdup, "difdup"}};
    for (const auto& [form, form_name] : kForms) {
        add(fmt::format("jcamp-{}", form_name), fmt::format("spectrum over Hz, table in {}", form_name), Kind::spectrum,
            JcampSpectrum(form));
        samples.back().has_imaginary = false;
    }
    add("jcamp-ntuples", "spectrum over ppm, real and imaginary page", Kind::spectrum, JcampPages());
    add("jcamp-fid", "FID, real and imaginary page", Kind::fid, JcampFid());
    add("jcamp-link", "spectrum behind a list of peaks", Kind::spectrum, JcampLink());
    samples.back().has_imaginary = false;
    add("jcamp-array", "FIDs as rows over a delay", Kind::fid, JcampArray());
    samples.back().row_heights = kRowHeights;
}

// --- Text

/// Position and value; the last line has no end, so that a cut within a line shows.
std::string Columns(char separator, char decimal, bool imaginary)
{
    std::string text;
    for (int i = 0; i < kSpectrumPoints; ++i) {
        const auto z = kScale * SpectrumPoint(FallingPpm(i));
        std::string line = fmt::format("{:.6f}{}{:.3f}", FallingPpm(i), separator, z.real());
        if (imaginary) line += fmt::format("{}{:.3f}", separator, -z.imag());
        if (decimal != '.') std::ranges::replace(line, '.', decimal);
        text += line + "\n";
    }
    return text;
}

std::string FidColumns()
{
    std::string text;
    for (int n = 0; n < kFidPoints; ++n) {
        const auto z = kScale * FidPoint(n);
        text += fmt::format("{:.6f}\t{:.3f}\t{:.3f}\n", n / kSweepHz, z.real(), z.imag());
    }
    return text;
}

void AddText(std::vector<Sample>& samples)
{
    const auto add = [&](std::string name, std::string what, Kind kind, std::string entry, std::string text, Cut cut) {
        samples.push_back({std::move(name), std::move(what), 14, kind, entry, {{entry, std::move(text), cut}}});
    };
    add("csv-block", "block form with a head", Kind::spectrum, "sample.csv",
        fmt::format("$CSVSTART,,\nOBNUC,1H,\nOFR,{:.6f},\nSMODE,1,\nPOINT,{},\n$END,,\n", kMhz0, kSpectrumPoints) +
            Columns(',', '.', false),
        Cut::shows);
    samples.back().has_imaginary = false;
    constexpr Cut kSilent = Cut::may_be_silent; // a table without a head does not tell its length
    add("csv-comma", "table: comma, decimal point", Kind::spectrum, "sample.csv", Columns(',', '.', true), kSilent);
    add("csv-semicolon", "table: semicolon, decimal comma", Kind::spectrum, "sample.csv", Columns(';', ',', true),
        kSilent);
    add("csv-tab", "table: tab", Kind::spectrum, "sample.txt", Columns('\t', '.', true), kSilent);
    add("csv-blank", "table: blanks, decimal comma", Kind::spectrum, "sample.asc", Columns(' ', ',', true), kSilent);
    add("csv-fid", "FID in columns: time, real, imaginary", Kind::fid, "sample.txt", FidColumns(), kSilent);
}

} // namespace

std::complex<double> FidPoint(double n, double delay)
{
    const double t = n - delay; // points
    if (t < 0) return 0;
    std::complex<double> sum = 0;
    for (const KnownLine& line : kLines) {
        const double hz = (line.ppm - kCarrierPpm) * kMhz0;
        sum += line.height * std::exp(std::complex<double>(-kPi * kWidthHz, 2 * kPi * hz) * (t / kSweepHz));
    }
    return sum / 2.0;
}

std::complex<double> SpectrumPoint(double ppm)
{
    std::complex<double> sum = 0;
    for (const KnownLine& line : kLines)
        sum += line.height / std::complex<double>(1, 2 * (ppm - line.ppm) * kMhz0 / kWidthHz);
    return sum;
}

double FallingPpm(int i)
{
    return kCarrierPpm + kSweepPpm / 2 - i * kSweepPpm / kSpectrumPoints;
}

std::string TableText(const std::vector<long>& values, TableForm form)
{
    constexpr std::size_t kPerLine = 12;
    const auto letter = [](long value, const char* zero_up, const char* zero_down) {
        std::string digits = std::to_string(std::labs(value));
        digits[0] = (value < 0 ? zero_down : zero_up)[digits[0] - '0'];
        return digits;
    };
    const bool differs = form == TableForm::dif || form == TableForm::difdup;
    std::string text;
    for (std::size_t i = 0; i < values.size();) {
        text += std::to_string(values.size() - 1 - i); // counts points from the right
        const std::size_t end = std::min(i + kPerLine, values.size());
        if (form == TableForm::affn)
            for (; i < end; ++i) text += " " + std::to_string(values[i]);
        else if (form == TableForm::pac)
            for (; i < end; ++i) text += (values[i] < 0 ? "" : "+") + std::to_string(values[i]);
        else if (form == TableForm::sqz)
            for (; i < end; ++i) text += letter(values[i], "@ABCDEFGHI", "@abcdefghi");
        if (differs) {
            text += letter(values[i], "@ABCDEFGHI", "@abcdefghi");
            for (++i; i < end;) {
                const long step = values[i] - values[i - 1];
                std::size_t run = 1;
                while (form == TableForm::difdup && i + run < end && values[i + run] - values[i + run - 1] == step)
                    ++run;
                text += letter(step, "%JKLMNOPQR", "%jklmnopqr");
                if (run > 1) text += letter(static_cast<long>(run), " STUVWXYZs", "");
                i += run;
            }
            if (i < values.size()) --i; // the next line repeats it as check
        }
        text += '\n';
    }
    return text;
}

std::vector<Sample> AllSamples()
{
    std::vector<Sample> samples;
    AddBruker(samples);
    AddVarian(samples);
    AddCmx(samples);
    AddDelta(samples);
    AddJcamp(samples);
    AddText(samples);
    return samples;
}

} // namespace nmr::samples
