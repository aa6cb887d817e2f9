#pragma once

#include "ui/comparison/ComparisonPresenter.h"

#include <QObject>
#include <qqmlregistration.h>

#include <memory>
#include <vector>

namespace vellumine {

/// A comparison of two pictures that tell each other apart in every pixel: the one before is all
/// blue, the one after all red; or a landscape, at first, that comes out in few colours.
class ComparisonFixture : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(vellumine::ComparisonPresenter* presenter READ presenter NOTIFY presenterChanged)

public:
    explicit ComparisonFixture(QObject* parent = nullptr);

    [[nodiscard]] ComparisonPresenter* presenter() { return m_presenters.back().get(); }

    Q_INVOKABLE void makeFlat(int width, int height);
    /// Black and white pixels by turns; both pictures the same.
    Q_INVOKABLE void makeChecked(int width, int height);
    Q_INVOKABLE void makeLandscape();

Q_SIGNALS:
    void presenterChanged();

private:
    void make(const QImage& before, const QImage& after);

    /// The earlier ones stay, for views that are about to go.
    std::vector<std::unique_ptr<ComparisonPresenter>> m_presenters;
};

} // namespace vellumine
