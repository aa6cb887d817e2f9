// The least that a Qt Quick program with the software renderer does until its first frame.

#include <QGuiApplication>
#include <QQuickView>
#include <QQuickWindow>

int main(int argc, char** argv)
{
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    const QGuiApplication application(argc, argv);
    QQuickView view;
    view.resize(640, 480);
    view.show();
    return QGuiApplication::exec();
}
