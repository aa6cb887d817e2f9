#pragma once

#include "imaging/ImageDestination.h"
#include "support/FakeProgram.h"
#include "support/TestImages.h"

#include <QProcess>
#include <QString>

#include <gtest/gtest.h>

#include <sched.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <string_view>

namespace vellumine::test {

/// What a run of the program came to.
struct Outcome {
    int status;
    QString output;
    QString error;
};

/// Runs the built program in folders of its own, without a terminal.
class BuiltProgram : public testing::Test {
protected:
    void SetUp() override
    {
        std::filesystem::create_directory(m_folder / "temporary");
        std::filesystem::create_directory(pictures());
        std::filesystem::create_directory(m_folder / "home");
    }

    [[nodiscard]] std::filesystem::path pictures() const { return m_folder / "pictures"; }
    [[nodiscard]] std::filesystem::path temporary() const { return m_folder / "temporary"; }

    void makePicture(std::string_view name, imaging::Size size = oddSize) const
    {
        auto destination
            = imaging::ImageDestination::create(pictures() / name, imaging::UniformType::bmp)
                  .value();
        destination.addImage(
            gradient(size, { imaging::ColorModel::rgb, 8, imaging::AlphaInfo::none }), {});
        ASSERT_TRUE(destination.finalize());
    }

    /// Starts the program on one processor, which makes two workers.
    void start(QProcess& process, const QStringList& arguments, const QString& encoder = {}) const
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("TMPDIR"), QString::fromStdString(temporary().string()));
        environment.insert(
            QStringLiteral("HOME"), QString::fromStdString((m_folder / "home").string()));
        environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
        environment.remove(QStringLiteral("VELLUMINE_CWEBP_PATH"));
        if (!encoder.isEmpty()) {
            environment.insert(QStringLiteral("VELLUMINE_CWEBP_PATH"), encoder);
        }
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(QString::fromStdString(pictures().string()));
        // Away from the terminal that the tests may run in: nobody there is to be asked.
        process.setChildProcessModifier([this] {
            ::setsid();
            m_beforeItRuns();
            cpu_set_t processors;
            if (::sched_getaffinity(0, sizeof processors, &processors) == 0) {
                const int first = firstOf(processors);
                CPU_ZERO(&processors);
                CPU_SET(static_cast<std::size_t>(first), &processors);
                ::sched_setaffinity(0, sizeof processors, &processors);
            }
        });
        process.setStandardInputFile(QProcess::nullDevice());
        process.start(QStringLiteral(VELLUMINE_BATCH), arguments);
    }

    static Outcome end(QProcess& process)
    {
        EXPECT_TRUE(process.waitForFinished(60'000));
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        return { process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError()) };
    }

    [[nodiscard]] Outcome run(const QStringList& arguments) const
    {
        QProcess process;
        start(process, arguments);
        return end(process);
    }

    [[nodiscard]] std::filesystem::path folder() const { return m_folder.path(); }

    /// Called in the program's process before it becomes the program.
    std::function<void()> m_beforeItRuns = [] {};

private:
    static int firstOf(const cpu_set_t& processors)
    {
        std::size_t number = 0;
        while (number + 1 < CPU_SETSIZE && !CPU_ISSET(number, &processors)) {
            ++number;
        }
        return static_cast<int>(number);
    }

    TemporaryFolder m_folder;
};

} // namespace vellumine::test
