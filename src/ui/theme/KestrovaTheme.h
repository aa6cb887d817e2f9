#pragma once

#include "ui/theme/Palette.h"

#include <QObject>
#include <QQmlEngine>

namespace vellumine {

/// The palette as QML sees it. The properties never change.
class KestrovaTheme : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QColor bg MEMBER m_bg CONSTANT)
    Q_PROPERTY(QColor bgWarm MEMBER m_bgWarm CONSTANT)
    Q_PROPERTY(QColor leatherRaised MEMBER m_leatherRaised CONSTANT)
    Q_PROPERTY(QColor leatherDeep MEMBER m_leatherDeep CONSTANT)
    Q_PROPERTY(QColor ink MEMBER m_ink CONSTANT)
    Q_PROPERTY(QColor mutedInk MEMBER m_mutedInk CONSTANT)
    Q_PROPERTY(QColor lightCard MEMBER m_lightCard CONSTANT)
    Q_PROPERTY(QColor lightCardRaised MEMBER m_lightCardRaised CONSTANT)
    Q_PROPERTY(QColor cream MEMBER m_cream CONSTANT)
    Q_PROPERTY(QColor creamMuted MEMBER m_creamMuted CONSTANT)
    Q_PROPERTY(QColor creamSubtle MEMBER m_creamSubtle CONSTANT)
    Q_PROPERTY(QColor copper MEMBER m_copper CONSTANT)
    Q_PROPERTY(QColor copperBright MEMBER m_copperBright CONSTANT)
    Q_PROPERTY(QColor copperStrong MEMBER m_copperStrong CONSTANT)
    Q_PROPERTY(QColor sage MEMBER m_sage CONSTANT)
    Q_PROPERTY(QColor border MEMBER m_border CONSTANT)

public:
    explicit KestrovaTheme(QObject* parent = nullptr);

    /// The colour at another opacity, from 0 to 1.
    Q_INVOKABLE static QColor faded(QColor colour, double opacity);
    /// Between two colours: `first` at 0, `second` at 1.
    Q_INVOKABLE static QColor mixed(const QColor& first, const QColor& second, double share);

private:
    QColor m_bg = palette::bg.toQColor();
    QColor m_bgWarm = palette::bgWarm.toQColor();
    QColor m_leatherRaised = palette::leatherRaised.toQColor();
    QColor m_leatherDeep = palette::leatherDeep.toQColor();
    QColor m_ink = palette::ink.toQColor();
    QColor m_mutedInk = palette::mutedInk.toQColor();
    QColor m_lightCard = palette::lightCard.toQColor();
    QColor m_lightCardRaised = palette::lightCardRaised.toQColor();
    QColor m_cream = palette::cream.toQColor();
    QColor m_creamMuted = palette::creamMuted.toQColor();
    QColor m_creamSubtle = palette::creamSubtle.toQColor();
    QColor m_copper = palette::copper.toQColor();
    QColor m_copperBright = palette::copperBright.toQColor();
    QColor m_copperStrong = palette::copperStrong.toQColor();
    QColor m_sage = palette::sage.toQColor();
    QColor m_border = palette::border.toQColor();
};

} // namespace vellumine
