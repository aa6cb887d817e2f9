#pragma once

#include "support/TestImages.h"

#include <QFile>
#include <QSettings>
#include <QString>

#include <memory>

namespace vellumine::test {

/// A file of preferences for one test.
class PreferencesFile {
public:
    /// One more reader and writer of the file.
    [[nodiscard]] std::unique_ptr<QSettings> open() const
    {
        return std::make_unique<QSettings>(path("preferences"), QSettings::IniFormat);
    }

    /// The preferences as the next run of the program finds them: read from a copy of the file,
    /// since readers within one process share what they hold in memory.
    [[nodiscard]] std::unique_ptr<QSettings> reopen()
    {
        open()->sync();
        const QString copy = path("copy") + QString::number(++m_copyCount);
        if (!QFile::copy(path("preferences"), copy)) {
            qFatal("the preferences could not be copied");
        }
        return std::make_unique<QSettings>(copy, QSettings::IniFormat);
    }

    /// Lines as a user's editor leaves them. Only before the first `open`.
    void write(const QByteArray& lines) const
    {
        writeFile(m_folder / "preferences",
            std::string_view(lines.constData(), static_cast<std::size_t>(lines.size())));
    }

private:
    [[nodiscard]] QString path(const char* name) const
    {
        return QFile::decodeName((m_folder / name).c_str());
    }

    TemporaryFolder m_folder;
    int m_copyCount = 0;
};

} // namespace vellumine::test
