#pragma once
// Byte decoders of the binary readers. Offsets are from 0; the caller has checked the bounds.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace nmr {

using ByteSpan = std::span<const std::byte>;

double GetDoubleBE(ByteSpan bytes, std::size_t offset);
double GetDoubleLE(ByteSpan bytes, std::size_t offset);
std::int32_t GetLongBE(ByteSpan bytes, std::size_t offset);
std::int32_t GetLongLE(ByteSpan bytes, std::size_t offset);
std::int16_t GetShortBE(ByteSpan bytes, std::size_t offset);
std::int16_t GetShortLE(ByteSpan bytes, std::size_t offset);
float GetSingleBE(ByteSpan bytes, std::size_t offset);
float GetSingleLE(ByteSpan bytes, std::size_t offset);
float GetSingleVAX(ByteSpan bytes, std::size_t offset);
double GetDoubleVAX(ByteSpan bytes, std::size_t offset);
std::int32_t GetInt24BE(ByteSpan bytes, std::size_t offset);
double GetFloat48(ByteSpan bytes, std::size_t offset);
/// Text to the first zero byte, Shift-JIS pairs kept together, trimmed of blanks; UTF-8.
std::string GetText(ByteSpan bytes, std::size_t offset, std::size_t length);
std::string GetBCDText(ByteSpan bytes, std::size_t offset);
std::string GetSixBitText(ByteSpan bytes, std::size_t offset);

/// The shared line reader over a whole file. Skips every byte below 32 before a line, so that an
/// empty line means the end of the file; stops at 10 or 13.
class LineReader {
public:
    explicit LineReader(ByteSpan bytes) : bytes_(bytes) {}
    /// The next line as UTF-8; empty at the end of the file.
    std::string Read_TextLine();
    bool at_end() const { return position_ >= bytes_.size(); }
    std::size_t position() const { return position_; }
    void Rewind(std::size_t position = 0) { position_ = position; }

private:
    ByteSpan bytes_;
    std::size_t position_ = 0;
};

/// Label (from "##" or "$$" up to "=" or tab, upper case) and value of a labelled record, or nothing.
struct LabelledRecord {
    std::string label;
    std::string value;
};
bool Split_Value(const std::string& line, LabelledRecord& out);

} // namespace nmr
