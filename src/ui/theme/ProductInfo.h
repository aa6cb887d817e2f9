#pragma once

#include <QObject>
#include <QQmlEngine>
#include <QUrl>

#include <functional>
#include <utility>

namespace vellumine {

/// What the windows say about the product and its maker, and where their links lead.
class ProductInfo : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QString name READ name CONSTANT)
    Q_PROPERTY(QString versionText READ versionText CONSTANT)
    Q_PROPERTY(QString licenceText READ licenceText CONSTANT)
    Q_PROPERTY(QString librariesText READ librariesText CONSTANT)
    /// How pictures are kept from doing harm; asked for when it is read.
    Q_PROPERTY(QString confinementText READ confinementText CONSTANT)
    Q_PROPERTY(QString makerName READ makerName CONSTANT)
    Q_PROPERTY(QString creditLine READ creditLine CONSTANT)
    Q_PROPERTY(QUrl makerUrl READ makerUrl CONSTANT)
    Q_PROPERTY(QString makerHelpText READ makerHelpText CONSTANT)
    Q_PROPERTY(QUrl donationUrl READ donationUrl CONSTANT)
    Q_PROPERTY(QString donationHelpText READ donationHelpText CONSTANT)
    /// Of the logo; empty where the program carries none.
    Q_PROPERTY(QUrl logo READ logo CONSTANT)

public:
    explicit ProductInfo(QObject* parent = nullptr);

    [[nodiscard]] static QString name();
    /// "Version ", the version, " (", the build number, ")"
    [[nodiscard]] static QString versionText();
    [[nodiscard]] static QString licenceText();
    /// Names those whose work this program stands on.
    [[nodiscard]] static QString librariesText();
    [[nodiscard]] QString confinementText() const;
    void setConfinementText(std::function<QString()> text) { m_confinementText = std::move(text); }
    [[nodiscard]] static QString makerName();
    [[nodiscard]] static QString creditLine();
    [[nodiscard]] static QUrl makerUrl();
    [[nodiscard]] static QString makerHelpText();
    [[nodiscard]] static QUrl donationUrl();
    [[nodiscard]] static QString donationHelpText();
    [[nodiscard]] const QUrl& logo() const { return m_logo; }

    /// The URL of a picture among the resources, or an empty one.
    [[nodiscard]] static QUrl resourceUrl(const QString& path);
    /// An address as people write it: without scheme, and without a lone slash at its end.
    [[nodiscard]] static QString withoutScheme(const QUrl& url);

private:
    QUrl m_logo;
    std::function<QString()> m_confinementText;
};

} // namespace vellumine
