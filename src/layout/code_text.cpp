#include "layout/code_text.h"

#include "core/numbers.h"
#include "layout/code_state.h"
#include "layout/code_tokens.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <vector>

namespace nmr {
namespace {

constexpr double kLineFactor = 1.1;                 // height of a line, in sizes
constexpr double kTabFactor = 3.8;                  // distance of tab stops, in sizes
constexpr double kSlantFactor = 0.05;               // room before slanted letters, in heights of a line
constexpr double kMeasureFactor = 10;               // runs are measured so much larger
constexpr double kNoLimit = 1'000'000;              // of a line that is not wrapped
constexpr int kBoldWeight = 600;                    // and above
constexpr char kOrdinaryFace[] = "Liberation Sans"; // has the letters of the Symbol face

// Code of the Symbol face to Unicode from 0x20; 0: not assigned.
constexpr std::array<char16_t, 224> kSymbol{
    0x0020, 0x0021, 0x2200, 0x0023, 0x2203, 0x0025, 0x0026, 0x220B, 0x0028, 0x0029, 0x2217, 0x002B, 0x002C, 0x2212,
    0x002E, 0x002F, 0x0030, 0x0031, 0x0032, 0x0033, 0x0034, 0x0035, 0x0036, 0x0037, 0x0038, 0x0039, 0x003A, 0x003B,
    0x003C, 0x003D, 0x003E, 0x003F, 0x2245, 0x0391, 0x0392, 0x03A7, 0x0394, 0x0395, 0x03A6, 0x0393, 0x0397, 0x0399,
    0x03D1, 0x039A, 0x039B, 0x039C, 0x039D, 0x039F, 0x03A0, 0x0398, 0x03A1, 0x03A3, 0x03A4, 0x03A5, 0x03C2, 0x03A9,
    0x039E, 0x03A8, 0x0396, 0x005B, 0x2234, 0x005D, 0x22A5, 0x005F, 0x203E, 0x03B1, 0x03B2, 0x03C7, 0x03B4, 0x03B5,
    0x03D5, 0x03B3, 0x03B7, 0x03B9, 0x03C6, 0x03BA, 0x03BB, 0x03BC, 0x03BD, 0x03BF, 0x03C0, 0x03B8, 0x03C1, 0x03C3,
    0x03C4, 0x03C5, 0x03D6, 0x03C9, 0x03BE, 0x03C8, 0x03B6, 0x007B, 0x007C, 0x007D, 0x223C, 0,      0,      0,
    0,      0,      0,      0,      0,      0,      0,      0,      0,      0,      0,      0,      0,      0,
    0,      0,      0,      0,      0,      0,      0,      0,      0,      0,      0,      0,      0,      0,
    0,      0,      0x20AC, 0x03D2, 0x2032, 0x2264, 0x2044, 0x221E, 0x0192, 0x2663, 0x2666, 0x2665, 0x2660, 0x2194,
    0x2190, 0x2191, 0x2192, 0x2193, 0x00B0, 0x00B1, 0x2033, 0x2265, 0x00D7, 0x221D, 0x2202, 0x2022, 0x00F7, 0x2260,
    0x2261, 0x2248, 0x2026, 0x23D0, 0x23AF, 0x21B5, 0x2135, 0x2111, 0x211C, 0x2118, 0x2297, 0x2295, 0x2205, 0x2229,
    0x222A, 0x2283, 0x2287, 0x2284, 0x2282, 0x2286, 0x2208, 0x2209, 0x2220, 0x2207, 0x00AE, 0x00A9, 0x2122, 0x220F,
    0x221A, 0x22C5, 0x00AC, 0x2227, 0x2228, 0x21D4, 0x21D0, 0x21D1, 0x21D2, 0x21D3, 0x25CA, 0x27E8, 0x00AE, 0x00A9,
    0x2122, 0x2211, 0x239B, 0x239C, 0x239D, 0x23A1, 0x23A2, 0x23A3, 0x23A7, 0x23A8, 0x23A9, 0x23AA, 0,      0x27E9,
    0x222B, 0x2320, 0x23AE, 0x2321, 0x239E, 0x239F, 0x23A0, 0x23A4, 0x23A5, 0x23A6, 0x23AB, 0x23AC, 0x23AD, 0};

void SetFont(Canvas& device, const FontSpec& font, double em, int weight)
{
    const bool symbol = font.Charset == kSymbolCharset;
    device.SetFont({.family = symbol ? std::string_view(kOrdinaryFace) : std::string_view(font.Name),
                    .size = em,
                    .bold = font.Bold != 0 || weight >= kBoldWeight,
                    .italic = font.Italic != 0,
                    .underline = font.Underline != 0,
                    .strikeout = font.Strikeout != 0});
}

double SizeOf(const FontSpec& font)
{
    return static_cast<double>(font.Size);
}

} // namespace

FontSpec ToFontSpec(const FontRec& font)
{
    return {font.Name, font.Size, font.Bold, font.Italic, font.Underline, font.Strike, font.Color, font.CharSet};
}

char32_t SymbolToUnicode(char32_t code)
{
    if (code >= 0xF020 && code <= 0xF0FF) code -= 0xF000;
    if (code < 0x20 || code > 0xFF) return code;
    const char32_t letter = kSymbol[code - 0x20];
    return letter == 0 ? code : letter;
}

RunExtent Measure_Run(Canvas& device, std::string_view run, const FontSpec& font, double scale, int weight)
{
    RunExtent extent;
    if (run.empty()) return extent;
    SetFont(device, font, SizeOf(font) * scale * kMeasureFactor, weight);
    for (std::size_t at = 0; at < run.size();) {
        const std::size_t begin = at;
        static_cast<void>(TakeUtf8(run, at));
        const TextExtent letter = device.Measure(run.substr(begin, at - begin));
        extent.width += letter.width;
        extent.height = letter.height();
        extent.ascent = letter.ascent;
    }
    extent.width *= 0.1;
    extent.height *= 0.1;
    extent.ascent *= 0.1;
    return extent;
}

RunExtent Text_Run(Canvas& device, double x, double y, std::string_view run, const FontSpec& font, double angle_deg,
                   double scale, int weight, int direction)
{
    const RunExtent extent = Measure_Run(device, run, font, scale, weight);
    if (run.empty()) return extent;
    const double s = std::sin(angle_deg * kDegToRad), c = std::cos(angle_deg * kDegToRad);
    device.SetPen({FromSetting(font.Color), 1.0, PenStyle::solid});
    SetFont(device, font, SizeOf(font) * scale, weight);
    device.Text({x + s * extent.ascent, y + direction * c * extent.ascent}, run, TextAlign::left, angle_deg);
    return extent;
}

double Measure_CodeText(Canvas& device, std::string_view text, const FontSpec& font, double scale, Lines lines,
                        int weight, const CodeTextStyle& style)
{
    if (text.empty()) return 0.0;
    const std::string code = Group_To_Code(text);
    // The blank behind the opening counts here, though drawing passes it over.
    CodeReader reader(code, CodeReader::Open::leaves_blank);
    CodeState state(font, style);
    double width = font.Italic != 0 ? kSlantFactor * SizeOf(font) * scale * kLineFactor : 0.0;
    bool any = false;
    std::string letter;
    for (CodeToken token = reader.Next(); token.kind != CodeKind::end && token.kind != CodeKind::close;
         token = reader.Next()) {
        if (token.Is("cr") && lines == Lines::first_only) break;
        if (state.Apply(token) || token.kind != CodeKind::character) continue;
        letter.clear();
        AppendUtf8(letter, LetterOf(token, state.greek()));
        width += Measure_Run(device, letter, state.font(), scale, weight).width;
        any = true;
    }
    return any ? width : 0.0;
}

double Line_Height(std::string_view text, std::size_t position, const FontSpec& font, double scale)
{
    CodeReader reader(text, CodeReader::Open::swallows_blank, std::min(position, text.size()));
    double size = SizeOf(font);
    for (CodeToken token = reader.Next(); token.kind != CodeKind::end && token.kind != CodeKind::close;
         token = reader.Next()) {
        if (token.Is("cr")) break;
        // A smaller one must not push the base font's letters into the line above.
        if (token.Is("p:")) size = std::max(size, CodeSize(token.value).value_or(size));
    }
    return size * scale * kLineFactor;
}

namespace {

/// Line_Height at any byte of a text. A wrapped text asks once a line, so the sizes are looked up once.
class LineHeights {
public:
    explicit LineHeights(std::string_view code)
    {
        CodeReader reader(code);
        for (CodeToken token = reader.Next(); token.kind != CodeKind::end && token.kind != CodeKind::close;
             token = reader.Next()) {
            if (token.Is("cr")) marks_.push_back({reader.position(), 0, true});
            if (token.Is("p:")) marks_.push_back({reader.position(), CodeSize(token.value).value_or(0)});
        }
        double largest = 0; // from a size to the end of its line
        for (auto mark = marks_.rbegin(); mark != marks_.rend(); ++mark) {
            if (mark->line_end) largest = 0;
            largest = mark->size = std::max(largest, mark->size);
        }
    }
    /// The largest size asked for from a byte to the end of the line; 0 when none is.
    double SizeFrom(std::size_t position) const
    {
        const auto mark = std::ranges::upper_bound(marks_, position, {}, &Mark::behind);
        return mark == marks_.end() ? 0 : mark->size;
    }

private:
    struct Mark {
        std::size_t behind; ///< the code
        double size = 0;
        bool line_end = false;
    };
    std::vector<Mark> marks_;
};

/// Whether a text has a letter to draw.
bool HasLetters(std::string_view code)
{
    CodeReader reader(code);
    for (CodeToken token = reader.Next(); token.kind != CodeKind::end && token.kind != CodeKind::close;
         token = reader.Next())
        if (token.kind == CodeKind::character) return true;
    return false;
}

/// One walk of Draw_CodeText.
class Drawing {
public:
    Drawing(Canvas& device, std::string_view code, const FontSpec& font, CodeTextPlace& place,
            const CodeTextStyle& style) :
        device_(device),
        code_(code), font_(font), place_(place), style_(style), reader_(code_), base_(font, style), state_(font, style),
        wraps_(place.right_limit != 0), limit_(wraps_ ? place.right_limit : kNoLimit),
        sin_(std::sin(Normal(place.angle_deg) * kDegToRad)), cos_(std::cos(Normal(place.angle_deg) * kDegToRad)),
        line_bottom_(HeightOf(SizeOf(font)))
    {
        PlaceRun();
    }

    std::string Run()
    {
        for (;;) {
            const std::size_t before = reader_.position();
            const CodeToken token = reader_.Next();
            if (token.kind == CodeKind::end || token.kind == CodeKind::close) break;
            if (token.kind == CodeKind::open) continue;
            if (token.kind == CodeKind::character) {
                if (!Append(LetterOf(token, state_.greek()))) return Rest(before);
                continue;
            }
            Flush();
            if (token.Is("cr") && place_.one_line) return Rest(reader_.position());
            Take(token);
        }
        Finish();
        return {};
    }

private:
    static double Normal(double angle)
    {
        const double turned = std::fmod(angle, 360.0);
        return turned < 0 ? turned + 360 : turned;
    }
    double HeightOf(double size) const { return size * place_.scale * kLineFactor; }

    void PlaceRun()
    {
        run_bottom_ = line_bottom_;
        if (state_.script() == Script::super)
            run_bottom_ -= (1 - style_.SuperSubSize) * place_.scale * SizeOf(font_) * kLineFactor;
        top_offset_ = run_bottom_ - HeightOf(SizeOf(state_.font()));
    }

    void Take(const CodeToken& token)
    {
        if (token.Is("cr")) {
            NewLine(reader_.position());
        } else if (token.Is("tb")) {
            const double step = SizeOf(font_) * place_.scale * kTabFactor;
            if (step > 0) pen_x_ = (std::floor(pen_x_ / step + 1e-9) + 1) * step;
        } else {
            const bool upright = !state_.italic();
            if (!state_.Apply(token)) return;
            PlaceRun();
            if (token.Is("i1") && upright) pen_x_ += kSlantFactor * HeightOf(SizeOf(state_.font()));
        }
    }

    /// False when the line is full and the walk ends there.
    bool Append(char32_t letter)
    {
        std::string one;
        AppendUtf8(one, letter);
        if (wraps_) {
            const double width = Measure_Run(device_, one, state_.font(), place_.scale, place_.weight).width;
            // The first letter of a line stays, however wide: else the text would never come to an end.
            if (pen_x_ + run_width_ + width > limit_ && line_has_letters_) {
                Flush();
                widest_ = limit_;
                if (place_.one_line) return false;
                NewLine(reader_.position());
            }
            run_width_ += width;
        }
        line_has_letters_ = true;
        run_ += one;
        return true;
    }

    void NewLine(std::size_t position)
    {
        pen_x_ = place_.left_margin;
        line_has_letters_ = false;
        if (!heights_) heights_.emplace(code_);
        line_bottom_ += HeightOf(std::max(SizeOf(font_), heights_->SizeFrom(position)));
        PlaceRun();
    }

    void Flush()
    {
        if (!run_.empty()) {
            const FontSpec font = state_.font();
            const int d = place_.direction;
            const double x = place_.x + cos_ * pen_x_ + sin_ * top_offset_;
            const double y = place_.y - d * (sin_ * pen_x_ - cos_ * top_offset_);
            const RunExtent extent =
                d == 0 ? Measure_Run(device_, run_, font, place_.scale, place_.weight)
                       : Text_Run(device_, x, y, run_, font, Normal(place_.angle_deg), place_.scale, place_.weight, d);
            pen_x_ += extent.width;
        }
        widest_ = std::max(widest_, pen_x_);
        run_.clear();
        run_width_ = 0;
    }

    void Finish()
    {
        Flush();
        place_.bottom = line_bottom_;
        place_.right_limit = widest_;
    }

    /// What is not drawn yet, with the codes that rebuild the state.
    std::string Rest(std::size_t position)
    {
        Finish();
        std::string rest = "\\< " + state_.CodesFrom(base_) + std::string(code_.substr(position));
        return HasLetters(rest) ? rest : std::string();
    }

    Canvas& device_;
    std::string_view code_;
    const FontSpec& font_;
    CodeTextPlace& place_;
    const CodeTextStyle& style_;
    CodeReader reader_;
    std::optional<LineHeights> heights_; ///< made when there is a second line
    CodeState base_, state_;
    bool wraps_, line_has_letters_ = false;
    double limit_, sin_, cos_;
    double line_bottom_, run_bottom_ = 0, top_offset_ = 0;
    double pen_x_ = 0, widest_ = 0, run_width_ = 0;
    std::string run_;
};

} // namespace

std::string Draw_CodeText(Canvas& device, std::string_view text, const FontSpec& font, CodeTextPlace& place,
                          const CodeTextStyle& style)
{
    if (text.empty()) return {};
    const std::string code = Group_To_Code(text);
    return Drawing(device, code, font, place, style).Run();
}

} // namespace nmr
