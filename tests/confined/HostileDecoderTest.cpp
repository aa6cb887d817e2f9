#include "confined/client/ConfinedDecoders.h"
#include "imaging/BitmapContext.h"
#include "imaging/DeferredPixels.h"
#include "imaging/ycc/PlaneSource.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <future>
#include <memory>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

namespace vellumine::confined {
namespace {

using namespace std::chrono_literals;
using imaging::ImageSource;
using imaging::Limits;

/// A little, for those that hang; the others answer in their own time on a busy machine.
Patience patienceWith(std::string_view name)
{
    return name.starts_with("hangs")
        ? Patience { .timeAtLeast = 300ms, .timePerMegabyte = 0ms, .timePerMegapixel = 0ms }
        : Patience {};
}

class Hostile : public testing::Test {
protected:
    /// The helper that does what the name says.
    [[nodiscard]] std::filesystem::path helper(const std::string& name) const
    {
        std::filesystem::path path = m_folder / name;
        std::filesystem::create_symlink(VELLUMINE_HOSTILE_DECODER, path);
        return path;
    }

    [[nodiscard]] std::filesystem::path file() const
    {
        test::writeFile(m_folder / "picture", std::string_view("what it holds does not matter"));
        return m_folder / "picture";
    }

    static imaging::Result<imaging::Image> decode(
        ConfinedDecoders& decoders, const std::filesystem::path& path)
    {
        return decoders.open(path, Limits()).and_then([](ImageSource&& source) {
            return source.image();
        });
    }

    test::TemporaryFolder m_folder;
};

TEST_F(Hostile, followsTheProtocolWhereItIsHarmless)
{
    const auto executable = helper("harmless");
    for (const Handover handover : { Handover::fetched, Handover::shared }) {
        ConfinedDecoders decoders(executable, {}, handover);
        for (int i = 0; i < 3; ++i) {
            const auto image = decode(decoders, file());
            ASSERT_TRUE(image) << image.error().detail;
            EXPECT_EQ(image->size(), (imaging::Size { 4, 3 }));
            EXPECT_EQ(image->row8(2)[3], 0x80);
        }
        EXPECT_EQ(decoders.deathCount(), 0U);
    }
}

struct AttackRow {
    const char* name;
    Handover handover;
};

class HostileDecoder : public Hostile, public testing::WithParamInterface<AttackRow> { };

TEST_P(HostileDecoder, costsItsFileAndNothingElse)
{
    const std::string name = GetParam().name;
    ConfinedDecoders decoders(helper(name), patienceWith(name), GetParam().handover);
    for (std::size_t files = 1; files <= 2; ++files) {
        const auto image = decode(decoders, file());
        ASSERT_FALSE(image);
        EXPECT_EQ(decoders.deathCount(), files);
    }
}

std::vector<AttackRow> attackRows()
{
    std::vector<AttackRow> rows;
    for (const char* name :
        { "dies-opening", "dies-decoding", "hangs-opening", "hangs-decoding", "declares-too-much",
            "says-nothing-known", "says-too-much", "answers-another-question", "is-of-another-size",
            "gives-a-part-unasked", "names-no-memory", "defers-rows", "rows-reach-into-nothing",
            "gives-rows-of-another-size", "gives-rows-of-another-layout", "dies-over-rows",
            "hangs-over-rows", "attaches-nothing-that-is-there", "attaches-more-than-is-allowed",
            "has-colours-of-another-model", "attaches-garbage", "attaches-less" }) {
        rows.push_back({ name, Handover::fetched });
    }
    for (const char* name : { "shares-nothing", "shares-a-file", "shares-without-seals",
             "shares-and-can-still-write", "shares-and-can-still-cut", "shares-less-than-said",
             "has-colours-of-another-model", "attaches-garbage" }) {
        rows.push_back({ name, Handover::shared });
    }
    return rows;
}

INSTANTIATE_TEST_SUITE_P(
    That, HostileDecoder, testing::ValuesIn(attackRows()), [](const auto& instance) {
        std::string name = instance.param.name;
        std::replace(name.begin(), name.end(), '-', '_');
        return name + (instance.param.handover == Handover::shared ? "_shared" : "");
    });

TEST_F(Hostile, thatCannotBeStartedFailsItsFile)
{
    for (const char* name : { "dies-at-start", "is-of-another-build" }) {
        ConfinedDecoders decoders(helper(name), patienceWith(name));
        EXPECT_FALSE(decode(decoders, file())) << name;
        EXPECT_FALSE(decoders.confinement()) << name;
    }
    ConfinedDecoders missing(m_folder / "none");
    const auto image = decode(missing, file());
    ASSERT_FALSE(image);
    EXPECT_EQ(image.error().detail, "No such file or directory");
}

TEST_F(Hostile, thatAnEarlierFileHarmedDoesNotCostALaterOne)
{
    for (const char* name : { "dies-over-its-second-file", "babbles-over-its-second-file",
             "dies-over-rows-over-its-second-file" }) {
        ConfinedDecoders decoders(helper(name));
        EXPECT_TRUE(decode(decoders, file())) << name;
        EXPECT_TRUE(decode(decoders, file())) << name;
        EXPECT_EQ(decoders.deathCount(), 1U) << name;
    }
}

TEST_F(Hostile, thatFailsToDrawCostsItsFile)
{
    // It draws in grey, or not at all.
    for (const char* name :
        { "harmless", "dies-over-rows", "hangs-over-rows", "defers-its-drawing-for-ever" }) {
        ConfinedDecoders decoders(helper(name), patienceWith(name));
        auto source = decoders.open(file(), Limits());
        const auto image = source->image(imaging::ImageUse::toBeDrawn);
        ASSERT_TRUE(image) << name;
        ASSERT_FALSE(image->hasRows()) << name;
        auto context = imaging::BitmapContext::create({ 2, 2 }, 8, imaging::ColorSpace::sRgb());
        EXPECT_FALSE(context->draw(*image)) << name;
        EXPECT_FALSE(image->withRows()) << name;
        EXPECT_EQ(decoders.deathCount(), 1U) << name;
    }
}

class PlanesOf {
public:
    /// Of the picture that the helper decodes; null where it has none.
    explicit PlanesOf(ConfinedDecoders& decoders, const std::filesystem::path& path)
        : m_image(decoders.open(path, Limits())->image(imaging::ImageUse::toBeDrawn).value())
        , m_planes(m_image.deferred()->planes())
    {
    }
    [[nodiscard]] bool areNamed() const { return m_planes != nullptr; }
    [[nodiscard]] imaging::Result<void> copy(int plane, imaging::Size size)
    {
        return m_planes->copy(
            plane, { 0, 0, size.width, size.height }, m_samples.data(), m_samples.size() / 4);
    }
    [[nodiscard]] const imaging::Image& image() const { return m_image; }
    [[nodiscard]] const std::vector<std::uint8_t>& samples() const { return m_samples; }

private:
    imaging::Image m_image;
    std::shared_ptr<const imaging::ycc::PlaneSource> m_planes;
    std::vector<std::uint8_t> m_samples = std::vector<std::uint8_t>(20);
};

TEST_F(Hostile, givesPlanesWhereItIsHarmless)
{
    ConfinedDecoders decoders(helper("harmless"));
    PlanesOf planes(decoders, file());
    ASSERT_TRUE(planes.areNamed());
    EXPECT_TRUE(planes.copy(2, { 2, 2 }));
    EXPECT_EQ(planes.samples(),
        (std::vector<std::uint8_t> {
            0x80, 0x80, 0, 0, 0, 0x80, 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0 }));
    EXPECT_EQ(decoders.deathCount(), 0U);
}

TEST_F(Hostile, thatLiesAboutPlanesHasNone)
{
    for (const char* name : { "has-planes-of-another-size", "dies-over-rows", "hangs-over-rows" }) {
        ConfinedDecoders decoders(helper(name), patienceWith(name));
        EXPECT_FALSE(PlanesOf(decoders, file()).areNamed()) << name;
        EXPECT_EQ(decoders.deathCount(), 1U) << name;
    }
    for (const char* name : { "has-planes-in-nothing", "has-planes-that-end-in-nothing" }) {
        ConfinedDecoders decoders(helper(name), patienceWith(name));
        PlanesOf planes(decoders, file());
        ASSERT_TRUE(planes.areNamed()) << name;
        EXPECT_TRUE(planes.copy(0, { 4, 3 })) << name;
        EXPECT_FALSE(planes.copy(1, { 2, 2 })) << name;
        EXPECT_FALSE(planes.copy(0, { 4, 3 })) << name; // it is of no use any more
        EXPECT_EQ(decoders.deathCount(), 1U) << name;
    }
}

TEST_F(Hostile, thatRanOutOfMemoryIsNotAskedForWhatItMayHaveDropped)
{
    ConfinedDecoders decoders(helper("has-no-memory-for-rows"));
    PlanesOf planes(decoders, file());
    ASSERT_TRUE(planes.areNamed());
    EXPECT_TRUE(planes.copy(0, { 4, 3 }));
    EXPECT_FALSE(planes.image().withRows());
    EXPECT_FALSE(planes.copy(0, { 4, 3 }));
    EXPECT_EQ(decoders.deathCount(), 0U);
}

TEST_F(Hostile, thatHangsIsLeftWhenAStopIsRequested)
{
    ConfinedDecoders decoders(helper("hangs-decoding"));
    std::stop_source stop;
    auto source = decoders.open(file(), Limits(), stop.get_token());
    ASSERT_TRUE(source);
    auto image = std::async(std::launch::async, [&] { return source->image(); });
    stop.request_stop();
    EXPECT_FALSE(image.get());
    EXPECT_EQ(decoders.deathCount(), 0U);
}

} // namespace
} // namespace vellumine::confined
