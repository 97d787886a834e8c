#pragma once
// Everything of a run that a crash must not lose, as sections of bytes: the parameters and lists of every
// slot in use, what is shown of them, and the settings that can be taken back. Points are not among them,
// only their checksum; where they lie is the journal's affair. Two states are the same to the bit when
// their images are.

#include "core/byte_image.h"
#include "core/global_block.h"

#include <cstdint>
#include <map>
#include <vector>

namespace nmr {

enum class Section : std::uint16_t {
    parameters,
    processing, ///< history, fill and prediction words
    rows,
    integrals,
    peaks,
    look, ///< fonts, regions, views, labels
    simulation,
    carried, ///< what only passes through from file to file
    axis,    ///< XAxis
    points,  ///< PointsMark
    display, ///< of no slot
    settings ///< of no slot
};

struct SectionKey {
    std::int16_t slot = -1; ///< -1: of no slot
    Section section = Section::parameters;
    auto operator<=>(const SectionKey&) const = default;
};

using StateImage = std::map<SectionKey, std::vector<std::byte>>;

/// Which points a slot holds.
struct PointsMark {
    std::int32_t rows = 0, points = 0;
    std::uint64_t checksum = 0;
    bool operator==(const PointsMark&) const = default;
};
template <class Visit, class T>
requires std::same_as<std::remove_const_t<T>, PointsMark>
void EachMember(Visit& visit, T& r)
{
    visit(r.rows, r.points, r.checksum);
}

/// DataRe and DataIm; the cost is one look at each point.
PointsMark MarkPoints(const DataSet& set);
/// A look at some thousand of them and at their number: a tool that changes all points is seen, one that
/// changes a few may not be.
std::uint64_t GlancePoints(const DataSet& set);
/// Likewise for the axis, of which a change concerns every value.
std::uint64_t GlanceAxis(const DataSet& set);

bool IsKept(const DataSet& set); ///< slots in use are; a FID before its transform is not, it is no work

/// All sections but axis and points.
StateImage TakeImage(const GlobalBlock& g);
std::vector<std::byte> AxisImage(const DataSet& set);
/// With axis and points: for comparing whole states.
StateImage TakeWholeImage(const GlobalBlock& g);
/// One number for all of it.
std::uint64_t ChecksumOf(const StateImage& image);

/// Puts the sections of a slot into an empty set, but for the points.
/// @return false when a section is not what its writer makes
bool PutSlot(const StateImage& image, std::int16_t slot, DataSet& set);
/// The settings alone, then both sections of no slot.
bool PutSettings(const StateImage& image, GlobalBlock& g);
bool PutGlobals(const StateImage& image, GlobalBlock& g);

/// Of all lists of members: an image of another layout can't be read.
std::uint64_t ImageLayout();

} // namespace nmr
