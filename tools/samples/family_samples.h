#pragma once
// Small made-up files of every family, as far as detection looks at them. The tests change one thing
// at a time; the fuzz targets start from them.

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace nmr::test {

/// Bytes of a file, put at offsets. Grows as needed; gaps are zero.
class Image {
public:
    Image() = default;
    explicit Image(std::size_t size) : bytes_(size, '\0') {}

    Image& Text(std::size_t offset, std::string_view text)
    {
        Grow(offset + text.size());
        bytes_.replace(offset, text.size(), text);
        return *this;
    }
    Image& Little(std::size_t offset, std::uint64_t value, std::size_t width)
    {
        Grow(offset + width);
        for (std::size_t i = 0; i < width; ++i) bytes_[offset + i] = static_cast<char>(value >> (8 * i) & 255);
        return *this;
    }
    Image& Big(std::size_t offset, std::uint64_t value, std::size_t width)
    {
        Grow(offset + width);
        for (std::size_t i = 0; i < width; ++i)
            bytes_[offset + width - 1 - i] = static_cast<char>(value >> (8 * i) & 255);
        return *this;
    }
    Image& Long(std::size_t offset, std::int64_t value) { return Little(offset, static_cast<std::uint64_t>(value), 4); }
    Image& Short(std::size_t offset, std::int64_t value)
    {
        return Little(offset, static_cast<std::uint64_t>(value), 2);
    }
    Image& Byte(std::size_t offset, unsigned value) { return Little(offset, value, 1); }
    Image& Single(std::size_t offset, float value) { return Little(offset, std::bit_cast<std::uint32_t>(value), 4); }
    Image& Double(std::size_t offset, double value) { return Little(offset, std::bit_cast<std::uint64_t>(value), 8); }

    const std::string& str() const { return bytes_; }
    std::string first(std::size_t size) const { return bytes_.substr(0, size); }

private:
    void Grow(std::size_t size)
    {
        if (bytes_.size() < size) bytes_.resize(size, '\0');
    }
    std::string bytes_;
};

// --- JEOL

struct AliceSample {
    bool newer = false; ///< version 1.01: everything 176 bytes further
    int dimensions = 1;
    int spectrum = 0;
    float mhz_a = 399.65F, mhz_b = 100.4F;
    std::int32_t points1 = 1024, points2 = 128, data_bytes = 4096;
    std::int32_t header = 200;
};
inline Image AliceFile(const AliceSample& sample = {})
{
    const std::size_t shift = sample.newer ? 176 : 0;
    const auto base = shift + static_cast<std::size_t>(sample.header);
    Image file(4096);
    file.Text(sample.newer ? 258 : 82, sample.newer ? "WIN NMR VERSION 1.01" : "WIN NMR VERSION 1.00");
    file.Long(shift + 154, sample.header).Long(shift + 166, sample.data_bytes);
    file.Single(base + 346, sample.mhz_a).Single(base + 382, sample.mhz_b);
    file.Text(base + 584, "NON").Long(base + 698, sample.points1).Long(base + 730, sample.points2);
    return file.Short(base + 782, sample.dimensions).Short(base + 786, sample.spectrum);
}

inline Image LambdaFile(int dimensions = 1, int spectrum = 0, double mhz2 = 400.0)
{
    constexpr std::size_t kBase = 512;
    Image file(8192);
    file.Text(0, "JEOLUSF001").Long(64, kBase).Text(kBase + 373, "single_pulse").Long(kBase + 732, dimensions);
    file.Long(kBase + 660, 2).Short(kBase + 3920, spectrum);
    return file.Double(kBase + 2000, 400.0).Double(kBase + 2136, mhz2);
}

/// VAX D floats of 400 and 100, worked by hand: 0.78125 times 2 to the 9th and the 7th.
inline constexpr std::uint64_t kVax400 = 0x44C8, kVax100 = 0x43C8;

inline Image AlphaFile(int second_axis = 0, int spectrum = 0, std::uint64_t mhz2 = kVax400)
{
    Image file(6144);
    file.Text(0, "NFT1DT").Long(516, spectrum).Long(528, second_axis).Long(560, 2).Text(5440, "NON");
    return file.Little(2152, kVax400, 8).Little(2168, mhz2, 8);
}

struct DeltaSample {
    bool little_sections = true;
    bool little_header = false; ///< not seen in any real file
    int dimensions = 1;
    int unit = 28; ///< seconds
    std::string nucleus1 = "Proton", nucleus2 = "Carbon13";
    std::uint32_t sections = 2;
    std::size_t record_offset = 1360;
};
inline Image DeltaFile(const DeltaSample& sample = {})
{
    Image file(sample.record_offset + 16 + 2 * 64 + 512);
    const auto head = [&](std::size_t offset, std::uint64_t value) {
        sample.little_header ? file.Little(offset, value, 4) : file.Big(offset, value, 4);
    };
    const auto section = [&](std::size_t offset, std::uint64_t value) {
        sample.little_sections ? file.Little(offset, value, 4) : file.Big(offset, value, 4);
    };
    file.Text(0, "JEOL.NMR").Byte(8, sample.little_sections ? 1 : 0).Byte(9, 1).Byte(11, 2);
    file.Byte(12, static_cast<unsigned>(sample.dimensions)).Byte(32, 1).Byte(33, static_cast<unsigned>(sample.unit));
    if (sample.dimensions > 1) file.Byte(34, 1).Byte(35, 28);
    const std::uint32_t points1 = 1024, points2 = sample.dimensions > 1 ? 256 : 1;
    head(176, points1);
    head(180, points2);
    head(1292, std::uint64_t{points1} * points2 * 8 * sample.sections);
    file.Text(808, sample.nucleus1).Text(840, sample.nucleus2);
    const std::size_t start = sample.record_offset;
    head(1212, start);
    section(start, 64);
    section(start + 8, 1);
    file.Text(start + 16 + 16, "42              ").Text(start + 16 + 36, "scans                       ");
    file.Text(start + 80 + 16, "single_pulse.ex2").Text(start + 80 + 36, "experiment                  ");
    return file;
}

inline std::string ExHeader(std::string_view mode = "BCM", int dimensions = 1, int spectrum = 0)
{
    std::string text = "JEOL GX\nline 1\nline 2\nline 3\nline 4\nline 5\nline 6\n";
    text += "EXMOD " + std::string(mode) + "\nDTYPE " + std::to_string(dimensions) + "\nSMODE ";
    return text + std::to_string(spectrum) + "\n";
}
inline std::string PackedExHeader(std::string_view mode = "BCM", int dimensions = 1, int spectrum = 0)
{
    const auto field = [](std::string text, std::size_t width) {
        text.resize(width, ' ');
        return text;
    };
    // The comment names another field, which must not be taken for one.
    return field("COMNT  EXMOD of the day", 71) + field("DTYPE  " + std::to_string(dimensions), 32) +
           field("EXMOD  " + std::string(mode), 39) + field("EXPCM  SMODE 9", 71) +
           field("SMODE  " + std::to_string(spectrum), 32);
}

// --- Text

inline std::string Acqus(std::string_view origin = "Bruker BioSpin GmbH", std::string_view extra = "")
{
    return "##TITLE= Parameter file, TOPSPIN\t\tVersion 3.2\n##JCAMPDX= 5.0\n##DATATYPE= Parameter Values\n"
           "##ORIGIN= " +
           std::string(origin) +
           "\n##OWNER= nmr\n$$ 2015-03-10 11:28:12 nmr@spect\n##$AQ_mod= 3\n##$BYTORDA= 1\n##$D= (0..2)\n0 1.5 0.1\n"
           "##$PULPROG= <zg30>\n##$TD= 1024\n" +
           std::string(extra) + "##END=\n";
}
inline std::string Procs(std::string_view origin = "Bruker BioSpin GmbH")
{
    return "##TITLE= Parameter file, TOPSPIN\t\tVersion 3.2\n##JCAMPDX= 5.0\n##ORIGIN= " + std::string(origin) +
           "\n##$BYTORDP= 1\n##$SI= 1024\n##END=\n";
}

struct ProcparSample {
    std::string array = {};
    int rows = 1;
    std::string observe = "H1", decouple = "C13";
    double sfrq = 400.0, dfrq = 100.6;
};
inline std::string Procpar(const ProcparSample& sample = {})
{
    const auto text = [](const char* name, const std::string& value) {
        return std::string(name) + " 2 2 256 0 0 2 1 0 1 64\n1 \"" + value + "\"\n0 \n";
    };
    const auto number = [](const char* name, double value) {
        return std::string(name) + " 1 1 1000000000 0 0 2 1 11 1 64\n1 " + std::to_string(value) + " \n0 \n";
    };
    return text("comment", "two lines\n and a \\\"quote\\\"") + number("arraydim", sample.rows) +
           text("array", sample.array) + number("sfrq", sample.sfrq) + number("dfrq", sample.dfrq) +
           "vary 1 1 9 0 0 2 1 0 1 64\n3 1 2 3 \n2 1 2 \n" + text("tn", sample.observe) + text("dn", sample.decouple);
}

inline std::string Jcamp(std::string_view type = "NMR SPECTRUM", std::string_view block = "")
{
    return "##TITLE= a sample of some length\n##JCAMP-DX= 5.00\n##DATA TYPE= " + std::string(type) +
           "\n##DATA CLASS= XYDATA\n##ORIGIN= here\n##OWNER= public domain\n##.OBSERVE FREQUENCY= 400.13\n" +
           std::string(block) +
           "##XUNITS= HZ\n##YUNITS= ARBITRARY UNITS\n##FIRSTX= 4000\n##LASTX= 0\n##NPOINTS= 4\n"
           "##XYDATA= (X++(Y..Y))\n4000 1 2 3 4\n##END=\n";
}

inline std::string CsvRows(std::string_view separator = ",", int rows = 60)
{
    std::string text;
    for (int i = 0; i < rows; ++i)
        text += std::to_string(i) + ".5" + std::string(separator) + std::to_string(-i) + "\n";
    return text;
}

inline std::string GeHeader(int rows = 1)
{
    return "OMEGA header\nSW 5000\nDIM1 " + std::to_string(rows) + "\nDIM2 1\n";
}
inline std::string CmxAcq()
{
    return "array_num_values_na=2\nppfn=1pulse\nch1=2\nsf2=143.86\nal=256\n";
}

// --- Others

inline Image NutsFile(int dimensions = 1, int frequency_domain = 0)
{
    Image file(258 * 4 + 64);
    file.Little(0, 0x04030201, 4).Long(4, 256).Long(8, dimensions).Long(4 * 7, dimensions > 1 ? 16 : 1);
    return file.Long(4 * 96, 1024).Long(4 * 97, 1).Long(4 * 98, frequency_domain);
}
inline std::string NutsText(std::string_view type = "NMR FID")
{
    return "##TITLE= a sample\n##JCAMP-DXB= 1.0\n##DATA TYPE= " + std::string(type) + "\n" + std::string(300, ' ') +
           "\n";
}

inline Image MslFile(int spectrum = 0)
{
    return Image(1024).Big(0, 0x4784F5, 3).Big(123, static_cast<std::uint64_t>(spectrum), 3);
}
inline Image MacFile(std::string_view experiment = "PROTON", unsigned spectrum = 0)
{
    return Image(2048).Text(1114, experiment).Byte(1032, spectrum);
}
inline Image Tavo3File(char dimension = '1')
{
    return Image(1024).Text(0, "TA NMR Ver.3.00").Text(16, std::string_view(&dimension, 1));
}

struct Tavo4Sample {
    std::string_view banner = "TA NMR Ver.4.01";
    int spectrum = 1;
    std::int32_t length_2d = 16;
    std::size_t entry = 520; ///< of the data block in the address table
    std::size_t block = 1312;
};
inline Image Tavo4File(const Tavo4Sample& sample = {})
{
    Image file(sample.block + 16 + 768 + 2560);
    const std::size_t data = sample.block + 16, parameters = data + 768;
    file.Text(0, sample.banner).Text(496, "## ADDRESS").Long(512, 1280).Long(516, sample.length_2d);
    file.Long(sample.entry, static_cast<std::int64_t>(sample.block)).Long(sample.entry + 4, 768 + 2560);
    file.Text(1280, "## 2D Data").Text(sample.block, "## 1D Data 00").Text(data, "1D NORM NORM");
    file.Long(data + 40, static_cast<std::int64_t>(parameters)).Long(data + 44, 2560);
    return file.Text(parameters, "%% PARAMETER").Short(parameters + 652, sample.spectrum);
}

/// Points without a meaning, not zero.
inline std::string Points(std::size_t size = 4096)
{
    std::string bytes;
    for (std::uint32_t i = 0; bytes.size() < size; ++i) bytes += static_cast<char>((i * 2654435761U) >> 24 | 0x80);
    return bytes;
}

} // namespace nmr::test
