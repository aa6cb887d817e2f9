#include "cli/BuiltProgram.h"
#include "imaging/ImageSource.h"
#include "platform/ByteCount.h"
#include "platform/FileDescriptor.h"
#include "support/FakeProgram.h"
#include "support/QtPrinters.h"
#include "support/TestImages.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QProcess>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <string>
#include <vector>

namespace vellumine {
namespace {

using test::listing;
using test::Outcome;
using test::writeFile;

class Program : public test::BuiltProgram { };

TEST_F(Program, convertsAndSaysSo)
{
    makePicture("a.bmp", { 200, 100 });
    const Outcome outcome = run({ QStringLiteral("a.bmp") });
    EXPECT_EQ(outcome.status, 0) << outcome.error.toStdString();
    const QStringList lines = outcome.output.split(u'\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines[0].startsWith(QStringLiteral("a.bmp: Saved "))) << lines[0].toStdString();
    const auto bytes = static_cast<qint64>(std::filesystem::file_size(pictures() / "a.bmp"));
    EXPECT_TRUE(lines[0].contains(QStringLiteral("(a.webp, ")
        + platform::byteCountText(bytes, QLocale::c()) + QStringLiteral(" to ")))
        << lines[0].toStdString();
    EXPECT_TRUE(lines[1].startsWith(QStringLiteral("1 file optimized, ")));
    EXPECT_EQ(outcome.error, QString());
    EXPECT_EQ(listing(pictures()), "a.bmp a.webp");
    EXPECT_EQ(listing(temporary()), "");
}

TEST_F(Program, oneFailureIsStatusOneAndStopsNobody)
{
    makePicture("a.bmp");
    writeFile(pictures() / "b.png", "no picture");
    const Outcome outcome = run({ QStringLiteral(".") });
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.output.contains(QStringLiteral("b.png: The image could not be read.\n")));
    EXPECT_TRUE(outcome.output.contains(QStringLiteral("1 file optimized, 1 failed")));
    EXPECT_TRUE(std::filesystem::exists(pictures() / "a.webp"));
}

/// What files come to be in a folder, from the making of the object on.
class FolderWatch {
public:
    explicit FolderWatch(const std::filesystem::path& folder)
        : m_descriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
    {
        EXPECT_GE(::inotify_add_watch(m_descriptor.get(), folder.c_str(), IN_CREATE), 0);
    }

    /// The names of all so far.
    [[nodiscard]] std::vector<std::string> names() const
    {
        std::vector<std::string> found;
        alignas(inotify_event) std::array<char, 65536> events {};
        for (ssize_t size = 0;
             (size = ::read(m_descriptor.get(), events.data(), events.size())) > 0;) {
            for (const char* at = events.data(); at < events.data() + size;) {
                const auto* event = reinterpret_cast<const inotify_event*>(at);
                found.emplace_back(event->name);
                at += sizeof(inotify_event) + event->len;
            }
        }
        return found;
    }

private:
    platform::FileDescriptor m_descriptor;
};

TEST_F(Program, samplesAreMadeForThoseWhoAreToldOfThem)
{
    makePicture("a.bmp");
    const auto samplesMade = [this](const QStringList& arguments) {
        const FolderWatch watch(temporary());
        EXPECT_EQ(run(arguments).status, 0);
        const auto names = watch.names();
        EXPECT_FALSE(names.empty()); // a lock, and what the encoder is handed
        return std::ranges::count_if(
            names, [](const std::string& name) { return name.ends_with(".png"); });
    };
    EXPECT_EQ(samplesMade({ QStringLiteral("a.bmp") }), 0);
    EXPECT_EQ(samplesMade({ QStringLiteral("--json"), QStringLiteral("--set"),
                  QStringLiteral("warnBeforeOverwrite=false"), QStringLiteral("a.bmp") }),
        2);
}

TEST_F(Program, jsonIsOneObjectPerFileAndKeepsTheSamples)
{
    makePicture("a.bmp");
    makePicture("b.bmp");
    writeFile(pictures() / "c.png", "no picture");
    const Outcome outcome = run({ QStringLiteral("--json"), QStringLiteral(".") });
    EXPECT_EQ(outcome.status, 1);
    const QStringList lines = outcome.output.split(u'\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 3);
    int samples = 0;
    for (const QString& line : lines) {
        const QJsonObject object = QJsonDocument::fromJson(line.toUtf8()).object();
        EXPECT_EQ(object.size(), 9);
        const QJsonObject preview = object[QStringLiteral("comparisonPreview")].toObject();
        for (const char* key : { "sourceSampleURL", "outputSampleURL" }) {
            const QUrl url(preview[QString::fromLatin1(key)].toString());
            samples += url.isEmpty()
                ? 0
                : int(std::filesystem::exists(url.toLocalFile().toStdString()));
        }
    }
    EXPECT_EQ(samples, 4);
}

TEST_F(Program, samplesThatWereToldOfOutliveTheNextRuns)
{
    makePicture("a.bmp");
    EXPECT_EQ(run({ QStringLiteral("--json"), QStringLiteral("a.bmp") }).status, 0);
    const std::string samples = listing(temporary());
    EXPECT_EQ(run({ QStringLiteral("a.bmp") }).status, 0);
    EXPECT_EQ(listing(temporary()), samples);
    EXPECT_EQ(run({ QStringLiteral("--json"), QStringLiteral("gone.png") }).status, 1);
    EXPECT_EQ(listing(temporary()), samples);
    EXPECT_EQ(QString::fromStdString(samples).count(QStringLiteral(".png")), 2);
}

TEST_F(Program, outputThatCannotBeWrittenIsStatusOneAndSaidOnce)
{
    makePicture("a.bmp");
    makePicture("b.bmp");
    for (const QStringList& arguments :
        { QStringList { QStringLiteral("a.bmp"), QStringLiteral("b.bmp") },
            QStringList {
                QStringLiteral("--json"), QStringLiteral("a.bmp"), QStringLiteral("b.bmp") },
            QStringList { QStringLiteral("--help") },
            QStringList { QStringLiteral("--version") } }) {
        QProcess process;
        process.setStandardOutputFile(QStringLiteral("/dev/full"));
        start(process, arguments);
        const Outcome outcome = end(process);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.error,
            QStringLiteral("vellumine-batch: could not write to standard output: No space left on "
                           "device\n"));
    }
    EXPECT_EQ(listing(pictures()), "a.bmp a.webp b.bmp b.webp");
    EXPECT_EQ(listing(temporary()), ""); // nobody was told of samples
}

TEST_F(Program, aReaderThatGoesAwayEndsNoConversion)
{
    makePicture("a.bmp");
    makePicture("b.bmp");
    std::array<int, 2> ends {};
    ASSERT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    platform::FileDescriptor reader(ends[0]);
    const platform::FileDescriptor writer(ends[1]);
    m_beforeItRuns = [&] { ::dup2(writer.get(), STDOUT_FILENO); };
    reader.reset();
    const Outcome outcome = run({ QStringLiteral("a.bmp"), QStringLiteral("b.bmp") });
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.error,
        QStringLiteral("vellumine-batch: could not write to standard output: Broken pipe\n"));
    EXPECT_EQ(listing(pictures()), "a.bmp a.webp b.bmp b.webp");
}

TEST_F(Program, noFileTakesThePlaceOfAMissingStream)
{
    makePicture("a.bmp");
    m_beforeItRuns = [] {
        ::close(STDIN_FILENO);
        ::close(STDOUT_FILENO);
    };
    const Outcome outcome = run({ QStringLiteral("a.bmp") });
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.error,
        QStringLiteral(
            "vellumine-batch: could not write to standard output: Bad file descriptor\n"));
    EXPECT_EQ(listing(pictures()), "a.bmp a.webp");
}

TEST_F(Program, interruptedBeforeItBeginsItConvertsNothingAndSaysSo)
{
    makePicture("a.bmp");
    // It waits until the program listens.
    m_beforeItRuns = [] {
        sigset_t signals;
        ::sigemptyset(&signals);
        ::sigaddset(&signals, SIGINT);
        ::sigprocmask(SIG_BLOCK, &signals, nullptr);
        ::raise(SIGINT);
    };
    const Outcome outcome = run({ QStringLiteral("a.bmp") });
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.error, QStringLiteral("Stopped after 0 of 0\n"));
    EXPECT_EQ(listing(pictures()), "a.bmp");
    EXPECT_EQ(listing(temporary()), "");
}

TEST_F(Program, usageErrorsAreStatusTwoOnStandardError)
{
    for (const QStringList& arguments : { QStringList {},
             QStringList {
                 QStringLiteral("--set"), QStringLiteral("speed=1"), QStringLiteral("a.bmp") },
             QStringList {
                 QStringLiteral("--set"), QStringLiteral("quality=high"), QStringLiteral("a.bmp") },
             QStringList { QStringLiteral("--unknown") } }) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.output, QString());
        EXPECT_TRUE(outcome.error.contains(QStringLiteral("Usage: vellumine-batch")));
        EXPECT_EQ(outcome.error.count(u'\n'), 3); // the error stays in sight
    }
}

TEST_F(Program, helpAndVersionGoToStandardOutput)
{
    const Outcome help = run({ QStringLiteral("--help") });
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(help.output.startsWith(QStringLiteral("Usage: vellumine-batch")));
    const Outcome version = run({ QStringLiteral("--version") });
    EXPECT_EQ(version.status, 0);
    EXPECT_TRUE(version.output.startsWith(QStringLiteral("vellumine-batch ")));
    EXPECT_TRUE(version.output.contains(
        QStringLiteral("\nPictures are decoded in a process of their own")));
}

TEST_F(Program, withoutATerminalAnExistingFileIsSkipped)
{
    makePicture("a.bmp");
    writeFile(pictures() / "a.webp", "old");
    const Outcome outcome = run({ QStringLiteral("--set"),
        QStringLiteral("warnBeforeOverwrite=true"), QStringLiteral("a.bmp") });
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.output.contains(
        QStringLiteral("a.bmp: Skipped because the output file already exists.\n")));
    EXPECT_EQ(test::readFile(pictures() / "a.webp").size(), 3U);
}

TEST_F(Program, sameOutputOfTwoSourcesIsTheLastOnesEveryTime)
{
    makePicture("same.bmp", { 30, 20 });
    makePicture("same.gif", { 60, 40 }); // named after another format on purpose
    for (int round = 0; round < 5; ++round) {
        const Outcome outcome = run({ QStringLiteral("same.bmp"), QStringLiteral("same.gif") });
        EXPECT_EQ(outcome.status, 0);
        const auto written = imaging::ImageSource::create(pictures() / "same.webp", {});
        ASSERT_TRUE(written);
        EXPECT_EQ(written->storedSize(), (imaging::Size { 60, 40 }));
    }
}

TEST_F(Program, warnedOfAnOutputOfTheSameBatchItSkipsTheSecond)
{
    makePicture("same.bmp", { 30, 20 });
    makePicture("same.gif", { 60, 40 });
    const Outcome outcome
        = run({ QStringLiteral("--set"), QStringLiteral("warnBeforeOverwrite=true"),
            QStringLiteral("same.bmp"), QStringLiteral("same.gif") });
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.output.contains(
        QStringLiteral("same.gif: Skipped because the output file already exists.\n")));
    EXPECT_EQ(imaging::ImageSource::create(pictures() / "same.webp", {})->storedSize(),
        (imaging::Size { 30, 20 }));
}

TEST_F(Program, awkwardNamesAreConvertedOrReported)
{
    makePicture("two  spaces and 100%.bmp");
    makePicture("-dash.bmp");
    makePicture("line\nbreak.bmp");
    makePicture("bad\xff.bmp");
    const Outcome outcome = run({ QStringLiteral(".") });
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(outcome.output.contains(QStringLiteral("line\\nbreak.bmp: ")));
    EXPECT_TRUE(outcome.output.contains(QStringLiteral("4 files optimized, ")))
        << outcome.output.toStdString();
    for (const char* name :
        { "two  spaces and 100%.webp", "-dash.webp", "line\nbreak.webp", "bad\xff.webp" }) {
        EXPECT_TRUE(std::filesystem::exists(pictures() / name)) << name;
    }
}

TEST_F(Program, nothingToDoIsSaid)
{
    const Outcome outcome = run({ QStringLiteral(".") });
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.error, QStringLiteral("No supported image files found\n"));
}

TEST_F(Program, writesIntoTheSelectedFolder)
{
    makePicture("a.bmp");
    std::filesystem::create_directory(pictures() / "out");
    const Outcome outcome = run({ QStringLiteral("--set"),
        QStringLiteral("destinationMode=selectedFolder"), QStringLiteral("--set"),
        QStringLiteral("destinationFolderBookmark=out"), QStringLiteral("--set"),
        QStringLiteral("outputFormat=jpeg"), QStringLiteral("a.bmp") });
    EXPECT_EQ(outcome.status, 0) << outcome.error.toStdString();
    EXPECT_EQ(listing(pictures() / "out"), "a.jpg");
}

TEST_F(Program, aPathThatLeadsNowhereIsReported)
{
    makePicture("a.bmp");
    const Outcome outcome = run({ QStringLiteral("gone"), QStringLiteral("gone.png"),
        QStringLiteral("a.bmp"), QStringLiteral("./a.bmp") });
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.output.contains(QStringLiteral("gone: The image could not be read.\n")));
    EXPECT_TRUE(
        outcome.output.contains(QStringLiteral("gone.png: The image could not be read.\n")));
    EXPECT_TRUE(outcome.output.contains(QStringLiteral("1 file optimized, 2 failed")));
}

} // namespace
} // namespace vellumine
