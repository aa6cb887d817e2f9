// Converts every sample picture with the built program, once per output format, and holds the
// results against what the samples' manifest says.

#include "support/Samples.h"
#include "imaging/ImageSource.h"
#include "samples/BatchRun.h"
#include "samples/Manifest.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <iostream>
#include <set>

namespace vellumine::test {

namespace {

struct OutputCase {
    const char* format;
    bool inSanitizedBuilds; ///< the two that exercise the child process and our own encoding
};

std::ostream& operator<<(std::ostream& stream, const OutputCase& output)
{
    return stream << output.format;
}

#ifdef VELLUMINE_SANITIZED
constexpr bool sanitized = true;
#else
constexpr bool sanitized = false;
#endif

/// Malformed on purpose, with a verdict that only counts what other programs did.
bool isNotedOnly(const Sample& sample)
{
    const std::string path = sample.path.string();
    return path.starts_with("hostile/fuzz/") || path.starts_with("hostile/imagetestsuite/");
}

/// Files of other extensions are passed over without a word.
bool hasSupportedExtension(const std::filesystem::path& path)
{
    static constexpr std::array<std::string_view, 10> supported { ".jpg", ".jpeg", ".png", ".gif",
        ".tif", ".tiff", ".bmp", ".heic", ".heif", ".webp" };
    std::string extension = path.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
        [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return std::find(supported.begin(), supported.end(), extension) != supported.end();
}

imaging::Size sizeOf(const QJsonValue& value)
{
    const QJsonObject object = value.toObject();
    return { object.value(QStringLiteral("width")).toInt(-1),
        object.value(QStringLiteral("height")).toInt(-1) };
}

std::string messageOf(const QJsonObject& result)
{
    return result.value(QStringLiteral("message")).toString().toStdString();
}

bool isSuccess(const QJsonObject& result)
{
    return result.value(QStringLiteral("isSuccess")).toBool();
}

std::filesystem::path outputOf(const QJsonObject& result)
{
    return pathOf(result.value(QStringLiteral("outputURL")));
}

/// What is wrong with a conversion that reports success, or nothing.
std::string faultOfSuccess(const Sample& sample, const QJsonObject& result)
{
    const QJsonObject audit = result.value(QStringLiteral("audit")).toObject();
    const imaging::Size input = sizeOf(audit.value(QStringLiteral("inputDimensions")));
    if (sample.expected == Expected::converted
        && (input.width != sample.width || input.height != sample.height)) {
        return "is " + std::to_string(sample.width) + "x" + std::to_string(sample.height)
            + ", was read as " + std::to_string(input.width) + "x" + std::to_string(input.height);
    }
    auto source = imaging::ImageSource::create(outputOf(result), imaging::Limits::forThisMachine());
    if (!source) {
        return "output is unreadable: " + source.error().detail;
    }
    const auto image = source->image();
    if (!image) {
        return "output is undecodable: " + image.error().detail;
    }
    if (image->size() != sizeOf(audit.value(QStringLiteral("outputDimensions")))) {
        return "output has another size than reported";
    }
    return {};
}

/// What is wrong with the result of a sample, or nothing.
std::string faultOf(const Sample& sample, const QJsonObject& result)
{
    if (isSuccess(result)) {
        return sample.expected == Expected::refused ? "was converted"
                                                    : faultOfSuccess(sample, result);
    }
    if (messageOf(result).empty()) {
        return "failed without a message";
    }
    if (!outputOf(result).empty()) {
        return "failed with an output";
    }
    return sample.expected == Expected::converted ? "failed: " + messageOf(result) : std::string();
}

/// Copies of samples in a scratch folder, and what has become of them.
class SampleBatch {
public:
    SampleBatch(std::filesystem::path folder, std::vector<Sample> samples)
        : m_folder(std::move(folder))
        , m_samples(std::move(samples))
    {
        for (const Sample& sample : m_samples) {
            const std::filesystem::path copy = copyOf(sample);
            std::filesystem::create_directories(copy.parent_path());
            std::filesystem::copy_file(m_folder / sample.path, copy);
            std::filesystem::permissions(
                copy, std::filesystem::perms::owner_write, std::filesystem::perm_options::add);
        }
    }

    void convertTo(const char* format)
    {
        std::vector<std::filesystem::path> paths;
        for (const Sample& sample : m_samples) {
            paths.push_back(copyOf(sample));
        }
        // Small outputs, so that reading is what takes the time; questions count as "Skip".
        m_run = runBatch({ std::string("outputFormat=") + format, "resizeMode=longestEdge",
                             "maximumPixels=256", "warnBeforeOverwrite=true" },
            paths, m_scratch.path());
    }

    void expectAsTheManifestSays() const
    {
        for (const std::string& fault : m_run.faults) {
            ADD_FAILURE() << fault;
        }
        for (const Sample& sample : m_samples) {
            const std::string fault = faultIn(sample);
            if (!fault.empty() && isNotedOnly(sample)) {
                std::cout << "noted: " << sample.path.string() << " " << fault << '\n';
            } else if (!fault.empty()) {
                ADD_FAILURE() << sample.path.string() << " " << fault;
            }
        }
    }

    void expectSourcesUntouched() const
    {
        for (const Sample& sample : m_samples) {
            EXPECT_EQ(readFile(copyOf(sample)), readFile(m_folder / sample.path))
                << sample.path.string() << " was changed";
        }
    }

    void expectNothingLeftBehind() const
    {
        std::set<std::filesystem::path> accounted;
        for (const Sample& sample : m_samples) {
            accounted.insert(copyOf(sample));
        }
        for (const auto& [source, result] : m_run.results) {
            accounted.insert(outputOf(result));
        }
        for (const auto& entry :
            std::filesystem::recursive_directory_iterator(m_scratch / "sources")) {
            EXPECT_TRUE(entry.is_directory() || accounted.contains(entry.path()))
                << entry.path().string() << " was left behind";
        }
        for (const std::filesystem::path& path : temporaryLeftovers(m_scratch.path())) {
            ADD_FAILURE() << path.string() << " was left behind";
        }
    }

private:
    [[nodiscard]] std::filesystem::path copyOf(const Sample& sample) const
    {
        return m_scratch / "sources" / sample.path;
    }

    [[nodiscard]] std::string faultIn(const Sample& sample) const
    {
        const auto found = m_run.results.find(copyOf(sample));
        if (found == m_run.results.end()) {
            return hasSupportedExtension(sample.path) ? "has no result" : "";
        }
        if (sample.expected == Expected::converted && wasTakenBefore(sample, found->second)) {
            return {};
        }
        return faultOf(sample, found->second);
    }

    /// Whether the sample was skipped because another sample, or its output, has the output's name.
    [[nodiscard]] bool wasTakenBefore(const Sample& sample, const QJsonObject& result) const
    {
        return messageOf(result) == "Skipped because the output file already exists."
            && std::any_of(m_samples.begin(), m_samples.end(), [&](const Sample& other) {
                   return other.path != sample.path && other.path.stem() == sample.path.stem()
                       && other.path.parent_path() == sample.path.parent_path();
               });
    }

    TemporaryFolder m_scratch;
    std::filesystem::path m_folder;
    std::vector<Sample> m_samples;
    BatchRun m_run;
};

class Samples : public testing::TestWithParam<OutputCase> { };

} // namespace

TEST_P(Samples, AreConvertedAsTheManifestSays)
{
    if (sanitized && !GetParam().inSanitizedBuilds) {
        GTEST_SKIP() << "The build with sanitizers converts to some formats only.";
    }
    const auto folder = samplesFolder();
    if (!folder) {
        GTEST_SKIP() << "There are no samples. Name their folder in VELLUMINE_SAMPLES.";
    }
    std::map<std::string, std::vector<Sample>> kinds;
    for (const Sample& sample : readManifest(*folder)) {
        kinds[sample.kind].push_back(sample);
    }
    ASSERT_FALSE(kinds.empty());
    for (const auto& [kind, samples] : kinds) {
        SCOPED_TRACE(kind);
        SampleBatch batch(*folder, samples);
        batch.convertTo(GetParam().format);
        batch.expectAsTheManifestSays();
        batch.expectSourcesUntouched();
        batch.expectNothingLeftBehind();
    }
}

INSTANTIATE_TEST_SUITE_P(To, Samples,
    testing::Values(OutputCase { "webp", true }, OutputCase { "webpLossless", false },
        OutputCase { "jpeg", false }, OutputCase { "png", true }, OutputCase { "heic", false }),
    [](const auto& test) { return std::string(test.param.format); });

TEST(ManifestPaths, LoseTheirEscapes)
{
    EXPECT_EQ(unescaped("plain.png"), "plain.png");
    EXPECT_EQ(unescaped("a\\\\b\\n\\t\\xE9.png"), "a\\b\n\t\xE9.png");
    EXPECT_THROW((void)unescaped("a\\q"), std::runtime_error);
}

} // namespace vellumine::test
