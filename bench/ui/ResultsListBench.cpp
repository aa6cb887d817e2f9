// A list of 10,000 results with the software renderer: how long it takes to show it, to scroll it
// and to put a new result in front, in milliseconds of work of the main thread for each frame.
//     ui_bench [RESULTS]

#include "ui/fakes/ResultsFixture.h"

#include <QElapsedTimer>
#include <QEvent>
#include <QFont>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickStyle>
#include <QQuickWindow>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <memory>
#include <vector>

namespace {

using vellumine::ResultsFixture;

constexpr int frameCount = 600;
constexpr double goal = 16; ///< what a screen of 60 Hz leaves

/// What the main thread, which does everything here, has worked: other programs do not count.
double workedMilliseconds()
{
    timespec time {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

double milliseconds(const QElapsedTimer& timer)
{
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

/// Everything of one frame, at once: layout, painting and what they leave to be deleted.
void drawFrame(QQuickWindow& window)
{
    QCoreApplication::sendPostedEvents();
    window.update();
    QEvent request(QEvent::UpdateRequest);
    QCoreApplication::sendEvent(&window, &request);
}

/// Times the step and the frame that shows it, again and again, and prints what came out.
void measure(const char* name, QQuickWindow& window, const std::function<void(int)>& step)
{
    std::vector<double> times;
    for (int frame = 0; frame < frameCount; ++frame) {
        const double before = workedMilliseconds();
        step(frame);
        drawFrame(window);
        times.push_back(workedMilliseconds() - before);
    }
    std::sort(times.begin(), times.end());
    const double p99 = times.at(frameCount * 99 / 100);
    std::printf("%-36s median %6.2f ms   p99 %6.2f ms   worst %6.2f ms%s\n", name,
        times.at(frameCount / 2), p99, times.back(), p99 < goal ? "" : "   above the goal");
}

int run(int resultCount)
{
    ResultsFixture fixture;
    QElapsedTimer timer;
    timer.start();
    fixture.addMany(resultCount);
    std::printf("%-36s %6.2f ms\n", "filling the model", milliseconds(timer));

    QQmlEngine engine;
    QQmlComponent component(
        &engine, QUrl(QStringLiteral("qrc:/qt-project.org/imports/Vellumine/ResultsList.qml")));
    QQuickWindow window;
    window.resize(776, 660);
    timer.restart();
    const std::unique_ptr<QObject> root(component.createWithInitialProperties(
        { { QStringLiteral("results"), QVariant::fromValue(fixture.model()) },
            { QStringLiteral("width"), 776 }, { QStringLiteral("height"), 660 } }));
    auto* list = qobject_cast<QQuickItem*>(root.get());
    if (list == nullptr) {
        std::fprintf(stderr, "%s\n", qPrintable(component.errorString()));
        return 1;
    }
    list->setParentItem(window.contentItem());
    int framesShown = 0;
    QObject::connect(&window, &QQuickWindow::frameSwapped, [&framesShown] { ++framesShown; });
    window.show();
    while (framesShown == 0) {
        QCoreApplication::processEvents();
    }
    std::printf("%-36s %6.2f ms\n", "opening the list", milliseconds(timer));

    auto* view = list->findChild<QQuickItem*>(QStringLiteral("resultsView"));
    const auto scrollTo = [view](double y) { view->setProperty("contentY", y); };
    measure("scrolling by 12 points a frame", window, [&](int frame) { scrollTo(12.0 * frame); });
    measure("scrolling by a row a frame", window, [&](int frame) { scrollTo(76.0 * frame); });
    measure("scrolling by a page a frame", window, [&](int frame) { scrollTo(608.0 * frame); });
    scrollTo(0);
    drawFrame(window);
    measure("a new result in front", window, [&](int) { fixture.addMany(1); });
    measure("ten new results in front", window, [&](int) { fixture.addMany(10); });
    list->setParentItem(nullptr);
    if (framesShown < 5 * frameCount) {
        std::fprintf(stderr, "only %d frames were drawn\n", framesShown);
        return 1;
    }
    return 0;
}

} // namespace

int main(int argumentCount, char** arguments)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    const QGuiApplication application(argumentCount, arguments);
    QGuiApplication::setFont(QFont(QStringLiteral("Inter")));
    const int wanted = QCoreApplication::arguments().value(1).toInt();
    return run(wanted > 0 ? wanted : 10'000);
}
