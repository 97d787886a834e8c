#pragma once
// Records of an enhanced metafile: a little-endian stream of type, size and body. This file knows the form of
// the records, emf_canvas.h what is drawn with them.
//
// Source: Microsoft, [MS-EMF]: Enhanced Metafile Format, published with its open specifications.

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace nmr {

enum class EmfType : std::uint32_t {
    header = 1,
    polygon16 = 86,
    polyline16 = 87,
    poly_polyline16 = 90,
    set_window_ext = 9,
    set_window_org = 10,
    set_viewport_ext = 11,
    set_viewport_org = 12,
    eof = 14,
    set_map_mode = 17,
    set_bk_mode = 18,
    set_poly_fill_mode = 19,
    set_text_align = 22,
    set_text_color = 24,
    intersect_clip_rect = 30,
    save_dc = 33,
    restore_dc = 34,
    select_object = 37,
    create_brush = 39,
    delete_object = 40,
    ellipse = 42,
    rectangle = 43,
    gdi_comment = 70,
    stretch_dibits = 81,
    create_font = 82,
    ext_text_out = 84,
    ext_create_pen = 95,
};

struct EmfRect {
    std::int32_t left = 0, top = 0, right = 0, bottom = 0;
};

class EmfRecords {
public:
    /// A record of 32-bit words.
    void Add(EmfType type, std::initializer_list<std::int32_t> words);
    /// A record in parts: between Begin and End, the body is put. End fills up to 4 bytes and patches the size.
    void Begin(EmfType type);
    void End();
    void Put32(std::int32_t word);
    void Put16(std::int32_t half);
    void PutFloat(float value);
    void PutBytes(std::string_view bytes) { body_ += bytes; }
    void PutRect(const EmfRect& rect);

    /// Header, the records, and the end.
    /// @param size_hmm picture, units of 0.01 mm  @param handles the highest object index and one for the reserved 0
    std::string File(std::int32_t width_hmm, std::int32_t height_hmm, std::int32_t handles,
                     std::u16string_view title) const;

private:
    std::string body_;
    std::size_t start_ = 0;
    std::int32_t count_ = 0;
};

std::u16string ToUtf16(std::string_view utf8);

} // namespace nmr
