#include "imaging/colour/ColorTransform.h"

#include "imaging/colour/ColorSpaceData.h"
#include "imaging/colour/InstalledCmyk.h"
#include "imaging/colour/Profile.h"
#include "imaging/colour/RecentlyUsed.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>
#include <memory>
#include <utility>
#include <variant>
#include <vector>

namespace vellumine::imaging {

namespace {

using Kind = ColorSpace::Data::Kind;

colour::Profile profileOf(cmsContext context, const ColorSpace& space)
{
    switch (space.data().kind) {
    case Kind::sRgb:
    case Kind::deviceRgb:
        return colour::makeSRgbProfile(context);
    case Kind::grey:
        return colour::makeGreyProfile(context);
    case Kind::deviceCmyk:
        return colour::openProfile(context, colour::installedCmykProfile());
    case Kind::icc:
        return colour::openProfile(context, space.iccProfile());
    }
    return nullptr;
}

cmsUInt32Number sampleFormat(ColorModel model, int bits)
{
    switch (model) {
    case ColorModel::grey:
        return bits == 16 ? TYPE_GRAY_16 : TYPE_GRAY_8;
    case ColorModel::rgb:
        return bits == 16 ? TYPE_RGB_16 : TYPE_RGB_8;
    case ColorModel::cmyk:
        return bits == 16 ? TYPE_CMYK_16 : TYPE_CMYK_8;
    }
    return 0;
}

constexpr std::uint8_t to8(std::uint8_t sample)
{
    return sample;
}

constexpr std::uint8_t to8(std::uint16_t sample)
{
    return static_cast<std::uint8_t>((sample + 128U) / 257U);
}

template <typename Sample>
void rearrange(const Sample* from, std::uint8_t* to, int count, int channels)
{
    const int green = channels == 3 ? 1 : 0;
    const int blue = channels == 3 ? 2 : 0;
    for (int i = 0; i < count; ++i, from += channels, to += 4) {
        to[0] = to8(from[0]);
        to[1] = to8(from[green]);
        to[2] = to8(from[blue]);
    }
}

/// Ink taken off white, without any profile: R = (1 - C)(1 - K).
template <typename Sample> void plainCmyk(const Sample* from, std::uint8_t* to, int count)
{
    for (int i = 0; i < count; ++i, from += 4, to += 4) {
        const unsigned paper = 255U - to8(from[3]);
        for (int c = 0; c < 3; ++c) {
            to[c] = static_cast<std::uint8_t>(((255U - to8(from[c])) * paper + 127U) / 255U);
        }
    }
}

/// What each value of a grey sample becomes.
using GreyTable = std::vector<std::array<std::uint8_t, 3>>;

template <typename Sample>
void lookUp(const GreyTable& table, const Sample* from, std::uint8_t* to, int count)
{
    for (int i = 0; i < count; ++i, to += 4) {
        std::ranges::copy(table[from[i]], to);
    }
}

/// For grey a table, else the library's own way, with a table of its own where the profiles have
/// tables: up to 2 MB, and a tenth of a second's work for four inks.
using Way = std::variant<GreyTable, colour::Transform>;

/// The way from one profile to another.
struct JoinedProfiles {
    ColorSpace from;
    int bits;
    ColorSpace to;
    colour::Context context; ///< of the way
    Way way;
};
using JoinedProfilesPtr = std::unique_ptr<const JoinedProfiles>;

/// Those that nobody uses. A batch rarely has more kinds of pictures than these.
colour::RecentlyUsed<JoinedProfilesPtr>& spareProfiles()
{
    static colour::RecentlyUsed<JoinedProfilesPtr> spare(4);
    return spare;
}

/// All greys of that depth. The library would put a grid in the place of a curve of one channel,
/// too coarse for the shadows of linear light however fine it is asked to be. The curve itself is
/// slow, and asked once for each value.
GreyTable greyTable(cmsHTRANSFORM exact, int bits)
{
    const std::size_t count = std::size_t { 1 } << static_cast<unsigned>(bits);
    std::vector<std::uint16_t> samples(count);
    for (std::size_t i = 0; i < count; ++i) {
        samples[i] = static_cast<std::uint16_t>(i * 65535U / (count - 1));
    }
    std::vector<std::array<std::uint8_t, 4>> converted(count);
    cmsDoTransform(exact, samples.data(), converted.data(), static_cast<cmsUInt32Number>(count));
    GreyTable table(count);
    std::ranges::transform(converted, table.begin(), [](const auto& rgba) {
        return std::array { rgba[0], rgba[1], rgba[2] };
    });
    return table;
}

Result<Way> wayBetween(
    cmsContext context, cmsHPROFILE from, ColorModel model, int bits, cmsHPROFILE to)
{
    const bool isGrey = model == ColorModel::grey;
    colour::Transform transform(cmsCreateTransformTHR(context, from,
        sampleFormat(model, isGrey ? 16 : bits), to, TYPE_RGBA_8, colour::renderingIntent(from),
        isGrey ? cmsFLAGS_NOOPTIMIZE | cmsFLAGS_NOCACHE : cmsFLAGS_HIGHRESPRECALC));
    if (!transform) {
        return failure(Error::Kind::unsupported, "the two profiles cannot be joined");
    }
    return isGrey ? Way(greyTable(transform.get(), bits)) : Way(std::move(transform));
}

Result<JoinedProfilesPtr> joined(const ColorSpace& from, int bits, const ColorSpace& to)
{
    auto spare = spareProfiles().take([&](const JoinedProfilesPtr& each) {
        return each->from == from && each->bits == bits && each->to == to;
    });
    if (spare) {
        return std::move(*spare);
    }
    colour::Context context = colour::makeContext();
    const colour::Profile source = profileOf(context.get(), from);
    const colour::Profile target = profileOf(context.get(), to);
    if (!source || !target) {
        return failure(Error::Kind::unsupported, "there is no profile to convert with");
    }
    return wayBetween(context.get(), source.get(), from.model(), bits, target.get())
        .map([&](Way&& way) {
            return std::make_unique<const JoinedProfiles>(
                JoinedProfiles { from, bits, to, std::move(context), std::move(way) });
        });
}

enum class Method { rearrange, plainCmyk, profiles };

} // namespace

struct ColorTransform::State {
    Method method = Method::rearrange;
    ColorModel model = ColorModel::rgb;
    int bits = 8;
    JoinedProfilesPtr profiles;

    State() = default;
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State()
    {
        if (profiles) {
            spareProfiles().keep(std::move(profiles));
        }
    }
};

ColorTransform::ColorTransform(std::unique_ptr<State> state)
    : m_state(std::move(state))
{
}

ColorTransform::ColorTransform(ColorTransform&&) noexcept = default;
ColorTransform& ColorTransform::operator=(ColorTransform&&) noexcept = default;
ColorTransform::~ColorTransform() = default;

bool sameNumbers(const ColorSpace& a, const ColorSpace& b)
{
    return a == b || (a.isSRgbEquivalent() && b.isSRgbEquivalent());
}

Result<ColorTransform> ColorTransform::create(
    const ColorSpace& from, int bitsPerComponent, const ColorSpace& to)
{
    assert(to.model() == ColorModel::rgb);
    auto state = std::make_unique<State>();
    state->model = from.model();
    state->bits = bitsPerComponent;

    // Grey without a profile has the sRGB curve: in an sRGB space its numbers are the colour's.
    if (sameNumbers(from, to) || (from.data().kind == Kind::grey && to.isSRgbEquivalent())) {
        return ColorTransform(std::move(state));
    }
    if (from.data().kind == Kind::deviceCmyk && colour::installedCmykProfile().empty()
        && to.isSRgbEquivalent()) {
        state->method = Method::plainCmyk;
        return ColorTransform(std::move(state));
    }

    return joined(from, bitsPerComponent, to).map([&state](JoinedProfilesPtr&& profiles) {
        state->method = Method::profiles;
        state->profiles = std::move(profiles);
        return ColorTransform(std::move(state));
    });
}

bool ColorTransform::isIdentity() const
{
    return m_state->method == Method::rearrange && m_state->model == ColorModel::rgb;
}

void ColorTransform::apply(const void* samples, std::uint8_t* rgba, int count) const
{
    const auto* const shallow = static_cast<const std::uint8_t*>(samples);
    const auto* const deep = static_cast<const std::uint16_t*>(samples);
    switch (m_state->method) {
    case Method::profiles:
        if (const auto* const greys = std::get_if<GreyTable>(&m_state->profiles->way)) {
            m_state->bits == 16 ? lookUp(*greys, deep, rgba, count)
                                : lookUp(*greys, shallow, rgba, count);
        } else {
            cmsDoTransform(std::get<colour::Transform>(m_state->profiles->way).get(), samples, rgba,
                static_cast<cmsUInt32Number>(count));
        }
        return;
    case Method::plainCmyk:
        m_state->bits == 16 ? plainCmyk(deep, rgba, count) : plainCmyk(shallow, rgba, count);
        return;
    case Method::rearrange:
        const int channels = m_state->model == ColorModel::grey ? 1 : 3;
        m_state->bits == 16 ? rearrange(deep, rgba, count, channels)
                            : rearrange(shallow, rgba, count, channels);
        return;
    }
}

} // namespace vellumine::imaging
